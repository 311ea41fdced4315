#include "model_service/OpenAI.h"

#include "core/Log.h"
#include "model_service/ResponseStream.h"
#include "model_service/ServiceOrigin.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include <QCoroSignal>

namespace zentoro::OpenAI {

namespace {

constexpr int requestTimeoutMilliseconds = 900'000;
constexpr qsizetype chunkBytes = 64 << 10;
// How far the network thread may read ahead of the parser. Beyond this the reply's memory
// would grow with the stream's length whenever the main thread is slower than the socket.
constexpr qint64 readAheadBytes = 1 << 20;
// How long a reply may go on after its terminal event before its connection is dropped.
constexpr int drainMilliseconds = 10'000;

QNetworkAccessManager &manager()
{
    static QPointer<QNetworkAccessManager> shared;
    if (!shared)
        shared = new QNetworkAccessManager(QCoreApplication::instance());
    return *shared;
}

QString cancelledMessage()
{
    return QStringLiteral("The request was cancelled.");
}

bool isSuccess(int status)
{
    return status >= 200 && status <= 299;
}

// One request in flight: feeds the body to the stream reader as it arrives, or collects
// an error body, and signals `ended` once the outcome is known.
class Exchange : public QObject {
    Q_OBJECT
public:
    Exchange(QNetworkReply *reply, std::function<void(const JSON &item)> onItemStarted)
        : reply_(reply), stream_(std::move(onItemStarted))
    {
        connect(reply_, &QNetworkReply::readyRead, this, &Exchange::readAvailable);
        connect(reply_, &QNetworkReply::finished, this, &Exchange::replyFinished);
    }

    ~Exchange() override
    {
        if (!hasEnded_)
            release(true);
    }

    bool hasEnded() const { return hasEnded_; }

    void cancel()
    {
        if (hasEnded_)
            return;
        end(std::make_exception_ptr(NetworkError(QNetworkReply::OperationCanceledError, cancelledMessage())), true);
    }

    JSON result() const
    {
        if (failure_)
            std::rethrow_exception(failure_);
        return stream_.result();
    }

signals:
    void ended();

private:
    void readAvailable()
    {
        if (hasEnded_)
            return;
        if (status_ < 0) {
            const QVariant status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute);
            status_ = status.isValid() ? status.toInt() : 0;
        }
        if (!isSuccess(status_)) {
            errorBody_.append(reply_->read(errorBodyLimit + 1 - errorBody_.size()));
            if (errorBody_.size() > errorBodyLimit)
                end(std::make_exception_ptr(failure(status_, errorBody_)), true);
            return;
        }
        // Through one buffer kept for the whole reply: reading it all at once would allocate
        // and fault in as much memory as the network thread has buffered.
        if (chunk_.isEmpty())
            chunk_.resize(chunkBytes);
        qint64 got = 0;
        while (!stream_.hasEnded() && (got = reply_->read(chunk_.data(), chunk_.size())) > 0)
            stream_.feed(QByteArrayView(chunk_.constData(), got));
        if (stream_.hasEnded())
            end(nullptr, false);
    }

    void replyFinished()
    {
        readAvailable();
        if (hasEnded_)
            return;
        const QNetworkReply::NetworkError error = reply_->error();
        if (status_ > 0 && !isSuccess(status_)) {
            end(std::make_exception_ptr(failure(status_, errorBody_)), false);
        } else if (error != QNetworkReply::NoError) {
            // Only our own cancel aborts a reply; an abort we didn't ask for is the time-out.
            if (error == QNetworkReply::OperationCanceledError)
                end(std::make_exception_ptr(
                        NetworkError(QNetworkReply::TimeoutError, QStringLiteral("The request timed out."))),
                    false);
            else
                end(std::make_exception_ptr(NetworkError(error, reply_->errorString())), false);
        } else {
            stream_.finish();
            end(nullptr, false);
        }
    }

    void end(std::exception_ptr failure, bool abort)
    {
        if (failure)
            qCDebug(logModel, "The response failed (HTTP status %d): %s", status_, qUtf8Printable(describe(failure)));
        else
            qCDebug(logModel, "The response is complete (HTTP status %d).", status_);
        hasEnded_ = true;
        failure_ = std::move(failure);
        release(abort);
        emit ended();
    }

    // Lets go of the reply. One that has delivered its terminal event usually ends a moment
    // later; it may finish in the background, so that its connection can serve the next request.
    void release(bool abort)
    {
        QNetworkReply *reply = std::exchange(reply_, nullptr);
        disconnect(reply, nullptr, this, nullptr);
        if (abort) {
            reply->abort();
        } else if (!reply->isFinished()) {
            connect(reply, &QNetworkReply::readyRead, reply, [reply] { reply->skip(reply->bytesAvailable()); });
            connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
            QTimer::singleShot(drainMilliseconds, reply, &QNetworkReply::abort);
            return;
        }
        reply->deleteLater();
    }

    QNetworkReply *reply_;
    ResponseStream stream_;
    QByteArray chunk_;
    int status_ = -1;
    QByteArray errorBody_;
    bool hasEnded_ = false;
    std::exception_ptr failure_;
};

// Never the request's headers: they carry the credential.
void logRequest(const QUrl &url, qsizetype bytes)
{
    qCDebug(logModel, "Sending a request of %lld bytes to %s.", qlonglong(bytes), qUtf8Printable(url.toString()));
}

} // namespace

QString origin()
{
    return ServiceOrigin::inUse();
}

QCoro::Task<JSON> respond(const TaskHandle &task, const QString &bearer, const JSON &body,
                          const std::function<void(const JSON &item)> &onItemStarted)
{
    const QByteArray encoded = body.encode();
    if (task.isCancelled())
        throw NetworkError(QNetworkReply::OperationCanceledError, cancelledMessage());
    QNetworkRequest request(QUrl(origin() + QStringLiteral("/v1/responses")));
    request.setRawHeader("Authorization", "Bearer " + bearer.toUtf8());
    request.setRawHeader("Content-Type", "application/json");
    request.setRawHeader("Accept", "text/event-stream");
    request.setRawHeader("User-Agent", "Zentoro/" ZENTORO_VERSION);
    request.setTransferTimeout(requestTimeoutMilliseconds);

    logRequest(request.url(), encoded.size());
    QNetworkReply *reply = manager().post(request, encoded);
    // The reply passes its read-buffer size to the network thread only once its request has
    // started, which post() leaves to the event loop; a size set before that is never applied.
    QMetaObject::invokeMethod(
        reply, [reply] { reply->setReadBufferSize(readAheadBytes); }, Qt::QueuedConnection);
    Exchange exchange(reply, onItemStarted);
    task.whenCancelled(&exchange, [&exchange] { exchange.cancel(); });
    if (!exchange.hasEnded())
        co_await qCoro(&exchange, &Exchange::ended);
    co_return exchange.result();
}

Failure failure(int status, const QByteArray &data)
{
    JSON document;
    try {
        document = JSON::decode(data);
    } catch (const JSON::Error &) {
    }
    const JSON *error = document.find(QStringLiteral("error"));
    const JSON *detail = document.find(QStringLiteral("detail"));
    const QString messageKey = QStringLiteral("message");
    const QString codeKey = QStringLiteral("code");

    std::optional<QString> message = error ? error->stringValue() : std::nullopt;
    if (!message && error)
        message = error->stringAt(messageKey);
    if (!message && detail)
        message = detail->stringValue();
    if (!message && detail)
        message = detail->stringAt(messageKey);
    if (!message)
        message = QString::fromUtf8(data.left(400));
    if (message->isEmpty())
        message = QStringLiteral("HTTP %1").arg(status);

    std::optional<QString> code = error ? error->stringAt(codeKey) : std::nullopt;
    if (!code && detail)
        code = detail->stringAt(codeKey);
    const std::optional<QString> param = error ? error->stringAt(QStringLiteral("param")) : std::nullopt;
    return Failure(status, std::move(code), param, *message);
}

} // namespace zentoro::OpenAI

#include "OpenAI.moc"
