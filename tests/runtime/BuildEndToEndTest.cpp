#include "KitTestSupport.h"
#include "RealProgram.h"

#include "core/Defaults.h"

#include "runtime/BuildSteps.h"
#include "runtime/KitHostView.h"
#include "runtime/PluginContainerView.h"
#include "runtime/Runtime.h"

#include "support/Await.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <ctime>

#include <signal.h>

using namespace zentoro;
using namespace zentoro::test;
using namespace std::chrono_literals;

namespace {

// Whether the container, painted as a person would see it, has a pixel of this colour.
bool shows(QWidget &container, QRgb colour)
{
    const QImage image = container.grab().toImage().convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2) {
            const QRgb pixel = image.pixel(x, y);
            if (qAbs(qRed(pixel) - qRed(colour)) <= 2 && qAbs(qGreen(pixel) - qGreen(colour)) <= 2 &&
                qAbs(qBlue(pixel) - qBlue(colour)) <= 2)
                return true;
        }
    }
    return false;
}

} // namespace

// The whole loop with the real compiler, the real kit and a real offscreen window: the
// Seed app becomes version 1, a compile error changes nothing that runs, and the repaired
// source replaces the view as version 2 without a restart.
TEST(BuildEndToEnd, SeedBuildsLoadsAndIsReplacedByTheNextVersion)
{
    ZENTORO_REQUIRE_SWIFTC();
    const Workspace workspace = Workspace::forName(QStringLiteral("End To End"));
    workspace.prepare();
    Runtime runtime(workspace);
    await(runtime.checkToolchain());
    QWidget window;
    window.resize(640, 480);
    auto *container = new PluginContainerView(&runtime, &window);
    container->resize(640, 480);
    window.show();

    const BuildOutcome first = await(runtime.build(QStringLiteral("The original app")));
    ASSERT_TRUE(first.success()) << first.failure()->text.toStdString();
    EXPECT_EQ(first.success()->version, 1);
    ASSERT_TRUE(spinUntil([&] { return container->shownGeneration() == 1 && container->content(); }));
    const auto *host = qobject_cast<KitHostView *>(container->content());
    ASSERT_NE(host, nullptr);
    EXPECT_EQ(host->error(), QString());
    // The Seed app's warm background and its orange badge.
    EXPECT_TRUE(spinUntil([&] { return shows(*container, qRgb(250, 245, 235)); }));
    EXPECT_TRUE(shows(*container, qRgb(245, 115, 56)));
    EXPECT_TRUE(QFile::exists(workspace.version(1) + QStringLiteral("/Sources/AppRoot.swift")));
    // A version on screen leaves the process idle between events, so builds get the processor.
    const std::clock_t idleStart = std::clock();
    QEventLoop idle;
    QTimer::singleShot(1s, &idle, &QEventLoop::quit);
    idle.exec();
    EXPECT_LT(double(std::clock() - idleStart) / CLOCKS_PER_SEC, 0.3);

    // Two failed builds: the running version and the numbers stay as they were. What the kit
    // lacks is named with the way out, in the words the model reads.
    writeFile(workspace.sources() + QStringLiteral("/Views/Broken.swift"),
              "import SwiftUI\nimport Charts\nstruct Broken: View {\n    var body: some View { Text(missingName) }\n"
              "    var chart: some View { Chart { BarMark(x: 1, y: 2) } }\n}\n");
    const QPointer<QWidget> firstView = container->content();
    for (int attempt = 0; attempt < 2; ++attempt) {
        const BuildOutcome failed = await(runtime.build(QStringLiteral("Broken")));
        ASSERT_TRUE(failed.failure());
        EXPECT_TRUE(failed.failure()->text.contains(QStringLiteral("Views/Broken.swift:4:")))
            << failed.failure()->text.toStdString();
        EXPECT_TRUE(failed.failure()->text.contains(
            QStringLiteral("'Chart' is unavailable: Chart isn't in Zentoro's SwiftUI: draw bars as Rectangles")))
            << failed.failure()->text.toStdString();
        EXPECT_FALSE(failed.failure()->text.contains(workspace.sources())) << failed.failure()->text.toStdString();
    }
    EXPECT_EQ(runtime.loadedVersion(), 1);
    EXPECT_EQ(runtime.state().nextNumber, 2);
    EXPECT_FALSE(QFile::exists(workspace.version(2)));
    spinUntil([] { return false; }, 200ms);
    EXPECT_EQ(container->content(), firstView.data());

    // The repair, with a new background so the change is plain to see.
    writeFile(workspace.sources() + QStringLiteral("/Views/Broken.swift"),
              "import SwiftUI\nstruct Broken: View {\n    var body: some View { Text(\"fixed\") }\n}\n");
    const QString theme = workspace.sources() + QStringLiteral("/Theme.swift");
    writeFile(theme, readText(theme)
                         .replace(QStringLiteral("Color(red: 0.98, green: 0.96, blue: 0.92)"),
                                  QStringLiteral("Color(red: 0.2, green: 0.4, blue: 0.8)"))
                         .toUtf8());
    // A name with every character the compiler's list of files must carry through.
    writeFile(workspace.sources() + QStringLiteral("/Views/A \"b\" it's c\\d #1\té\nline.swift"),
              "let oddlyNamed = 1\n");

    std::optional<BuildOutcome> second;
    const TaskHandle building = startTask([&](TaskHandle) -> QCoro::Task<> {
        const QString summary = QStringLiteral("Blue");
        second = co_await runtime.build(summary);
    });
    ASSERT_TRUE(runtime.isBuilding());
    const BuildOutcome meanwhile = await(runtime.build(QStringLiteral("Meanwhile")));
    ASSERT_TRUE(meanwhile.failure());
    EXPECT_EQ(meanwhile.failure()->text, QStringLiteral("Another build is already running."));
    ASSERT_TRUE(spinUntil([&] { return building.isFinished(); }, 10min));
    ASSERT_TRUE(second && second->success()) << (second ? second->failure()->text.toStdString() : "");
    EXPECT_EQ(second->success()->version, 2);
    EXPECT_GT(second->success()->seconds, 0);
    ASSERT_TRUE(spinUntil([&] { return container->shownGeneration() == 2 && container->content(); }));
    EXPECT_TRUE(firstView.isNull()) << "the old root view is dropped";
    EXPECT_TRUE(spinUntil([&] { return shows(*container, qRgb(51, 102, 204)); }));
    EXPECT_TRUE(QFile::exists(workspace.version(2) + QStringLiteral("/Sources/Views/Broken.swift")));
    // Libraries are never closed.
    const QString maps = readText(QStringLiteral("/proc/self/maps"));
    EXPECT_TRUE(maps.contains(workspace.dylib(1)) && maps.contains(workspace.dylib(2)));

    ASSERT_TRUE(spinUntil([&] { return runtime.state().lastGood == 2; }, 8s));
    EXPECT_EQ(RuntimeState::read(workspace.stateFile()), runtime.state());
    EXPECT_EQ(runtime.state().versions.value(1).summary, QStringLiteral("Blue"));

    // Sources emptied: nothing to build, and nothing recorded.
    QDir(workspace.sources()).removeRecursively();
    QDir().mkpath(workspace.sources());
    const BuildOutcome empty = await(runtime.build(QStringLiteral("Nothing")));
    ASSERT_TRUE(empty.failure());
    EXPECT_EQ(empty.failure()->text, QStringLiteral("There are no .swift files in the source folder."));
    EXPECT_EQ(RuntimeState::read(workspace.stateFile()), runtime.state());
    EXPECT_EQ(runtime.state().nextNumber, 3);

    // A folder of more files than any app has is refused in words, without a compile.
    for (qsizetype file = 0; file <= BuildSteps::swiftFileLimit; ++file)
        writeFile(workspace.sources() + QStringLiteral("/Many/F%1.swift").arg(file), "");
    const BuildOutcome many = await(runtime.build(QStringLiteral("Many")));
    ASSERT_TRUE(many.failure());
    EXPECT_EQ(many.failure()->text,
              QStringLiteral("The source folder holds 10001 .swift files; a build takes at most 10000. Delete the "
                             "files the app doesn't need and build again."));
}

// The Swift compiler is updated between two starts, so the kit the program builds against
// changes. The version it starts on was built against the old kit: it is built again from its
// own sources before it runs, and a build after it binds to the new kit alone.
TEST(BuildEndToEnd, AVersionBuiltAgainstAnotherKitIsBuiltAgainBeforeItRuns)
{
    ZENTORO_REQUIRE_PROGRAM();
    // Two releases of the compiler: the same compiler under two version names.
    QTemporaryDir compilers;
    const auto release = [&](const QString &name) {
        const QString folder = compilers.filePath(name);
        const QString file = folder + QStringLiteral("/swiftc");
        writeFile(file,
                  QStringLiteral("#!/bin/sh\n"
                                 "if [ \"$1\" = --version ]; then echo 'Swift version 6.3.1-%1 (test)'; exit 0; fi\n"
                                 "exec '%2' \"$@\"\n")
                      .arg(name, *test::swiftc())
                      .toUtf8());
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return folder;
    };
    const QString path = qEnvironmentVariable("PATH");
    const QString before = release(QStringLiteral("before"));
    const QString after = release(QStringLiteral("after"));

    // The first start builds the starter app as version 1, against the kit of "before".
    Program program(QStringLiteral("Kit Update"));
    QDir(program.workspace.root).removeRecursively();
    program.environment.insert(QStringLiteral("PATH"), before + u':' + path);
    program.start();
    ASSERT_TRUE(spinUntil([&] { return RuntimeState::read(program.workspace.stateFile()).current == 1; }, 10min));
    ::kill(pid_t(program.process.processId()), SIGTERM);
    ASSERT_TRUE(program.process.waitForFinished(20000));

    // Started again, here, after the update.
    qputenv("PATH", (after + u':' + path).toUtf8());
    const auto restorePath = qScopeGuard([&] { qputenv("PATH", path.toUtf8()); });
    Defaults::setValue(QStringLiteral("ZentoroNoLogRedirect"), true);
    Runtime runtime(program.workspace);
    QStringList shown;
    runtime.onEvent = [&](const QString &line, const QString &) { shown.append(line); };
    runtime.launch();
    EXPECT_EQ(runtime.loadedVersion(), std::nullopt) << "the old build waits to be built again";
    ASSERT_TRUE(spinUntil([&] { return runtime.loadedVersion() == 1; }, 10min))
        << runtime.banner().value_or(Banner{}).detail.value_or(QString()).toStdString();
    EXPECT_TRUE(shown.contains(QStringLiteral("Version 1 was built again for this Zentoro's UI kit.")))
        << shown.join(u'\n').toStdString();
    EXPECT_EQ(runtime.state().versions.size(), 1);

    const BuildOutcome again = await(runtime.build(QStringLiteral("Once more")));
    ASSERT_TRUE(again.success()) << again.failure()->text.toStdString();
    const QString maps = readText(QStringLiteral("/proc/self/maps"));
    EXPECT_TRUE(maps.contains(program.workspace.dylib(2)));
    // Maps name files by the paths that links lead to.
    const auto kitFolder = [](const char *compiler) {
        return QFileInfo(Kit::cacheFolder(QString::fromLatin1(compiler))).canonicalFilePath() + u'/';
    };
    EXPECT_TRUE(maps.contains(kitFolder("Swift 6.3.1-after")));
    EXPECT_FALSE(maps.contains(kitFolder("Swift 6.3.1-before")));
}
