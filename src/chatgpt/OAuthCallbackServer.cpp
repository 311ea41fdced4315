#include "chatgpt/OAuthCallbackServer.h"

#include "chatgpt/CallbackHead.h"
#include "model_service/Failures.h"

#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <QCoroSignal>

namespace zentoro {

namespace {

NetworkError cancelled()
{
    return NetworkError(QNetworkReply::OperationCanceledError, QStringLiteral("The sign-in was cancelled."));
}

} // namespace

std::unique_ptr<OAuthCallbackServer> OAuthCallbackServer::start(quint16 preferredPort)
{
    std::unique_ptr<OAuthCallbackServer> server(new OAuthCallbackServer);
    if (!server->server_.listen(QHostAddress::LocalHost, preferredPort) &&
        !server->server_.listen(QHostAddress::LocalHost, 0))
        throw NetworkError(QNetworkReply::UnknownNetworkError, server->server_.errorString());
    server->port_ = server->server_.serverPort();
    connect(&server->server_, &QTcpServer::newConnection, server.get(), &OAuthCallbackServer::accept);
    return server;
}

OAuthCallbackServer::~OAuthCallbackServer()
{
    stop();
}

void OAuthCallbackServer::accept()
{
    while (QTcpSocket *socket = server_.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        auto *buffer = new QByteArray;
        connect(socket, &QObject::destroyed, socket, [buffer] { delete buffer; });
        QTimer::singleShot(headMilliseconds, socket, [socket] { socket->abort(); });
        const QString origin = QStringLiteral("http://127.0.0.1:%1").arg(port_);
        QPointer<OAuthCallbackServer> weak(this);
        connect(socket, &QTcpSocket::readyRead, socket, [socket, buffer, origin, weak] {
            if (!weak) {
                socket->abort();
                return;
            }
            while (socket->bytesAvailable() > 0) {
                buffer->append(socket->read(deliveryLimit));
                const qsizetype end = buffer->indexOf("\r\n\r\n");
                if (end >= 0) {
                    disconnect(socket, &QTcpSocket::readyRead, nullptr, nullptr);
                    const CallbackHead::Answer answer = CallbackHead::answer(QString::fromUtf8(buffer->left(end)),
                                                                             origin);
                    buffer->clear();
                    socket->write(answer.response);
                    socket->disconnectFromHost();
                    if (answer.parameters)
                        weak->finish(*answer.parameters);
                    return;
                }
                if (buffer->size() > headLimit) {
                    socket->abort();
                    return;
                }
            }
        });
    }
}

void OAuthCallbackServer::finish(Parameters parameters)
{
    if (done_)
        return;
    done_ = true;
    parameters_ = std::move(parameters);
    emit finished();
}

void OAuthCallbackServer::finishWith(std::exception_ptr error)
{
    if (done_)
        return;
    done_ = true;
    error_ = std::move(error);
    emit finished();
}

QCoro::Task<OAuthCallbackServer::Parameters> OAuthCallbackServer::callback(TaskHandle task)
{
    QPointer<OAuthCallbackServer> self(this);
    task.whenCancelled(this, [self] {
        if (self)
            self->finishWith(std::make_exception_ptr(cancelled()));
    });
    if (!done_)
        co_await qCoro(this, &OAuthCallbackServer::finished);
    if (!self)
        throw cancelled();
    if (error_)
        std::rethrow_exception(error_);
    // A copy: GCC 12 moves a member named in co_return, and a later call must find it still.
    co_return Parameters(parameters_);
}

void OAuthCallbackServer::stop()
{
    server_.close();
    finishWith(std::make_exception_ptr(cancelled()));
}

} // namespace zentoro
