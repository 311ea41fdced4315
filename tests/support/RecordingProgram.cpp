#include "support/RecordingProgram.h"

#include "support/Files.h"

#include <QFile>
#include <QTest>

namespace zentoro::test {

void writeRecordingProgram(const QString &path, const QString &log)
{
    QString quotedLog = log;
    quotedLog.replace(u'\'', QStringLiteral("'\\''"));
    writeFile(path, QStringLiteral("#!/bin/sh\nprintf '%s\\n' \"$0\" \"$@\" >> '%1'\n").arg(quotedLog).toUtf8());
    QFile::setPermissions(path, QFile::permissions(path) | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther);
}

bool waitForLine(const QString &log, const QString &line)
{
    return QTest::qWaitFor([&] { return readText(log).split(u'\n').contains(line); }, 10000);
}

} // namespace zentoro::test
