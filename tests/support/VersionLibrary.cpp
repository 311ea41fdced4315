#include "VersionLibrary.h"

#include "runtime/Shell.h"
#include "support/Await.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace zentoro::test {

QString cCompiler()
{
    const QString cc = QStandardPaths::findExecutable(QStringLiteral("cc"));
    return cc.isEmpty() ? QStandardPaths::findExecutable(QStringLiteral("gcc")) : cc;
}

void buildVersionLibrary(const QString &cc, const Workspace &workspace, int number, const QByteArray &body)
{
    QDir().mkpath(workspace.version(number));
    const QString source = workspace.version(number) + QStringLiteral("/lib.c");
    QFile file(source);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(body);
    file.close();
    const Shell::Result result =
        await(Shell::run(cc, {QStringLiteral("-shared"), QStringLiteral("-fPIC"), QStringLiteral("-o"),
                              workspace.dylib(number), source}));
    ASSERT_EQ(result.status, 0) << result.output.toStdString();
}

} // namespace zentoro::test
