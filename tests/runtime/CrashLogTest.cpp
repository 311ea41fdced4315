#include "runtime/CrashLog.h"

#include "support/Files.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <signal.h>

#include <cstdio>
#include <cstdlib>

using namespace zentoro;
using zentoro::test::readText;
using zentoro::test::writeFile;

namespace {

constexpr char modeVariable[] = "ZENTORO_CRASH_CHILD";
constexpr char logsVariable[] = "ZENTORO_CRASH_LOGS";
constexpr char resultVariable[] = "ZENTORO_CRASH_RESULT";

struct Ending {
    bool signalled = false;
    int code = 0; // the signal's number, or the exit status
    bool operator==(const Ending &) const = default;
};

// Runs this test program again as a child that starts the console log in `logs` (the
// test's own by default) and then does what `mode` says; its terminal output goes to the
// console file.
class CrashLogRun : public ::testing::Test {
protected:
    QTemporaryDir root;
    QString logs() const { return root.path() + QStringLiteral("/Logs"); }
    QString console() const { return root.path() + QStringLiteral("/console.txt"); }
    QString log(CrashLog::Which which) const { return CrashLog::url(which, logs()); }
    QString result() const { return readText(root.path() + QStringLiteral("/result.txt")); }
    void SetUp() override { ASSERT_TRUE(QDir().mkpath(logs())); }

    Ending run(const char *mode, const QStringList &extra = {}, const QString &logsFolder = {})
    {
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(modeVariable), QString::fromLatin1(mode));
        environment.insert(QString::fromLatin1(logsVariable), logsFolder.isEmpty() ? logs() : logsFolder);
        environment.insert(QString::fromLatin1(resultVariable), root.path() + QStringLiteral("/result.txt"));
        child.setProcessEnvironment(environment);
        child.setProcessChannelMode(QProcess::MergedChannels);
        child.setStandardOutputFile(console(), QIODevice::Append);
        child.start(QCoreApplication::applicationFilePath(),
                    QStringList{QStringLiteral("--gtest_filter=CrashChild.Run")} + extra);
        if (!child.waitForFinished(30000))
            return {};
        // On a crash the exit code is the signal's number.
        return {child.exitStatus() == QProcess::CrashExit, child.exitCode()};
    }
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
    // What the start left for later: cutting the run before's log down.
    const QString previous = CrashLog::url(CrashLog::Which::Previous, QString::fromUtf8(qgetenv(logsVariable)));
    QElapsedTimer waited;
    waited.start();
    while (QFileInfo(previous).size() > CrashLog::keptBytes && waited.elapsed() < 20000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    QThreadPool::globalInstance()->waitForDone(20000);
    std::_Exit(0);
}

TEST_F(CrashLogRun, ACrashIsExplainedByTheRuntimesWordsOrItsSignalAndKeptAsTheCrashLog)
{
    // The trap instruction on x86-64: it dies of its own cause.
    ASSERT_EQ(run("fatal"), (Ending{true, SIGILL}));
    EXPECT_EQ(result(), "none");

    const QString text = readText(log(CrashLog::Which::Current));
    EXPECT_TRUE(text.contains(QStringLiteral("Fatal error: Unexpectedly found nil while unwrapping an Optional "
                                             "value\n\n*** ZENTORO CRASH: SIGILL (illegal instruction) ***\n"
                                             "Backtrace:\n")))
        << text.toStdString();
    EXPECT_GT(text.count(u'\n'), 6) << "frames follow the crash block";

    // The next start finds the reason and keeps that run as the crash log.
    EXPECT_EQ(run("clean").code, 0);
    EXPECT_EQ(result(), "Fatal error: Unexpectedly found nil while unwrapping an Optional value");
    EXPECT_EQ(readText(log(CrashLog::Which::Crash)), text);

    // Two clean runs on, the previous log rotates away but the crash log stays.
    for (int clean = 0; clean < 2; ++clean) {
        run("clean");
        EXPECT_EQ(result(), "none");
    }
    EXPECT_FALSE(readText(log(CrashLog::Which::Previous)).contains(QString::fromLatin1(CrashLog::marker)));
    EXPECT_EQ(readText(log(CrashLog::Which::Crash)), text);

    // A signal without words is named, and the last line printed before it is in the log.
    EXPECT_EQ(run("segv"), (Ending{true, SIGSEGV}));
    EXPECT_TRUE(readText(log(CrashLog::Which::Current)).contains(QStringLiteral("about to dereference null\n")));
    run("clean");
    EXPECT_EQ(result(), "SIGSEGV (bad memory access)");

    // An abort is named too; words printed in a run that then ends well are no crash.
    ASSERT_TRUE(run("abort").signalled);
    run("words");
    EXPECT_EQ(result(), "SIGABRT (abort)");
    run("clean");
    EXPECT_EQ(result(), "none");
}

TEST_F(CrashLogRun, OutputLeftOnTheConsoleStillRotatesTheLogsAndCatchesTheSignal)
{
    writeFile(log(CrashLog::Which::Current), "an older run\n");
    ASSERT_TRUE(run("fatal", {"-ZentoroNoLogRedirect", "YES"}).signalled);
    EXPECT_FALSE(QFile::exists(log(CrashLog::Which::Current)));
    EXPECT_EQ(readText(log(CrashLog::Which::Previous)), QStringLiteral("an older run\n"));
    EXPECT_TRUE(readText(console()).contains(QStringLiteral("*** ZENTORO CRASH: SIGILL (illegal instruction) ***")));

    // A logs folder that can't be written leaves the output where it was too.
    run("words", {}, root.path() + QStringLiteral("/no/such/Logs"));
    EXPECT_TRUE(readText(console()).contains(QStringLiteral("Fatal error: just words")));
}

// A run that printed for hours: the start reads only the end, keeps the newest part of the
// log, and the crash log is the same file under a second name.
TEST_F(CrashLogRun, AHugeLogIsJudgedByItsEndAndCutToItsNewestPart)
{
    const QByteArray line = QByteArray(99, 'x') + '\n';
    const QByteArray end = "Fatal error: Index out of range\n\n*** ZENTORO CRASH: SIGILL (illegal instruction) ***\n"
                           "Backtrace:\n0 frame\n";
    writeFile(log(CrashLog::Which::Current),
              "Fatal error: an older line\n" + line.repeated(CrashLog::keptBytes / line.size() + 50000) + end);
    EXPECT_EQ(run("clean").code, 0);
    EXPECT_EQ(result(), "Fatal error: Index out of range");
    const QString previous = readText(log(CrashLog::Which::Previous));
    EXPECT_LE(previous.size(), CrashLog::keptBytes);
    EXPECT_TRUE(previous.startsWith(QStringLiteral("Zentoro: this log passed 16 MB; only its end is kept.\n") +
                                    QString::fromLatin1(line)));
    EXPECT_TRUE(previous.endsWith(QString::fromLatin1(end)));
    EXPECT_EQ(readText(log(CrashLog::Which::Crash)), previous);

    // A log within the limit stays whole.
    writeFile(log(CrashLog::Which::Current), line.repeated(1000));
    run("clean");
    EXPECT_EQ(QFileInfo(log(CrashLog::Which::Previous)).size(), 1000 * line.size());
}

TEST(CrashLog, TheReasonIsTheLastExplainingLineOtherwiseTheSignal)
{
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("previous.log"));
    const auto crashOf = [&](const QByteArray &text) {
        writeFile(file, text);
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
    // A window the app's code held, written by the watchdog, and no crash after it.
    writeFile(file, "printed\nZentoro: the app's code has kept the window from responding for 12 seconds.\n");
    EXPECT_EQ(CrashLog::previousCrash(file),
              (CrashLog::PreviousCrash{QStringLiteral("the app's code has kept the window from responding for 12 "
                                                      "seconds"),
                                       true}));
    EXPECT_EQ(crashOf("Zentoro: the app's code has kept the window from responding for 12 seconds.\n"
                      "*** ZENTORO CRASH: SIGSEGV (bad memory access) ***\n"),
              QStringLiteral("SIGSEGV (bad memory access)"));
    EXPECT_EQ(CrashLog::previousCrash(folder.filePath(QStringLiteral("absent.log"))), std::nullopt);
}
