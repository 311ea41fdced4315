#include "runtime/CrashLog.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>

extern char **environ;

using namespace zentoro;

namespace {

constexpr char modeVariable[] = "ZENTORO_CRASH_CHILD";
constexpr char logsVariable[] = "ZENTORO_CRASH_LOGS";
constexpr char resultVariable[] = "ZENTORO_CRASH_RESULT";

QString readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

struct Ending {
    bool signalled = false;
    int code = 0; // the signal's number, or the exit status
    bool operator==(const Ending &) const = default;
};

// Runs this test program again as a child that starts the console log in `logs` and then
// does what `mode` says. Its terminal output goes to `console`.
Ending runChild(const QString &mode, const QString &logs, const QString &console, QStringList extra = {})
{
    QStringList arguments{QCoreApplication::applicationFilePath(), QStringLiteral("--gtest_filter=CrashChild.Run")};
    arguments += extra;
    QList<QByteArray> encoded;
    for (const QString &argument : arguments)
        encoded.append(argument.toLocal8Bit());
    std::vector<char *> argv;
    for (QByteArray &argument : encoded)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    qputenv(modeVariable, mode.toUtf8());
    qputenv(logsVariable, logs.toUtf8());
    qputenv(resultVariable, (logs + QStringLiteral("/../result.txt")).toUtf8());
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const QByteArray consolePath = console.toLocal8Bit();
    posix_spawn_file_actions_addopen(&actions, 1, consolePath.constData(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    pid_t child = 0;
    const int spawned = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    qunsetenv(modeVariable);
    if (spawned != 0)
        return {};
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status))
        return {true, WTERMSIG(status)};
    return {false, WEXITSTATUS(status)};
}

class CrashLogRun : public ::testing::Test {
protected:
    QTemporaryDir root;
    QString logs() const { return root.path() + QStringLiteral("/Logs"); }
    QString console() const { return root.path() + QStringLiteral("/console.txt"); }
    QString log(CrashLog::Which which) const { return CrashLog::url(which, logs()); }
    QString result() const { return readAll(root.path() + QStringLiteral("/result.txt")); }
    Ending run(const char *mode, const QStringList &extra = {}) { return runChild(mode, logs(), console(), extra); }
    void SetUp() override { ASSERT_TRUE(QDir().mkpath(logs())); }
};

} // namespace

// The child's side of the tests below; skipped when run as an ordinary test.
TEST(CrashChild, Run)
{
    const QByteArray mode = qgetenv(modeVariable);
    if (mode.isEmpty())
        GTEST_SKIP() << "runs only as the child of a crash test";
    const auto crash = CrashLog::start(QString::fromUtf8(qgetenv(logsVariable)));
    {
        QFile result(QString::fromUtf8(qgetenv(resultVariable)));
        if (result.open(QIODevice::WriteOnly | QIODevice::Truncate))
            result.write(crash ? crash->text.toUtf8() : QByteArray("none"));
    }
    // Written the way the Swift runtime does, just ahead of its trap.
    if (mode == "fatal") {
        std::fputs("Fatal error: Unexpectedly found nil while unwrapping an Optional value\n", stderr);
        __builtin_trap();
    }
    if (mode == "segv") {
        std::printf("about to dereference null\n"); // no flush: line buffering must get it out
        volatile int *nowhere = nullptr;
        *nowhere = 1;
    }
    if (mode == "abort")
        std::abort();
    if (mode == "words")
        std::printf("Fatal error: just words in an ordinary run\n");
    std::fflush(nullptr);
    std::_Exit(0);
}

TEST_F(CrashLogRun, ATrapAfterTheRuntimesWordsIsExplainedByThemAndKeptAsTheCrashLog)
{
    // The trap instruction on x86-64: it dies of its own cause.
    ASSERT_EQ(run("fatal"), (Ending{true, SIGILL}));
    EXPECT_EQ(result(), "none");

    const QString text = readAll(log(CrashLog::Which::Current));
    EXPECT_TRUE(text.startsWith(QStringLiteral("Zentoro started "))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral(", pid ")));
    EXPECT_TRUE(text.contains(QStringLiteral("Fatal error: Unexpectedly found nil while unwrapping an Optional "
                                             "value\n\n*** ZENTORO CRASH: SIGILL (illegal instruction) ***\n"
                                             "Backtrace:\n")))
        << text.toStdString();
    EXPECT_GT(text.count(u'\n'), 6) << "frames follow the crash block";

    // The next start finds the reason and keeps that run as the crash log.
    EXPECT_EQ(run("clean").code, 0);
    EXPECT_EQ(result(), "Fatal error: Unexpectedly found nil while unwrapping an Optional value");
    EXPECT_EQ(readAll(log(CrashLog::Which::Crash)), text);
    EXPECT_EQ(readAll(log(CrashLog::Which::Previous)), text);

    // Two clean runs on, the previous log rotates away but the crash log stays.
    for (int clean = 0; clean < 2; ++clean) {
        run("clean");
        EXPECT_EQ(result(), "none");
    }
    EXPECT_FALSE(readAll(log(CrashLog::Which::Previous)).contains(QString::fromLatin1(CrashLog::marker)));
    EXPECT_EQ(readAll(log(CrashLog::Which::Crash)), text);
}

TEST_F(CrashLogRun, ASignalWithoutWordsIsNamedAndTheLastPrintedLineIsInTheLog)
{
    EXPECT_EQ(run("segv"), (Ending{true, SIGSEGV}));
    EXPECT_TRUE(readAll(log(CrashLog::Which::Current)).contains(QStringLiteral("about to dereference null\n")));
    run("clean");
    EXPECT_EQ(result(), "SIGSEGV (bad memory access)");

    // An abort is named too; words printed in a run that then ends well are no crash.
    ASSERT_TRUE(run("abort").signalled);
    run("words");
    EXPECT_EQ(result(), "SIGABRT (abort)");
    run("clean");
    EXPECT_EQ(result(), "none");
}

TEST_F(CrashLogRun, LeavingTheConsoleAloneStillRotatesAndStillCatchesTheSignal)
{
    write(log(CrashLog::Which::Current), "an older run\n");
    ASSERT_TRUE(run("fatal", {"-ZentoroNoLogRedirect", "YES"}).signalled);
    EXPECT_FALSE(QFile::exists(log(CrashLog::Which::Current)));
    EXPECT_EQ(readAll(log(CrashLog::Which::Previous)), QStringLiteral("an older run\n"));
    const QString console = readAll(this->console());
    EXPECT_TRUE(console.contains(QStringLiteral("Zentoro started ")));
    EXPECT_TRUE(console.contains(QStringLiteral("*** ZENTORO CRASH: SIGILL (illegal instruction) ***")));
}

TEST_F(CrashLogRun, ALogsFolderThatCannotBeWrittenLeavesTheOutputWhereItWas)
{
    const QString missing = root.path() + QStringLiteral("/no/such/Logs");
    runChild("words", missing, console());
    EXPECT_TRUE(readAll(console()).contains(QStringLiteral("Fatal error: just words")));
}

TEST(CrashLog, TheReasonIsTheLastExplainingLineOtherwiseTheSignal)
{
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("previous.log"));
    const auto crashOf = [&](const QByteArray &text) {
        write(file, text);
        const auto crash = CrashLog::previousCrash(file);
        return crash ? crash->text : QStringLiteral("<none>");
    };
    EXPECT_EQ(crashOf("Zentoro started\nFatal error: first\nprinted\nFatal error: second\r\n\n"
                      "*** ZENTORO CRASH: SIGILL (illegal instruction) ***\nBacktrace:\n0 x\n"),
              QStringLiteral("Fatal error: second"));
    EXPECT_EQ(crashOf("*** Terminating app due to uncaught exception 'X', reason: 'y'\n"
                      "*** ZENTORO CRASH: SIGABRT (abort) ***\n"),
              QStringLiteral("*** Terminating app due to uncaught exception 'X', reason: 'y'"));
    EXPECT_EQ(crashOf("*** ZENTORO CRASH: SIGBUS (bad memory access) ***\n*** ZENTORO CRASH: SIGFPE (arithmetic "
                      "error) ***\nBacktrace:\n"),
              QStringLiteral("SIGFPE (arithmetic error)"));
    EXPECT_EQ(crashOf("\n*** ZENTORO CRASH: ::  ***\n"), QStringLiteral("crash"));
    EXPECT_EQ(crashOf("Fatal error: words alone\n"), QStringLiteral("<none>"));
    EXPECT_EQ(CrashLog::previousCrash(folder.filePath(QStringLiteral("absent.log"))), std::nullopt);
}

TEST(CrashLog, LogsAreNamedByTheirRawValues)
{
    EXPECT_EQ(CrashLog::which(QStringLiteral("crash")), CrashLog::Which::Crash);
    EXPECT_EQ(CrashLog::which(QStringLiteral("previous")), CrashLog::Which::Previous);
    EXPECT_EQ(CrashLog::which(QStringLiteral("latest")), std::nullopt);
    EXPECT_EQ(CrashLog::url(CrashLog::Which::Current, QStringLiteral("/x/Logs")), QStringLiteral("/x/Logs/current.log"));
}
