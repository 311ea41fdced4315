#include "runtime/Shell.h"

#include "support/Await.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

using namespace zentoro;
using namespace std::chrono_literals;

namespace {
Shell::Result sh(const QString &script, const QString &directory = {})
{
    return test::await(Shell::run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), script}, directory));
}
} // namespace

TEST(Shell, JoinsBothStreamsInTheOrderWrittenAndReportsTheStatus)
{
    const Shell::Result result = sh(QStringLiteral("echo one; echo two >&2; echo three; exit 3"));
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.output, QStringLiteral("one\ntwo\nthree\n"));
}

TEST(Shell, InputIsTheNullDeviceAndTheDirectoryIsHonoured)
{
    QTemporaryDir folder;
    // `cat` would wait for ever on an inherited terminal; on the null device it ends at once.
    const Shell::Result result = sh(QStringLiteral("cat; pwd"), folder.path());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.trimmed(), QDir(folder.path()).canonicalPath());
}

TEST(Shell, AProgramThatCannotStartGivesMinusOneAndTheSystemsWords)
{
    const Shell::Result result =
        test::await(Shell::run(QStringLiteral("/nonexistent/swiftc"), {QStringLiteral("--version")}));
    EXPECT_EQ(result.status, -1);
    EXPECT_FALSE(result.output.trimmed().isEmpty());
}

TEST(Shell, ReadsALargeOutputWholeAndRepairsInvalidUTF8)
{
    const Shell::Result large = sh(QStringLiteral("head -c 3000000 /dev/zero | tr '\\0' x"));
    EXPECT_EQ(large.status, 0);
    EXPECT_EQ(large.output.size(), 3000000);

    const Shell::Result broken = sh(QStringLiteral("printf 'a\\377b'"));
    EXPECT_EQ(broken.output, QStringLiteral("a\uFFFDb"));
}

TEST(Shell, TheMainThreadStaysFreeWhileTheChildRuns)
{
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(20ms);
    const Shell::Result result = sh(QStringLiteral("sleep 0.5"));
    EXPECT_EQ(result.status, 0);
    EXPECT_GE(ticks, 10);
}

TEST(Shell, CancellingTheTaskKillsTheChild)
{
    std::optional<Shell::Result> result;
    TaskHandle task = startTask([&](TaskHandle self) -> QCoro::Task<> {
        const QStringList arguments{QStringLiteral("30")};
        result = co_await Shell::run(QStringLiteral("/bin/sleep"), arguments, QString(), self);
    });
    QElapsedTimer clock;
    clock.start();
    QTimer::singleShot(100ms, [&] { task.cancel(); });
    ASSERT_TRUE(test::spinUntil([&] { return task.isFinished(); }));
    EXPECT_LT(clock.elapsed(), 5000);
    ASSERT_TRUE(result);
    EXPECT_NE(result->status, 0);
}
