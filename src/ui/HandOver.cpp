#include "ui/HandOver.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMessageBox>
#include <QStandardPaths>
#include <QThread>

#include <unistd.h>

namespace zentoro::HandOver {

namespace {

const QByteArray request = "raise\n";
const QByteArray answer = "ok\n";

} // namespace

QString serverName(const Workspace &workspace)
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::tempPath();
    const QByteArray digest =
        QCryptographicHash::hash(workspace.root.toUtf8(), QCryptographicHash::Sha256).toHex().left(12);
    // Socket paths are short; the digest keeps the name unique when the suite is cut.
    return QStringLiteral("%1/%2-%3-%4")
        .arg(folder, workspace.defaultsSuite().left(48))
        .arg(::getuid())
        .arg(QString::fromLatin1(digest));
}

bool askRunningCopy(const Workspace &workspace, std::chrono::milliseconds timeout)
{
    QLocalSocket socket;
    socket.connectToServer(serverName(workspace));
    const int waitMs = int(timeout.count());
    if (!socket.waitForConnected(waitMs))
        return false;
    socket.write(request);
    if (!socket.waitForBytesWritten(waitMs))
        return false;
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(waitMs))
            return false;
    }
    return socket.readLine() == answer;
}

void showAlreadyOpen(const QString &name)
{
    QMessageBox alert;
    alert.setIcon(QMessageBox::Warning);
    alert.setText(QStringLiteral("“%1” is already open").arg(name));
    alert.setInformativeText(QStringLiteral("Another copy of Zentoro named “%1” is using its files. Quit it first, "
                                            "or rename this copy to make a separate app.")
                                 .arg(name));
    alert.setStandardButtons(QMessageBox::Ok);
    alert.exec();
}

void deferToRunningCopy(const Workspace &workspace)
{
    if (!askRunningCopy(workspace))
        showAlreadyOpen(workspace.name);
}

Listener::Listener(const Workspace &workspace, QObject *parent)
    : QObject(parent), thread_(new QThread(this)), server_(new QLocalServer)
{
    const QString name = serverName(workspace);
    server_->moveToThread(thread_);
    connect(thread_, &QThread::finished, server_, &QObject::deleteLater);
    thread_->start();
    // Listening before this returns, so a second start from now on finds the socket.
    QMetaObject::invokeMethod(
        server_,
        [this, name] {
            // Only the holder of the copy's lock listens, so a socket left by a crash is stale.
            QLocalServer::removeServer(name);
            server_->setSocketOptions(QLocalServer::UserAccessOption);
            listening_ = server_->listen(name);
        },
        Qt::BlockingQueuedConnection);
    connect(server_, &QLocalServer::newConnection, server_, [this] {
        while (QLocalSocket *socket = server_->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
                if (!socket->canReadLine())
                    return;
                if (socket->readLine() != request) {
                    socket->disconnectFromServer();
                    return;
                }
                socket->write(answer);
                socket->flush();
                emit raiseRequested();
            });
        }
    });
}

Listener::~Listener()
{
    thread_->quit();
    thread_->wait();
}

} // namespace zentoro::HandOver
