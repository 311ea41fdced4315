#include "KitTestSupport.h"

#include "runtime/BuildSteps.h"
#include "runtime/Shell.h"

#include "support/Await.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <dlfcn.h>

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

const Workspace &kitTestCopy()
{
    static const Workspace copy = Workspace::forName(QStringLiteral("Kit Test"));
    return copy;
}

const Kit::Build &sharedKit()
{
    static const Kit::Build build = await(Kit::ensureBuilt({}, *swiftc(), QStringLiteral("Swift test")));
    return build;
}

QCoro::Task<QString> buildAppFiles(const QString &module, const QStringList &files, QString *error)
{
    static QTemporaryDir folder;
    const QString dir = folder.path() + u'/' + module;
    const QString entry = dir + QStringLiteral("/ZentoroEntry.swift");
    writeFile(entry, BuildSteps::entryFile(kitTestCopy().name, kitTestCopy().defaultsSuite()).toUtf8());
    const QString output = dir + QStringLiteral("/lib") + module + QStringLiteral(".so");
    QStringList arguments{QStringLiteral("-emit-library"),
                          QStringLiteral("-parse-as-library"),
                          QStringLiteral("-module-name"),
                          module,
                          QStringLiteral("-swift-version"),
                          QStringLiteral("5"),
                          QStringLiteral("-Onone"),
                          QStringLiteral("-module-cache-path"),
                          dir + QStringLiteral("/ModuleCache"),
                          QStringLiteral("-o"),
                          output};
    arguments << sharedKit().arguments << entry << files;
    const Shell::Result result = co_await Shell::run(*swiftc(), arguments, dir);
    if (result.status != 0) {
        *error = result.output;
        co_return QString();
    }
    co_return output;
}

QString buildApp(const QString &module, const QString &source, QString *error)
{
    static QTemporaryDir folder;
    const QString app = folder.path() + u'/' + module + QStringLiteral("/App.swift");
    writeFile(app, source.toUtf8());
    return await(buildAppFiles(module, {app}, error));
}

void *loadApp(const QString &module, const QString &source)
{
    QString error;
    const QString library = buildApp(module, source, &error);
    EXPECT_FALSE(library.isEmpty()) << error.toStdString();
    void *handle = library.isEmpty() ? nullptr : dlopen(library.toUtf8().constData(), RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(handle, nullptr) << (library.isEmpty() ? "" : dlerror());
    return handle;
}

KitWindow::KitWindow(void *handle, QSize size)
{
    auto factory = reinterpret_cast<void *(*)()>(dlsym(handle, "zentoro_make_root_view"));
    container.resize(size);
    view = new KitHostView(handle, factory(), &container);
    container.show();
}

void KitWindow::click(QPoint at) const
{
    QTest::mouseClick(view, Qt::LeftButton, {}, at);
}

} // namespace zentoro::test
