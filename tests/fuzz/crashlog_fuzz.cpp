// A log the previous run left, cut off anywhere or garbled: reading its crash gives one
// line or none.
#include "runtime/CrashLog.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static QTemporaryDir folder;
    const QString path = folder.path() + QStringLiteral("/previous.log");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    file.write(reinterpret_cast<const char *>(data), qint64(size));
    file.close();
    const std::optional<zentoro::CrashLog::PreviousCrash> crash = zentoro::CrashLog::previousCrash(path);
    if (crash && crash->text.contains(u'\n'))
        std::abort();
    return 0;
}
