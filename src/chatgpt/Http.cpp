#include "chatgpt/Http.h"

#include "model_service/Failures.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>

#include <QCoroSignal>

#include <memory>

namespace zentoro::Http {

namespace {

QNetworkAccessManager &manager()
{
    static QPointer<QNetworkAccessManager> shared;
    if (!shared)
        shared = new QNetworkAccessManager(QCoreApplication::instance());
    return *shared;
}

} // namespace

QCoro::Task<Reply> send(TaskHandle task, QNetworkRequest request, QByteArray verb, QByteArray body,
                        int timeoutMilliseconds)
{
    if (task.isCancelled())
        throw NetworkError(QNetworkReply::OperationCanceledError, QStringLiteral("The request was cancelled."));
    request.setTransferTimeout(timeoutMilliseconds);
    request.setRawHeader("User-Agent", "Zentoro/" ZENTORO_VERSION);
    std::unique_ptr<QNetworkReply> reply(verb == "GET" ? manager().get(request)
                                                       : manager().sendCustomRequest(request, verb, body));
    bool cancelled = false;
    task.whenCancelled(reply.get(), [&reply, &cancelled] {
        cancelled = true;
        reply->abort();
    });
    if (!reply->isFinished())
        co_await qCoro(reply.get(), &QNetworkReply::finished);
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (cancelled)
        throw NetworkError(QNetworkReply::OperationCanceledError, QStringLiteral("The request was cancelled."));
    if (!status.isValid()) {
        if (reply->error() == QNetworkReply::OperationCanceledError)
            throw NetworkError(QNetworkReply::TimeoutError, QStringLiteral("The request timed out."));
        throw NetworkError(reply->error(), reply->errorString());
    }
    co_return Reply{status.toInt(), reply->readAll()};
}

} // namespace zentoro::Http
