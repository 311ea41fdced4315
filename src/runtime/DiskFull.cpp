#include "runtime/DiskFull.h"

#include <QStorageInfo>

namespace zentoro::DiskFull {

namespace {

// Less than this is taken for a full disk: a build writes more than that.
constexpr qint64 leastRoom = qint64(16) << 20;

} // namespace

Banner banner(const QString &what)
{
    return Banner{QStringLiteral("The disk is full: Zentoro couldn't save %1.").arg(what),
                  QStringLiteral("Free some space on the disk; Zentoro saves again at the next change."), false};
}

bool explainsBuildFailure(const QString &output, const QString &folder)
{
    if (output.contains(QStringLiteral("No space left on device")) ||
        output.contains(QStringLiteral("Disk quota exceeded")))
        return true;
    const QStorageInfo storage(folder);
    return storage.isValid() && storage.bytesAvailable() >= 0 && storage.bytesAvailable() < leastRoom;
}

QString buildFailure()
{
    return QStringLiteral("The build failed because the disk is full. This is not a problem in the code: ask the "
                          "user to free some space on the disk, then build again.");
}

} // namespace zentoro::DiskFull
