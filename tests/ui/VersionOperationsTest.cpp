#include "CopyOnDisk.h"

#include "runtime/Relaunch.h"
#include "support/Alert.h"
#include "ui/VersionMenu.h"

#include <QMenu>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

#include <sys/wait.h>
#include <unistd.h>

using namespace zentoro;

namespace {

// Versions 1 to `count` on disk, `current` running.
class VersionOperations : public test::CopyOnDisk {
protected:
    Runtime &launchWith(int count, int current)
    {
        for (int number = 1; number <= count; ++number)
            makeVersion(number);
        state.current = current;
        return launch();
    }

    QString sourcesFile(const QString &name) const { return workspace.sources() + u'/' + name; }
    QByteArray appRoot() const { return test::readText(sourcesFile("AppRoot.swift")).toUtf8(); }
};

TEST_F(VersionOperations, GoingBackRestoresThatVersionsSourcesAndRunsIt)
{
    Runtime &runtime = launchWith(2, 2);
    ASSERT_EQ(runtime.loadedVersion(), 2);
    runtime.setBanner(Banner{"Old trouble", std::nullopt, false});

    runtime.revert(1);
    EXPECT_EQ(appRoot(), sourceText(1).toUtf8());
    EXPECT_EQ(runtime.loadedVersion(), 1);
    EXPECT_EQ(runtime.state().nextNumber, 3);
    EXPECT_EQ(runtime.banner(), std::nullopt);
    EXPECT_EQ(shownEvents, QStringList{"Went back to version 1."});
    EXPECT_EQ(toldEvents.value(0),
              "The user went back to version 1. The source files now match version 1, which is running.");
}

TEST_F(VersionOperations, GoingBackToADamagedVersionKeepsTheRunningOneAndSaysSo)
{
    Runtime &runtime = launchWith(3, 3);
    QDir(workspace.version(1) + "/Sources").removeRecursively();
    QFile::remove(workspace.dylib(2));
    const int generation = runtime.generation();
    const QByteArray before = appRoot();

    runtime.revert(1);
    ASSERT_TRUE(runtime.banner());
    EXPECT_EQ(runtime.banner()->title, "Couldn't restore version 1's sources");
    EXPECT_FALSE(runtime.banner()->offerFix);
    EXPECT_EQ(runtime.generation(), generation);
    EXPECT_EQ(appRoot(), before);

    // Sources that could be restored stay restored, to be built again.
    runtime.revert(2);
    ASSERT_TRUE(runtime.banner());
    EXPECT_EQ(runtime.banner()->title, "Couldn't load version 2");
    EXPECT_FALSE(runtime.banner()->offerFix);
    EXPECT_EQ(runtime.loadedVersion(), 3);
    EXPECT_EQ(appRoot(), sourceText(2).toUtf8());
    EXPECT_TRUE(shownEvents.isEmpty());
}

TEST_F(VersionOperations, AFailedRebuildOffersTheFixAndTellsTheAgent)
{
    Runtime &runtime = launchWith(1, 1);
    ASSERT_EQ(runtime.toolchain().kind(), Toolchain::Case::Missing);

    test::await(runtime.rebuild());
    ASSERT_TRUE(runtime.banner() && runtime.banner()->detail);
    EXPECT_EQ(runtime.banner()->title, "Build failed");
    EXPECT_TRUE(runtime.banner()->offerFix);
    EXPECT_EQ(shownEvents, QStringList{"A manual build failed."});
    EXPECT_EQ(toldEvents.value(0),
              "The user tried to build the source folder and it failed:\n" + *runtime.banner()->detail);
    EXPECT_EQ(runtime.state().versions.size(), 1);
}

// Confirmed first; then the starter app comes back, the agent hears of it, and its failed
// build is reported while the history stays whole.
TEST_F(VersionOperations, ResetIsConfirmedThenPutsTheStarterAppBack)
{
    Runtime &runtime = launchWith(1, 1);
    test::writeFile(sourcesFile("Extra.swift"), "// mine\n");

    test::AlertSeen cancel;
    test::answerNextAlert(cancel, "Cancel");
    Reset::confirm(nullptr, runtime);
    EXPECT_EQ(cancel.text, "Reset to the original app?");
    EXPECT_TRUE(QFile::exists(sourcesFile("Extra.swift")));

    test::AlertSeen reset;
    test::answerNextAlert(reset, "Reset");
    Reset::confirm(nullptr, runtime);
    ASSERT_TRUE(test::spinUntil([&] { return runtime.banner().has_value(); }));
    EXPECT_FALSE(QFile::exists(sourcesFile("Extra.swift")));
    EXPECT_NE(appRoot(), sourceText(1).toUtf8());
    EXPECT_EQ(shownEvents, QStringList{"Reset to the original app."});
    EXPECT_EQ(toldEvents.value(0), "The user reset the source files to Zentoro's original starter app.");
    EXPECT_EQ(runtime.banner()->title, "The original app didn't build");
    EXPECT_TRUE(QFile::exists(workspace.dylib(1)));
}

// A "state.json" that can't be read is kept aside, and the versions it listed stay on disk:
// the start's first build takes a number that no version folder holds. A reset waits for a build.
TEST_F(VersionOperations, AnUnreadableStateCostsNoVersionAndAResetWaitsForTheBuild)
{
    Defaults::remove(QStringLiteral("ZentoroSimulateMissingTools"));
    if (Toolchain::locate().isEmpty())
        GTEST_SKIP() << "No Swift compiler found (swiftc on PATH or in /opt/swift/usr/bin); skipped.";
    makeVersion(1);
    makeVersion(2);
    test::writeFile(workspace.stateFile(), "{\"nextNumber\": 3, \"versions\": [");
    Runtime &runtime = launchOnDisk();
    EXPECT_EQ(test::readText(workspace.stateFile() + ".unreadable"), "{\"nextNumber\": 3, \"versions\": [");
    ASSERT_TRUE(test::spinUntil([&] { return !runtime.state().versions.isEmpty() || runtime.banner(); },
                                std::chrono::minutes(10)));
    ASSERT_EQ(runtime.state().versions.size(), 1)
        << runtime.banner().value_or(Banner{}).detail.value_or("").toStdString();
    EXPECT_EQ(runtime.state().versions[0].number, 3);
    EXPECT_EQ(runtime.loadedVersion(), 3);
    for (int number : {1, 2})
        EXPECT_TRUE(QFile::exists(workspace.dylib(number))) << number;

    test::writeFile(sourcesFile("Extra.swift"), "// mine\n");
    const TaskHandle building = startTask([&](TaskHandle) -> QCoro::Task<> { co_await runtime.rebuild(); });
    ASSERT_TRUE(runtime.isBuilding());
    test::await(runtime.resetToOriginal());
    ASSERT_TRUE(runtime.banner());
    EXPECT_EQ(runtime.banner()->title, "Couldn't reset");
    EXPECT_EQ(runtime.banner()->detail, "A build is running. Reset once it has finished.");
    EXPECT_TRUE(QFile::exists(sourcesFile("Extra.swift")));
    ASSERT_TRUE(test::spinUntil([&] { return building.isFinished(); }, std::chrono::minutes(10)));
    EXPECT_EQ(runtime.loadedVersion(), 4);
    EXPECT_TRUE(QFile::exists(workspace.version(4) + "/Sources/Extra.swift"));
}

TEST_F(VersionOperations, TheVersionMenuListsNewestFirstAndGoesBack)
{
    // The menu's titles, with its first action.
    QMenu menu;
    const auto titles = [&](Runtime &runtime) {
        VersionMenu::fill(&menu, runtime, nullptr);
        QStringList texts;
        for (QAction *action : menu.actions())
            texts.append(action->text());
        return texts;
    };
    EXPECT_EQ(titles(launch()), (QStringList{"No versions yet", "", "Show Source Folder", "Reset to Original App…"}));
    EXPECT_FALSE(menu.actions()[0]->isEnabled());

    makeVersion(1);
    makeVersion(2, true);
    makeVersion(3);
    state.versions[0].summary = QString(60, u'a');
    state.versions[2].summary = QString(61, u'b');
    state.versions[1].summary = QStringLiteral("Tom & Jerry scoreboard");
    state.current = 1;
    Runtime &runtime = launch();
    const QString time = QLocale().toString(state.versions[0].date.toLocalTime().time(), QLocale::ShortFormat);
    EXPECT_EQ(titles(runtime), (QStringList{QStringLiteral("3. %1… (%2)").arg(QString(57, u'b'), time),
                                            QStringLiteral("2. Tom && Jerry scoreboard (%1)").arg(time),
                                            QStringLiteral("1. %1 (%2)").arg(QString(60, u'a'), time), "",
                                            "Show Source Folder", "Reset to Original App…"}));
    // The loaded version and the crashed one are marked; the others are not.
    EXPECT_TRUE(menu.actions()[0]->icon().isNull());
    EXPECT_FALSE(menu.actions()[1]->icon().isNull());
    EXPECT_FALSE(menu.actions()[2]->icon().isNull());

    menu.actions()[0]->trigger();
    EXPECT_EQ(runtime.loadedVersion(), 3);
    EXPECT_EQ(appRoot(), sourceText(3).toUtf8());
}

TEST(FileManager, AskedToShowAFolderWhoseNameHasACommaGetsThatOneFolder)
{
    const QString path = QStringLiteral("/home/ana/Zentoro/Timer, v2/Sources");
    const QStringList call = FileManager::showItemsCall(path);
    const QStringList items = call.filter(QStringLiteral("array:string:"));
    ASSERT_EQ(items.size(), 1);
    const QString item = items[0].mid(QStringLiteral("array:string:").size());
    EXPECT_FALSE(item.contains(u','));
    EXPECT_EQ(QUrl(item).toLocalFile(), path);
}

// The relaunch script, run for real against a stand-in program that writes down how it was
// started: it waits for the old process, starts the program in a session of its own, and hands
// on the key through the environment, never through the script's words.
TEST(RelaunchScript, WaitsForTheOldProcessThenStartsTheProgramInANewSessionWithTheKey)
{
    QTemporaryDir folder;
    const QString program = folder.filePath(QStringLiteral("Kitchen Timer"));
    const QByteArray report = folder.filePath(QStringLiteral("report")).toUtf8();
    test::writeFile(program,
                    "#!/bin/sh\n{ echo \"$0|$*|${OPENAI_API_KEY-unset}\"; cut -d' ' -f6 /proc/$$/stat; } > \"" +
                        report + ".tmp\" && mv \"" + report + ".tmp\" \"" + report + "\"\n");
    QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
    for (const char *key : {"sk-from-env", static_cast<const char *>(nullptr)}) {
        SCOPED_TRACE(key ? key : "no key");
        QFile::remove(report);
        key ? qputenv("OPENAI_API_KEY", key) : qunsetenv("OPENAI_API_KEY");
        QProcess old;
        old.start("/bin/sleep", {"30"});
        ASSERT_TRUE(old.waitForStarted());
        const QString script = Relaunch::script(old.processId(), key != nullptr);
        EXPECT_FALSE(script.contains("sk-from-env"));
        pid_t shell = 0;
        ASSERT_EQ(Relaunch::start(script, program, &shell), std::nullopt);
        QThread::msleep(400);
        EXPECT_FALSE(QFile::exists(report)) << "the program started while the old process lived";
        old.kill();
        old.waitForFinished();
        ASSERT_TRUE(test::spinUntil([&] { return QFile::exists(report); }));
        ::waitpid(shell, nullptr, 0);
        const QStringList lines = test::readText(report).trimmed().split(u'\n');
        ASSERT_EQ(lines.size(), 2);
        EXPECT_EQ(lines[0], program + (key ? "|-ZentoroSafeMode YES|sk-from-env" : "||unset"));
        EXPECT_NE(lines[1].toLongLong(), qint64(::getsid(0)));
    }

    // An old process that has ended but isn't reaped yet, as under a launcher that reaps late.
    QFile::remove(report);
    const pid_t ended = ::fork();
    if (ended == 0)
        ::_exit(0);
    QThread::msleep(100);
    pid_t shell = 0;
    ASSERT_EQ(Relaunch::start(Relaunch::script(ended, false), program, &shell), std::nullopt);
    EXPECT_TRUE(test::spinUntil([&] { return QFile::exists(report); }, std::chrono::seconds(5)));
    ::waitpid(ended, nullptr, 0);
    ::waitpid(shell, nullptr, 0);
}

TEST(RelaunchPath, KeepsTheNameTheUserStartedAndDoesNotFollowLinks)
{
    QTemporaryDir folder;
    const QString link = folder.filePath(QStringLiteral("Kitchen Timer"));
    ASSERT_TRUE(QFile::link(QStringLiteral("/bin/true"), link));
    const QString previous = QDir::currentPath();
    QDir::setCurrent(folder.path());
    EXPECT_EQ(Relaunch::executableFrom(QStringLiteral("./Kitchen Timer"), QString()), link);
    EXPECT_EQ(Relaunch::executableFrom(QStringLiteral("Kitchen Timer/../Kitchen Timer"), QString()), link);
    QDir::setCurrent(previous);
    EXPECT_EQ(Relaunch::executableFrom(QStringLiteral("sh"), QString()), QStandardPaths::findExecutable("sh"));
    EXPECT_EQ(Relaunch::executableFrom(QStringLiteral("/x/zentoro"), QStringLiteral("/apps/Timer.AppImage")),
              QStringLiteral("/apps/Timer.AppImage"));
}

} // namespace
