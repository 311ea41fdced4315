#include "CopyOnDisk.h"

#include "support/Alert.h"

#include "runtime/Relaunch.h"
#include "ui/VersionMenu.h"

#include <QMenu>
#include <QProcess>
#include <QTemporaryDir>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace zentoro;
using namespace std::chrono_literals;

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
    for (const bool sourcesLost : {true, false}) {
        SCOPED_TRACE(sourcesLost ? "sources lost" : "library lost");
        state = RuntimeState{};
        shownEvents.clear();
        makeVersion(1);
        makeVersion(2);
        state.current = 2;
        if (sourcesLost)
            QDir(workspace.version(1) + "/Sources").removeRecursively();
        else
            QFile::remove(workspace.dylib(1));
        Runtime &runtime = launch();
        const QByteArray before = appRoot();
        const int generation = runtime.generation();

        runtime.revert(1);
        ASSERT_TRUE(runtime.banner());
        EXPECT_EQ(runtime.banner()->title, sourcesLost ? "Couldn't restore version 1's sources" : "Couldn't load version 1");
        EXPECT_FALSE(runtime.banner()->offerFix);
        EXPECT_EQ(runtime.loadedVersion(), 2);
        // Sources that could be restored stay restored, to be built again.
        EXPECT_EQ(appRoot(), sourcesLost ? before : sourceText(1).toUtf8());
        if (sourcesLost)
            EXPECT_EQ(runtime.generation(), generation);
        EXPECT_TRUE(shownEvents.isEmpty());
    }
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
    EXPECT_EQ(toldEvents.value(0), "The user tried to build the source folder and it failed:\n" + *runtime.banner()->detail);
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

TEST_F(VersionOperations, TheVersionMenuListsNewestFirstAndGoesBack)
{
    makeVersion(1);
    makeVersion(2, true);
    makeVersion(3);
    state.versions[0].summary = QString(60, u'a');
    state.versions[2].summary = QString(61, u'b');
    state.current = 1;
    Runtime &runtime = launch();

    QMenu menu;
    VersionMenu::fill(&menu, runtime, nullptr);
    QStringList titles;
    for (QAction *action : menu.actions())
        titles.append(action->text());
    const QString time = QLocale().toString(state.versions[0].date.toLocalTime().time(), QLocale::ShortFormat);
    ASSERT_EQ(titles.size(), 6) << titles.join(u'|').toStdString();
    EXPECT_EQ(titles[0], QStringLiteral("3. %1… (%2)").arg(QString(57, u'b'), time));
    EXPECT_EQ(titles[1], QStringLiteral("2. Version 2 (%1)").arg(time));
    EXPECT_EQ(titles[2], QStringLiteral("1. %1 (%2)").arg(QString(60, u'a'), time));
    EXPECT_EQ(titles[4], QStringLiteral("Show Source Folder"));
    EXPECT_EQ(titles[5], QStringLiteral("Reset to Original App…"));
    // The loaded version and the crashed one are marked; the others are not.
    EXPECT_TRUE(menu.actions()[0]->icon().isNull());
    EXPECT_FALSE(menu.actions()[1]->icon().isNull());
    EXPECT_FALSE(menu.actions()[2]->icon().isNull());

    menu.actions()[0]->trigger();
    EXPECT_EQ(runtime.loadedVersion(), 3);
    EXPECT_EQ(appRoot(), sourceText(3).toUtf8());
}

TEST_F(VersionOperations, AnEmptyHistorySaysSo)
{
    Runtime &runtime = launch();
    QMenu menu;
    VersionMenu::fill(&menu, runtime, nullptr);
    ASSERT_FALSE(menu.actions().isEmpty());
    EXPECT_EQ(menu.actions()[0]->text(), QStringLiteral("No versions yet"));
    EXPECT_FALSE(menu.actions()[0]->isEnabled());
    EXPECT_EQ(VersionMenu::label(runtime), QStringLiteral("No Version"));
}

// The relaunch script, run for real against a stand-in program that writes down how it was started.
class RelaunchScript : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder_.isValid());
        program_ = folder_.filePath(QStringLiteral("Kitchen Timer"));
        report_ = folder_.filePath(QStringLiteral("report"));
        QFile file(program_);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n{ echo \"$0|$*|${OPENAI_API_KEY-unset}\"; cut -d' ' -f6 /proc/$$/stat; } > \"" +
                   report_.toUtf8() + ".tmp\" && mv \"" + report_.toUtf8() + ".tmp\" \"" + report_.toUtf8() + "\"\n");
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void TearDown() override { qunsetenv("OPENAI_API_KEY"); }

    // Runs the script for `waitedFor`, checks it waits while that lives, and gives the report lines.
    QStringList runWaitingFor(QProcess &waitedFor, bool safeMode)
    {
        pid_t shell = 0;
        EXPECT_EQ(Relaunch::start(Relaunch::script(waitedFor.processId(), safeMode), program_, &shell), std::nullopt);
        QThread::msleep(400);
        EXPECT_FALSE(QFile::exists(report_)) << "the program started while the old process lived";
        waitedFor.kill();
        waitedFor.waitForFinished();
        EXPECT_TRUE(test::spinUntil([&] { return QFile::exists(report_); }));
        int status = 0;
        ::waitpid(shell, &status, 0);
        QFile file(report_);
        file.open(QIODevice::ReadOnly);
        return QString::fromUtf8(file.readAll()).trimmed().split(u'\n');
    }

    QTemporaryDir folder_;
    QString program_;
    QString report_;
};

// The key reaches the new process through its environment, never through the script's words.
TEST_F(RelaunchScript, HasNoKeyInItsText)
{
    qputenv("OPENAI_API_KEY", "sk-secret");
    EXPECT_FALSE(Relaunch::script(4242, false).contains(QStringLiteral("sk-secret")));
}

TEST_F(RelaunchScript, WaitsForTheOldProcessThenStartsTheProgramInANewSessionWithTheKey)
{
    for (const char *key : {"sk-from-env", static_cast<const char *>(nullptr)}) {
        SCOPED_TRACE(key ? key : "no key");
        QFile::remove(report_);
        if (key)
            qputenv("OPENAI_API_KEY", key);
        else
            qunsetenv("OPENAI_API_KEY");
        QProcess old;
        old.start("/bin/sleep", {"30"});
        ASSERT_TRUE(old.waitForStarted());
        const QStringList report = runWaitingFor(old, key != nullptr);
        ASSERT_EQ(report.size(), 2);
        EXPECT_EQ(report[0], program_ + (key ? "|-ZentoroSafeMode YES|sk-from-env" : "||unset"));
        EXPECT_NE(report[1].toLongLong(), qint64(::getsid(0)));
    }
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
