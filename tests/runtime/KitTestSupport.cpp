#include "KitTestSupport.h"

#include "support/Await.h"

#include "runtime/Shell.h"

#include <QDir>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace zentoro::test {

std::optional<QString> swiftc()
{
    const QString onPath = QStandardPaths::findExecutable(QStringLiteral("swiftc"));
    if (!onPath.isEmpty())
        return onPath;
    if (QFile::exists(QStringLiteral("/opt/swift/usr/bin/swiftc")))
        return QStringLiteral("/opt/swift/usr/bin/swiftc");
    return std::nullopt;
}

const Kit::Build &sharedKit()
{
    static const Kit::Build build = await(Kit::ensureBuilt({}, *swiftc(), QStringLiteral("Swift test")));
    return build;
}

QString buildApp(const QString &module, const QString &source, QString *error)
{
    static QTemporaryDir folder;
    const QString dir = folder.path() + u'/' + module;
    QDir().mkpath(dir);
    const QString entry = dir + QStringLiteral("/ZentoroEntry.swift");
    const QString app = dir + QStringLiteral("/App.swift");
    QFile entryFile(entry), appFile(app);
    entryFile.open(QIODevice::WriteOnly);
    entryFile.write("import SwiftUI\n"
                    "enum AppInfo { static let name = \"Kit Test\" }\n"
                    "extension UserDefaults { static let app = UserDefaults(suiteName: \"dev.vantu.zentoro.app.Kit Test\")! }\n"
                    "@_cdecl(\"zentoro_make_root_view\")\n"
                    "public func zentoro_make_root_view() -> UnsafeMutableRawPointer { ZentoroHosting.makeRootView(AppRoot()) }");
    entryFile.close();
    appFile.open(QIODevice::WriteOnly);
    appFile.write(source.toUtf8());
    appFile.close();
    const QString output = dir + QStringLiteral("/lib") + module + QStringLiteral(".so");
    QStringList arguments{QStringLiteral("-emit-library"), QStringLiteral("-parse-as-library"),
                          QStringLiteral("-module-name"), module, QStringLiteral("-swift-version"), QStringLiteral("5"),
                          QStringLiteral("-Onone"), QStringLiteral("-module-cache-path"), dir + QStringLiteral("/ModuleCache"),
                          QStringLiteral("-o"), output};
    arguments += sharedKit().arguments;
    arguments << entry << app;
    const Shell::Result result = await(Shell::run(*swiftc(), arguments, dir));
    if (result.status != 0) {
        *error = result.output;
        return {};
    }
    return output;
}

void *loadApp(const QString &module, const QString &source)
{
    QString error;
    const QString library = buildApp(module, source, &error);
    EXPECT_FALSE(library.isEmpty()) << error.toStdString();
    if (library.isEmpty())
        return nullptr;
    void *handle = dlopen(library.toUtf8().constData(), RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(handle, nullptr) << dlerror();
    return handle;
}

} // namespace zentoro::test
