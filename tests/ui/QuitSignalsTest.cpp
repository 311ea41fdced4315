// Quit signals against a main thread that the hosted app's code may hold: an orderly quit
// when the event loop answers, the signal's own end when it doesn't or a second one comes.
#include "ui/QuitSignals.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>

#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <cstdio>

using namespace zentoro;

namespace {

constexpr auto modeVariable = "ZENTORO_QUIT_CHILD";

struct Ending {
    QProcess::ExitStatus status;
    int code; // the signal for a crash exit
    qint64 milliseconds;
};

// Starts this test program as a child in `mode`, sends it SIGTERM `count` times once it is ready, and
// waits for its end.
Ending quit(const QByteArray &mode, int count)
{
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(modeVariable), QString::fromLatin1(mode));
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--gtest_filter=QuitSignalsChild.Run")});
    EXPECT_TRUE(child.waitForStarted());
    QElapsedTimer ready;
    ready.start();
    while (!child.readAllStandardOutput().contains("ready") && ready.elapsed() < 10000)
        child.waitForReadyRead(100);
    QElapsedTimer clock;
    clock.start();
    for (int sent = 0; sent < count; ++sent) {
        ::kill(pid_t(child.processId()), SIGTERM);
        ::usleep(200 * 1000);
    }
    EXPECT_TRUE(child.waitForFinished(15000));
    return Ending{child.exitStatus(), child.exitCode(), clock.elapsed()};
}

} // namespace

TEST(QuitSignalsChild, Run)
{
    const QByteArray mode = qgetenv(modeVariable);
    if (mode.isEmpty())
        GTEST_SKIP() << "runs only as the child of a quit-signal test";
    QuitSignals::install();
    std::puts("ready");
    std::fflush(stdout);
    if (mode == "held")
        for (;;) // the hosted app's code, holding the main thread
            ::pause();
    else
        QCoreApplication::exec();
    std::_Exit(0);
}

TEST(QuitSignals, AQuitIsOrderlyWhenTheLoopAnswersAndTheSignalsOwnEndWhenItIsHeld)
{
    const Ending orderly = quit("loop", 1);
    EXPECT_EQ(orderly.status, QProcess::NormalExit);
    EXPECT_EQ(orderly.code, 0);
    EXPECT_LT(orderly.milliseconds, 2000);

    const Ending held = quit("held", 1);
    EXPECT_EQ(held.status, QProcess::CrashExit);
    EXPECT_EQ(held.code, SIGTERM);
    EXPECT_GE(held.milliseconds, qint64(QuitSignals::orderlySeconds) * 1000 - 500);
    EXPECT_LT(held.milliseconds, qint64(QuitSignals::orderlySeconds) * 1000 + 3000);

    const Ending twice = quit("held", 2);
    EXPECT_EQ(twice.status, QProcess::CrashExit);
    EXPECT_EQ(twice.code, SIGTERM);
    EXPECT_LT(twice.milliseconds, 2000);
}
