#include "CopyOnDisk.h"

#include "runtime/Relaunch.h"
#include "ui/VersionMenu.h"

#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace zentoro;
using namespace std::chrono_literals;

namespace {

using VersionOperations = test::CopyOnDisk;

TEST_F(VersionOperations, GoingBackRestoresThatVersionsSourcesAndRunsIt)
{
    makeVersion(1);
    makeVersion(2);
    state.current = 2;
    Runtime &runtime = launch();
    ASSERT_EQ(runtime.loadedVersion(), 2);
    runtime.setBanner(Banner{QStringLiteral("Old trouble"), std::nullopt, false});

    runtime.revert(1);
    EXPECT_EQ(readFile(workspace.sources() + QStringLiteral("/AppRoot.swift")), sourceText(1).toUtf8());
    EXPECT_EQ(runtime.loadedVersion(), 1);
    EXPECT_EQ(runtime.state().current, 1);
    EXPECT_EQ(runtime.state().nextNumber, 3);
    EXPECT_EQ(runtime.banner(), std::nullopt);
    ASSERT_EQ(shownEvents.size(), 1);
    EXPECT_EQ(shownEvents[0], QStringLiteral("Went back to version 1."));
    EXPECT_EQ(toldEvents[0],
              QStringLiteral("The user went back to version 1. The source files now match version 1, which is running."));
}

TEST_F(VersionOperations, GoingBackToAVersionWithoutSourcesChangesNothingThatRuns)
{
    makeVersion(1);
    makeVersion(2);
    state.current = 2;
    QDir(workspace.version(1) + QStringLiteral("/Sources")).removeRecursively();
    Runtime &runtime = launch();
    const QByteArray before = readFile(workspace.sources() + QStringLiteral("/AppRoot.swift"));
    const int generation = runtime.generation();

    runtime.revert(1);
    ASSERT_TRUE(runtime.banner());
    EXPECT_EQ(runtime.banner()->title, QStringLiteral("Couldn't restore version 1's sources"));
    EXPECT_FALSE(runtime.banner()->offerFix);
    EXPECT_EQ(runtime.loadedVersion(), 2);
    EXPECT_EQ(runtime.generation(), generation);
    EXPECT_EQ(readFile(workspace.sources() + QStringLiteral("/AppRoot.swift")), before);
    EXPECT_TRUE(shownEvents.isEmpty());
}

TEST_F(VersionOperations, AVersionThatWontLoadLeavesItsSourcesInPlaceAndSaysSo)
{
    makeVersion(1);
    makeVersion(2);
    state.current = 2;
    QFile::remove(workspace.dylib(1));
    Runtime &runtime = launch();

    runtime.revert(1);
    ASSERT_TRUE(runtime.banner());
    EXPECT_EQ(runtime.banner()->title, QStringLiteral("Couldn't load version 1"));
    EXPECT_EQ(readFile(workspace.sources() + QStringLiteral("/AppRoot.swift")), sourceText(1).toUtf8());
    EXPECT_EQ(runtime.loadedVersion(), 2);
    EXPECT_TRUE(shownEvents.isEmpty());
}

TEST_F(VersionOperations, AFailedRebuildOffersTheFixAndTellsTheAgent)
{
    makeVersion(1);
    state.current = 1;
    Runtime &runtime = launch();
    ASSERT_EQ(runtime.toolchain().kind(), Toolchain::Case::Missing);

    test::await(runtime.rebuild());
    ASSERT_TRUE(runtime.banner());
    EXPECT_EQ(runtime.banner()->title, QStringLiteral("Build failed"));
    EXPECT_TRUE(runtime.banner()->offerFix);
    ASSERT_TRUE(runtime.banner()->detail);
    EXPECT_TRUE(runtime.banner()->detail->startsWith(QStringLiteral("The Swift compiler isn't available yet")));
    EXPECT_EQ(shownEvents, QStringList{QStringLiteral("A manual build failed.")});
    EXPECT_EQ(toldEvents.value(0),
              QStringLiteral("The user tried to build the source folder and it failed:\n") + *runtime.banner()->detail);
    EXPECT_EQ(runtime.state().versions.size(), 1);
}

TEST_F(VersionOperations, ResetPutsTheStarterAppBackTellsTheAgentAndReportsTheFailedBuild)
{
    makeVersion(1);
    state.current = 1;
    Runtime &runtime = launch();
    writeFile(workspace.sources() + QStringLiteral("/Extra.swift"), "// mine\n");

    test::await(runtime.resetToOriginal());
    EXPECT_FALSE(QFile::exists(workspace.sources() + QStringLiteral("/Extra.swift")));
    EXPECT_NE(readFile(workspace.sources() + QStringLiteral("/AppRoot.swift")), sourceText(1).toUtf8());
    EXPECT_EQ(shownEvents, QStringList{QStringLiteral("Reset to the original app.")});
    EXPECT_EQ(toldEvents.value(0), QStringLiteral("The user reset the source files to Zentoro's original starter app."));
    ASSERT_TRUE(runtime.banner());
    EXPECT_EQ(runtime.banner()->title, QStringLiteral("The original app didn't build"));
    EXPECT_FALSE(runtime.banner()->offerFix);
    // Nothing of the history goes.
    EXPECT_TRUE(QFile::exists(workspace.dylib(1)));
    EXPECT_EQ(runtime.state().versions.size(), 1);
}

// Chooses a button of the next modal alert by its text, and keeps the alert's words.
struct AlertAnswer {
    QString text;
    QString informative;
    QStringList buttons;

    void choose(const QString &button)
    {
        QTimer::singleShot(50, [this, button] {
            auto *alert = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!alert)
                return;
            text = alert->text();
            informative = alert->informativeText();
            for (QAbstractButton *candidate : alert->buttons())
                buttons.append(candidate->text());
            for (QAbstractButton *candidate : alert->buttons()) {
                if (candidate->text() == button)
                    candidate->click();
            }
        });
    }
};

TEST_F(VersionOperations, TheResetIsConfirmedFirst)
{
    makeVersion(1);
    state.current = 1;
    Runtime &runtime = launch();
    writeFile(workspace.sources() + QStringLiteral("/Extra.swift"), "// mine\n");

    AlertAnswer cancel;
    cancel.choose(QStringLiteral("Cancel"));
    Reset::confirm(nullptr, runtime);
    EXPECT_EQ(cancel.text, QStringLiteral("Reset to the original app?"));
    EXPECT_EQ(cancel.informative, QStringLiteral("The source folder goes back to the starter app. Every version "
                                                 "you've built stays in the version history."));
    EXPECT_EQ(cancel.buttons.size(), 2);
    EXPECT_TRUE(cancel.buttons.contains(QStringLiteral("Reset")));
    EXPECT_TRUE(QFile::exists(workspace.sources() + QStringLiteral("/Extra.swift")));

    AlertAnswer reset;
    reset.choose(QStringLiteral("Reset"));
    Reset::confirm(nullptr, runtime);
    EXPECT_TRUE(test::spinUntil([&] { return !QFile::exists(workspace.sources() + QStringLiteral("/Extra.swift")); }));
    EXPECT_TRUE(test::spinUntil([&] { return runtime.banner().has_value(); }));
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
    EXPECT_EQ(readFile(workspace.sources() + QStringLiteral("/AppRoot.swift")), sourceText(3).toUtf8());
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

TEST_F(RelaunchScript, HasTheFourLinesAndNoKeyInItsText)
{
    qputenv("OPENAI_API_KEY", "sk-secret");
    const QString normal = Relaunch::script(4242, false);
    const QStringList lines = normal.split(u'\n');
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], QStringLiteral("while /bin/kill -0 4242 2>/dev/null; do /bin/sleep 0.1; done"));
    EXPECT_EQ(lines[1], QStringLiteral("set -- \"$0\" "));
    EXPECT_FALSE(normal.endsWith(u'\n'));
    EXPECT_FALSE(normal.contains(QStringLiteral("sk-secret")));
    EXPECT_EQ(Relaunch::script(4242, true).split(u'\n')[1], QStringLiteral("set -- \"$0\" -ZentoroSafeMode YES"));
}

TEST_F(RelaunchScript, WaitsForTheOldProcessThenStartsTheProgramInANewSessionWithTheKey)
{
    qputenv("OPENAI_API_KEY", "sk-from-env");
    QProcess old;
    old.start(QStringLiteral("/bin/sleep"), {QStringLiteral("30")});
    ASSERT_TRUE(old.waitForStarted());
    const QStringList report = runWaitingFor(old, true);
    ASSERT_EQ(report.size(), 2);
    EXPECT_EQ(report[0], program_ + QStringLiteral("|-ZentoroSafeMode YES|sk-from-env"));
    EXPECT_NE(report[1].toLongLong(), qint64(::getsid(0)));
}

TEST_F(RelaunchScript, WithoutAKeyTheNewProcessGetsNone)
{
    qunsetenv("OPENAI_API_KEY");
    QProcess old;
    old.start(QStringLiteral("/bin/sleep"), {QStringLiteral("30")});
    ASSERT_TRUE(old.waitForStarted());
    const QStringList report = runWaitingFor(old, false);
    ASSERT_FALSE(report.isEmpty());
    EXPECT_EQ(report[0], program_ + QStringLiteral("||unset"));
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
