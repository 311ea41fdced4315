#include "core/AtomicFile.h"

#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QRandomGenerator>
#include <QSet>
#include <QThreadPool>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zentoro::AtomicFile {

namespace {

QString systemWords(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// A rename is on the disk once its folder is.
void flushFolder(const QByteArray &file)
{
    const QByteArray folder = QFile::encodeName(QFileInfo(QFile::decodeName(file)).absolutePath());
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

void flushNow(const QByteArray &file)
{
    const int descriptor = ::open(file.constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fdatasync(descriptor);
        ::close(descriptor);
    }
    flushFolder(file);
}

} // namespace

std::optional<QString> write(const QString &path, const QByteArray &contents, int mode, Durability durability,
                             const QString &temporaryPath)
{
    const QByteArray target = QFile::encodeName(path);
    const QByteArray temporary = temporaryPath.isEmpty()
                                     ? target + ".tmp-" +
                                           QByteArray::number(QRandomGenerator::system()->generate64(), 36)
                                     : QFile::encodeName(temporaryPath);
    const int descriptor = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor < 0)
        return systemWords(errno);
    // The umask may have taken bits away; credentials rely on the exact mode.
    ::fchmod(descriptor, mode);

    auto fail = [&](int error) {
        ::close(descriptor);
        ::unlink(temporary.constData());
        return systemWords(error);
    };
    const char *data = contents.constData();
    qsizetype left = contents.size();
    while (left > 0) {
        const ssize_t written = ::write(descriptor, data, left);
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return fail(errno);
        }
        data += written;
        left -= written;
    }
    // Without this, a file system that allocates late (XFS, btrfs) may put the rename on the
    // disk before the data, and a power cut leaves an empty file where the old one was.
    if (durability == Durability::Flushed && ::fdatasync(descriptor) != 0)
        return fail(errno);
    if (::close(descriptor) != 0) {
        const int error = errno;
        ::unlink(temporary.constData());
        return systemWords(error);
    }
    if (::rename(temporary.constData(), target.constData()) != 0) {
        const int error = errno;
        ::unlink(temporary.constData());
        return systemWords(error);
    }
    if (durability == Durability::Flushed)
        flushFolder(target);
    return std::nullopt;
}

void flushInBackground(const QString &path)
{
    static QMutex mutex;
    static QSet<QByteArray> waiting;
    const QByteArray file = QFile::encodeName(path);
    {
        QMutexLocker locker(&mutex);
        if (waiting.contains(file))
            return;
        waiting.insert(file);
    }
    QThreadPool::globalInstance()->start([file] {
        {
            QMutexLocker locker(&mutex);
            waiting.remove(file);
        }
        flushNow(file);
    });
}

bool isDiskFull(const QString &error)
{
    return error == systemWords(ENOSPC) || error == systemWords(EDQUOT);
}

} // namespace zentoro::AtomicFile
