#pragma once

#include <QByteArray>
#include <QString>

namespace zentoro::test {

// The whole file as text; empty when it can't be read.
QString readText(const QString &path);
// Writes `bytes` as the whole file, making its folder first; a failure fails the test.
void writeFile(const QString &path, const QByteArray &bytes);

} // namespace zentoro::test
