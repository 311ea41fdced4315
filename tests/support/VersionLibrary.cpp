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

QByteArray standInLibrary(int interfaceVersion)
{
    QByteArray source = "void *zentoro_make_root_view(void) { return 0; }\n"
                        "int zentoro_kit_interface_version(void) { return " +
                        QByteArray::number(interfaceVersion) + "; }\n";
    // Never called while the factory makes no view; only found.
    for (const char *name :
         {"zentoro_view_attach", "zentoro_view_release", "zentoro_view_set_size", "zentoro_view_set_appearance",
          "zentoro_view_update", "zentoro_view_render", "zentoro_view_next_frame", "zentoro_view_pointer",
          "zentoro_view_scroll", "zentoro_view_key", "zentoro_view_text_changed", "zentoro_view_text_submitted",
          "zentoro_view_text_focus", "zentoro_kit_main_queue_fd", "zentoro_kit_service_main"})
        source += "void " + QByteArray(name) + "(void) {}\n";
    return source;
}

void buildVersionLibrary(const QString &cc, const Workspace &workspace, int number, const QByteArray &body)
{
    QDir().mkpath(workspace.version(number));
    const QString source = workspace.version(number) + QStringLiteral("/lib.c");
    QFile file(source);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(body);
    file.close();
    const Shell::Result result = await(Shell::run(cc, {QStringLiteral("-shared"), QStringLiteral("-fPIC"),
                                                       QStringLiteral("-o"), workspace.dylib(number), source}));
    ASSERT_EQ(result.status, 0) << result.output.toStdString();
}

} // namespace zentoro::test
