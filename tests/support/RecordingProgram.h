#pragma once

#include <QString>

namespace zentoro::test {

// A shell script standing in for Zentoro where a test starts "the program": each start appends
// the name it was started as ($0) and its arguments, one a line, to `log`.
void writeRecordingProgram(const QString &path, const QString &log);

// Whether `log` holds `line` within a few seconds: a started program runs on its own.
bool waitForLine(const QString &log, const QString &line);

} // namespace zentoro::test
