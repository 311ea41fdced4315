#include "runtime/Runtime.h"

#include "support/Await.h"
#include "support/Files.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <signal.h>

using namespace zentoro;
using zentoro::test::readText;
using namespace std::chrono_literals;

namespace {

const QString copyName = QStringLiteral("Crash Harness");

const QByteArray trappingRoot = "import SwiftUI\n\n"
                                "struct AppRoot: View {\n"
                                "    let title: String? = nil\n"
                                "    var body: some View {\n"
                                "        Text(title!)\n"
                                "    }\n"
                                "}\n";

// The real program, started as a copy of its own under the tests' private data and settings
// folders, with the offscreen platform. Crashes here are real crashes of a real process.
class Program {
public:
    Program(const QString &executable, const Workspace &workspace) : workspace_(workspace)
    {
        link_ = folder_.filePath(copyName);
        QFile::link(executable, link_);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        process_.setProcessEnvironment(environment);
        process_.setProgram(link_);
        process_.setStandardOutputFile(QProcess::nullDevice());
        process_.setStandardErrorFile(QProcess::nullDevice());
    }
    ~Program()
    {
        if (process_.state() != QProcess::NotRunning) {
            process_.kill();
            process_.waitForFinished();
        }
    }

    void start(const QStringList &arguments = {})
    {
        process_.setArguments(arguments);
        process_.start();
        ASSERT_TRUE(process_.waitForStarted());
        clock_.start();
    }
    QString log() const { return readText(workspace_.logs() + QStringLiteral("/current.log")); }
    // Waits for a line of this run's console log: until its header names this process, the
    // file is still the run before.
    bool logShows(const QString &text, std::chrono::milliseconds timeout = 20s)
    {
        const QString header = QStringLiteral(", pid %1\n").arg(process_.processId());
        return test::spinUntil([&] {
            const QString now = log();
            return now.contains(header) && now.contains(text);
        }, timeout);
    }
    bool ended(std::chrono::milliseconds timeout = 20s)
    {
        return test::spinUntil([&] { return process_.state() == QProcess::NotRunning; }, timeout);
    }
    void send(int signal) { ::kill(pid_t(process_.processId()), signal); }
    // The signal that ended the process, or 0 when it exited.
    int signal() const { return process_.exitStatus() == QProcess::CrashExit ? process_.exitCode() : 0; }
    qint64 elapsed() const { return clock_.elapsed(); }

private:
    Workspace workspace_;
    QTemporaryDir folder_;
    QString link_;
    QProcess process_;
    QElapsedTimer clock_;
};

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
// after the start, safe mode, and a quit within the proving time, each with the real
// program, the real compiler and the real kit.
TEST(CrashEndToEnd, EachWayARunEndsIsJudgedAtTheNextStart)
{
    const QString executable = QCoreApplication::applicationDirPath() + QStringLiteral("/../zentoro");
    if (!QFile::exists(executable))
        GTEST_SKIP() << "The zentoro program isn't built beside the tests.";
    const Workspace workspace = Workspace::forName(copyName);
    QDir(workspace.root).removeRecursively();
    workspace.prepare();

    // Version 1 is the starter app and version 2 traps on a force unwrap of nil as its view
    // appears; both are built here, and the program then starts on version 2.
    {
        Runtime builder(workspace);
        test::await(builder.checkToolchain());
        if (!builder.toolchain().isReady())
            GTEST_SKIP() << "No Swift compiler found (" << builder.toolchainDescription().toStdString()
                         << "); the crash end-to-end run was skipped.";
        const BuildOutcome first = test::await(builder.build(QStringLiteral("The original app")));
        ASSERT_TRUE(first.success()) << first.failure()->text.toStdString();
        test::writeFile(workspace.sources() + QStringLiteral("/AppRoot.swift"), trappingRoot);
        const BuildOutcome second = test::await(builder.build(QStringLiteral("Trap")));
        ASSERT_TRUE(second.success()) << second.failure()->text.toStdString();
    }
    RuntimeState state = RuntimeState::read(workspace.stateFile());
    ASSERT_EQ(state.versions.size(), 2);
    state.lastGood = 1;
    state.current = 2;
    state.loading.reset();
    state.write(workspace.stateFile());

    Program program(executable, workspace);

    // The trap kills the process within the proving time, and the runtime's words are in the log.
    program.start();
    ASSERT_TRUE(program.logShows(QStringLiteral("Zentoro: loaded version 2")));
    const qint64 loadedAt = program.elapsed();
    ASSERT_TRUE(program.ended());
    EXPECT_LT(program.elapsed() - loadedAt, 4000);
    EXPECT_EQ(program.signal(), SIGILL);
    EXPECT_TRUE(program.log().contains(QStringLiteral("Fatal error: Unexpectedly found nil while unwrapping an Optional value")));

    // Next start: crashed while starting, back to the last good version, the sources kept.
    program.start();
    ASSERT_TRUE(program.logShows(QStringLiteral("Zentoro: loaded version 1")));
    state = RuntimeState::read(workspace.stateFile());
    EXPECT_TRUE(state.versions[1].crashed);
    EXPECT_FALSE(state.versions[0].crashed);
    EXPECT_EQ(state.current, 1);
    EXPECT_TRUE(readText(workspace.logs() + QStringLiteral("/crash.log")).contains(QStringLiteral("Fatal error: Unexpectedly found nil")));
    EXPECT_EQ(readText(workspace.sources() + QStringLiteral("/AppRoot.swift")).toUtf8(), trappingRoot);
    ASSERT_TRUE(test::spinUntil([&] {
        return conversations(workspace).contains(QStringLiteral("Version 2 crashed while starting; running version 1."));
    }));
    EXPECT_TRUE(conversations(workspace).contains(QStringLiteral("Fatal error: Unexpectedly found nil")));

    // A quit within the proving time is no crash.
    program.send(SIGTERM);
    ASSERT_TRUE(program.ended());
    EXPECT_EQ(program.signal(), 0);
    EXPECT_EQ(RuntimeState::read(workspace.stateFile()).loading, std::nullopt);

    // So the next start says nothing; a crash ten seconds after the load is a crash later in a run.
    const qsizetype crashNotes = conversations(workspace).count(QStringLiteral("crashed"));
    program.start();
    ASSERT_TRUE(program.logShows(QStringLiteral("Zentoro: loaded version 1")));
    EXPECT_TRUE(test::spinUntil([&] { return RuntimeState::read(workspace.stateFile()).loading == std::nullopt; }, 8s));
    test::spinUntil([] { return false; }, 10s);
    EXPECT_EQ(conversations(workspace).count(QStringLiteral("crashed")), crashNotes);
    program.send(SIGABRT);
    ASSERT_TRUE(program.ended());
    EXPECT_EQ(program.signal(), SIGABRT);

    program.start();
    ASSERT_TRUE(program.logShows(QStringLiteral("Zentoro: loaded version 1")));
    ASSERT_TRUE(test::spinUntil([&] {
        return conversations(workspace).contains(QStringLiteral("Crash Harness crashed last time (version 1): SIGABRT (abort)"));
    }));
    EXPECT_FALSE(RuntimeState::read(workspace.stateFile()).versions[0].crashed);

    // Killed from outside within the proving time: crashed while starting, with no details.
    program.send(SIGKILL);
    ASSERT_TRUE(program.ended());

    // Safe mode after that crash: the note comes, nothing is loaded.
    program.start({QStringLiteral("--safe-mode")});
    ASSERT_TRUE(program.logShows(QStringLiteral("Zentoro started")));
    ASSERT_TRUE(test::spinUntil([&] {
        return conversations(workspace).contains(QStringLiteral("Version 1 crashed while starting; running an empty window."));
    }));
    EXPECT_TRUE(conversations(workspace).contains(QStringLiteral("(no details)")));
    state = RuntimeState::read(workspace.stateFile());
    EXPECT_TRUE(state.versions[0].crashed);
    EXPECT_EQ(state.current, std::nullopt);
    test::spinUntil([] { return false; }, 1s);
    EXPECT_FALSE(program.log().contains(QStringLiteral("loaded version")));
    program.send(SIGTERM);
    ASSERT_TRUE(program.ended());
    EXPECT_EQ(program.signal(), 0);
}
