#include "core/AtomicFile.h"

#include <QFile>
#include <QRandomGenerator>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zentoro::AtomicFile {

std::optional<QString> write(const QString &path, const QByteArray &contents, int mode)
{
    const QByteArray target = QFile::encodeName(path);
    const QByteArray temporary =
        target + ".tmp-" + QByteArray::number(QRandomGenerator::system()->generate64(), 36);
    const int descriptor = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor < 0)
        return QString::fromLocal8Bit(std::strerror(errno));
    // The umask may have taken bits away; credentials rely on the exact mode.
    ::fchmod(descriptor, mode);

    auto fail = [&](int error) {
        ::close(descriptor);
        ::unlink(temporary.constData());
        return QString::fromLocal8Bit(std::strerror(error));
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
    // No fsync: what we guard against is this process dying, and the kernel keeps written
    // pages when it does; ext4 also puts a replacing rename's data on disk before the rename.
    // A sync on every save of a long conversation would cost more than the write itself.
    if (::close(descriptor) != 0) {
        const int error = errno;
        ::unlink(temporary.constData());
        return QString::fromLocal8Bit(std::strerror(error));
    }
    if (::rename(temporary.constData(), target.constData()) != 0) {
        const int error = errno;
        ::unlink(temporary.constData());
        return QString::fromLocal8Bit(std::strerror(error));
    }
    return std::nullopt;
}

} // namespace zentoro::AtomicFile
