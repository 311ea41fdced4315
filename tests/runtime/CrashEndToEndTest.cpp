#include "RealProgram.h"

#include "runtime/CrashLog.h"
#include "runtime/Runtime.h"

#include "support/Await.h"
#include "support/Files.h"
#include "support/VersionLibrary.h"

#include <QDir>
#include <QElapsedTimer>

#include <signal.h>

using namespace zentoro;
using namespace zentoro::test;
using namespace std::chrono_literals;

namespace {

const QByteArray trappingRoot = "import SwiftUI\n\n"
                                "struct AppRoot: View {\n"
                                "    let title: String? = nil\n"
                                "    var body: some View {\n"
                                "        Text(title!)\n"
                                "    }\n"
                                "}\n";

// An app whose teardown traps: releasing its view ends the process.
const QByteArray trapsWhenReleased = "import SwiftUI\n\n"
                                     "final class Keeper: ObservableObject {\n"
                                     "    deinit { fatalError(\"The app's teardown crashed\") }\n"
                                     "}\n\n"
                                     "struct AppRoot: View {\n"
                                     "    @StateObject private var keeper = Keeper()\n"
                                     "    var body: some View { Text(\"Keeping\") }\n"
                                     "}\n";

// An app that ends the process itself, as if it were done, as it appears.
const QByteArray exitingRoot = "import SwiftUI\nimport Foundation\n\n"
                               "struct AppRoot: View {\n"
                               "    var body: some View {\n"
                               "        Text(\"Leaving\").onAppear { exit(0) }\n"
                               "    }\n"
                               "}\n";

// Everything the program said to the agent, from the saved conversations.
QString conversations(const Workspace &workspace)
{
    QString text;
    const QDir folder(workspace.root + QStringLiteral("/Conversations"));
    for (const QString &name : folder.entryList({QStringLiteral("*.json")}, QDir::Files))
        text += readText(folder.filePath(name));
    return text;
}

} // namespace

// A version whose view traps as it appears, a process killed from outside, a crash long
// after the start, safe mode, a quit within the proving time, and an app that exits by
// itself as it starts, each with the real
// program, the real compiler and the real kit.
TEST(CrashEndToEnd, EachWayARunEndsIsJudgedAtTheNextStart)
{
    ZENTORO_REQUIRE_PROGRAM();
    Program program(QStringLiteral("Crash Harness"));
    const Workspace &workspace = program.workspace;
    // Version 3 traps on a force unwrap of nil as its view appears; the program starts on it.
    // Version 2 exits as it appears.
    ASSERT_TRUE(buildVersions(workspace, {{QStringLiteral("AppRoot.swift"), exitingRoot},
                                          {QStringLiteral("AppRoot.swift"), trappingRoot}}));
    RuntimeState state = RuntimeState::read(workspace.stateFile());
    ASSERT_EQ(state.versions.size(), 3);
    state.lastGood = 1;
    state.current = 3;
    state.versions[1].crashed = true; // not a way back until its own turn at the end
    state.loading.reset();
    state.write(workspace.stateFile());

    const auto log = [&] { return readText(workspace.logs() + QStringLiteral("/current.log")); };
    // A line of this run's console log: until its header names this process, the file is
    // still the run before.
    const auto logShows = [&](const QString &text) {
        const QString header = QStringLiteral(", pid %1\n").arg(program.process.processId());
        return spinUntil([&] { return log().contains(header) && log().contains(text); }, 20s);
    };
    const auto said = [&](const QString &text) {
        return spinUntil([&] { return conversations(workspace).contains(text); });
    };
    const auto ended = [&] { return spinUntil([&] { return program.process.state() == QProcess::NotRunning; }, 20s); };
    // The signal that ended the process, or 0 when it exited.
    const auto signal = [&] {
        return program.process.exitStatus() == QProcess::CrashExit ? program.process.exitCode() : 0;
    };
    const auto send = [&](int signal) { ::kill(pid_t(program.process.processId()), signal); };

    // The trap kills the process within the proving time, and the runtime's words are in the log.
    program.start();
    QElapsedTimer clock;
    ASSERT_TRUE(logShows(QStringLiteral("Zentoro: loaded version 3")));
    clock.start();
    ASSERT_TRUE(ended());
    EXPECT_LT(clock.elapsed(), 4000);
    EXPECT_EQ(signal(), SIGILL);
    EXPECT_TRUE(
        log().contains(QStringLiteral("Fatal error: Unexpectedly found nil while unwrapping an Optional value")));

    // Next start: crashed while starting, back to the last good version, the sources kept.
    program.start();
    ASSERT_TRUE(logShows(QStringLiteral("Zentoro: loaded version 1")));
    state = RuntimeState::read(workspace.stateFile());
    EXPECT_TRUE(state.versions[2].crashed);
    EXPECT_FALSE(state.versions[0].crashed);
    EXPECT_EQ(state.current, 1);
    EXPECT_TRUE(readText(workspace.logs() + QStringLiteral("/crash.log"))
                    .contains(QStringLiteral("Fatal error: Unexpectedly found nil")));
    EXPECT_EQ(readText(workspace.sources() + QStringLiteral("/AppRoot.swift")).toUtf8(), trappingRoot);
    ASSERT_TRUE(said(QStringLiteral("Version 3 crashed while starting; running version 1.")));
    EXPECT_TRUE(conversations(workspace).contains(QStringLiteral("Fatal error: Unexpectedly found nil")));

    // A quit within the proving time is no crash.
    send(SIGTERM);
    ASSERT_TRUE(ended());
    EXPECT_EQ(signal(), 0);
    EXPECT_EQ(RuntimeState::read(workspace.stateFile()).loading, std::nullopt);

    // So the next start says nothing; a crash ten seconds after the load is a crash later in a run.
    const qsizetype crashNotes = conversations(workspace).count(QStringLiteral("crashed"));
    program.start();
    ASSERT_TRUE(logShows(QStringLiteral("Zentoro: loaded version 1")));
    EXPECT_TRUE(spinUntil([&] { return RuntimeState::read(workspace.stateFile()).loading == std::nullopt; }, 8s));
    spinUntil([] { return false; }, 10s);
    EXPECT_EQ(conversations(workspace).count(QStringLiteral("crashed")), crashNotes);
    send(SIGABRT);
    ASSERT_TRUE(ended());
    EXPECT_EQ(signal(), SIGABRT);

    program.start();
    ASSERT_TRUE(logShows(QStringLiteral("Zentoro: loaded version 1")));
    ASSERT_TRUE(said(QStringLiteral("Crash Harness crashed last time (version 1): SIGABRT (abort)")));
    EXPECT_FALSE(RuntimeState::read(workspace.stateFile()).versions[0].crashed);

    // Killed from outside within the proving time: crashed while starting, with no details.
    send(SIGKILL);
    ASSERT_TRUE(ended());

    // Safe mode after that crash: the note comes, nothing is loaded.
    program.start({QStringLiteral("--safe-mode")});
    ASSERT_TRUE(logShows(QStringLiteral("Zentoro started")));
    ASSERT_TRUE(said(QStringLiteral("Version 1 crashed while starting; running an empty window.")));
    EXPECT_TRUE(conversations(workspace).contains(QStringLiteral("(no details)")));
    state = RuntimeState::read(workspace.stateFile());
    EXPECT_TRUE(state.versions[0].crashed);
    EXPECT_EQ(state.current, std::nullopt);
    spinUntil([] { return false; }, 1s);
    EXPECT_FALSE(log().contains(QStringLiteral("loaded version")));
    send(SIGTERM);
    ASSERT_TRUE(ended());
    EXPECT_EQ(signal(), 0);

    // An app that exits by itself within the proving time has crashed while starting too.
    state = RuntimeState::read(workspace.stateFile());
    state.versions[0].crashed = false;
    state.versions[1].crashed = false;
    state.lastGood = 1;
    state.current = 2;
    state.write(workspace.stateFile());
    program.start();
    ASSERT_TRUE(logShows(QStringLiteral("Zentoro: loaded version 2")));
    ASSERT_TRUE(ended());
    EXPECT_EQ(signal(), 0);
    program.start();
    ASSERT_TRUE(logShows(QStringLiteral("Zentoro: loaded version 1")));
    ASSERT_TRUE(said(QStringLiteral("Version 2 crashed while starting; running version 1.")));
    send(SIGTERM);
    ASSERT_TRUE(ended());
}

// A quit doesn't run the hosted app's teardown, so a crash there isn't blamed on the run.
TEST(CrashEndToEnd, AQuitEndsTheProgramWithoutTheHostedAppsTeardown)
{
    ZENTORO_REQUIRE_PROGRAM();
    Program program(QStringLiteral("Quit Harness"));
    const Workspace &workspace = program.workspace;
    ASSERT_TRUE(buildVersions(workspace, {{QStringLiteral("AppRoot.swift"), trapsWhenReleased}}));
    RuntimeState state = RuntimeState::read(workspace.stateFile());
    state.current = state.lastGood = 2;
    state.loading.reset();
    state.write(workspace.stateFile());
    const auto log = [&] { return readText(workspace.logs() + QStringLiteral("/current.log")); };

    program.start();
    const QString header = QStringLiteral(", pid %1\n").arg(program.process.processId());
    ASSERT_TRUE(
        spinUntil([&] { return log().contains(header) && log().contains(QStringLiteral("Showing version 2.")); }, 20s));
    ::kill(pid_t(program.process.processId()), SIGTERM);
    ASSERT_TRUE(spinUntil([&] { return program.process.state() == QProcess::NotRunning; }, 20s));
    EXPECT_EQ(program.process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.process.exitCode(), 0);
    EXPECT_FALSE(log().contains(QString::fromLatin1(CrashLog::marker))) << log().toStdString();
}

// A second start while the first is still loading its version (slowly, here) is answered:
// it brings the first forward and ends, instead of saying the copy is already open.
TEST(CrashEndToEnd, ASecondStartDuringASlowStartIsAnswered)
{
    ZENTORO_REQUIRE_PROGRAM();
    const QString cc = cCompiler();
    if (cc.isEmpty())
        GTEST_SKIP() << "No C compiler to make a version library with.";
    Program program(QStringLiteral("Slow Start"));
    const Workspace &workspace = program.workspace;
    QDir(workspace.root).removeRecursively();
    workspace.prepare();
    buildVersionLibrary(cc, workspace, 1,
                        standInLibrary() + "#include <unistd.h>\n"
                                           "__attribute__((constructor)) static void slowly(void) { sleep(3); }\n");
    RuntimeState state;
    state.versions = {{1, QDateTime(QDate(2025, 3, 1), QTime(9, 30), Qt::UTC), QStringLiteral("Slow"), false}};
    state.current = state.lastGood = 1;
    state.nextNumber = 2;
    state.write(workspace.stateFile());

    // No compiler, so the version loads as it is, before the first frame.
    program.start({QStringLiteral("-ZentoroSimulateMissingTools"), QStringLiteral("YES")});
    ASSERT_TRUE(spinUntil(
        [&] {
            return readText(workspace.logs() + QStringLiteral("/current.log"))
                .contains(QStringLiteral(", pid %1\n").arg(program.process.processId()));
        },
        20s));
    QProcess second;
    second.setProgram(program.link);
    second.setProcessEnvironment(program.environment);
    second.start();
    ASSERT_TRUE(second.waitForStarted());
    const bool ended = spinUntil([&] { return second.state() == QProcess::NotRunning; }, 15s);
    if (!ended)
        second.kill();
    EXPECT_TRUE(ended) << "the second start is waiting at an alert";
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(program.process.state(), QProcess::Running);
}
