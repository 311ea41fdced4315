#include "chatgpt/CredentialStore.h"

#include "core/AtomicFile.h"
#include "core/Failure.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>
#include <QtConcurrent/QtConcurrentRun>

#include <QCoroFuture>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace zentoro::CredentialStore {

QString path(const QString &folder)
{
    return folder + QStringLiteral("/chatgpt.json");
}

QString lockPath(const QString &folder)
{
    return folder + QStringLiteral("/.chatgpt.lock");
}

std::optional<ChatGPTCredentials> read(const QString &folder)
{
    QFile file(path(folder));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return ChatGPTCredentials::decode(file.readAll());
}

void write(const QString &folder, const ChatGPTCredentials &credentials)
{
    if (!QDir().mkpath(folder))
        throw Failure(QStringLiteral("Couldn't create the folder %1.").arg(folder));
    const QString target = path(folder);
    const QString temporary =
        folder + QStringLiteral("/.chatgpt-%1.json").arg(QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper());
    if (AtomicFile::write(target, credentials.encode(), 0600, AtomicFile::Durability::Flushed, temporary))
        throw Failure(QStringLiteral("Couldn't save the ChatGPT sign-in to %1.").arg(target));
}

ChatGPTCredentials update(const QString &folder, const std::function<void(ChatGPTCredentials &)> &change)
{
    ChatGPTCredentials credentials = read(folder).value_or(ChatGPTCredentials::fresh());
    change(credentials);
    write(folder, credentials);
    return credentials;
}

namespace {

int openAndLock(const QString &folder)
{
    QDir().mkpath(folder);
    const QByteArray file = QFile::encodeName(lockPath(folder));
    const int descriptor = ::open(file.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return descriptor;
    while (::flock(descriptor, LOCK_EX) != 0) {
        if (errno != EINTR)
            break;
    }
    return descriptor;
}

} // namespace

QCoro::Task<int> lock(const QString &folder)
{
    co_return co_await QtConcurrent::run(openAndLock, folder);
}

void unlock(int descriptor)
{
    if (descriptor < 0)
        return;
    ::flock(descriptor, LOCK_UN);
    ::close(descriptor);
}

} // namespace zentoro::CredentialStore
