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

TEST(Shell, JoinsBothStreamsInOrderWithNoInputInTheGivenDirectory)
{
    QTemporaryDir folder;
    // `cat` would wait for ever on an inherited terminal; on the null device it ends at once.
    const Shell::Result result = sh(QStringLiteral("echo one; echo two >&2; cat; pwd; exit 3"), folder.path());
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.output, QStringLiteral("one\ntwo\n") + QDir(folder.path()).canonicalPath() + u'\n');

    // A program that can't start gives -1 and the system's words.
    const Shell::Result missing = test::await(Shell::run(QStringLiteral("/nonexistent/swiftc"), {}));
    EXPECT_EQ(missing.status, -1);
    EXPECT_FALSE(missing.output.trimmed().isEmpty());
}

TEST(Shell, ReadsALargeOutputWholeAndRepairsInvalidUTF8)
{
    EXPECT_EQ(sh(QStringLiteral("head -c 3000000 /dev/zero | tr '\\0' x")).output.size(), 3000000);

    EXPECT_EQ(sh(QStringLiteral("printf 'a\\377b'")).output, QStringLiteral("a\uFFFDb"));
}

TEST(Shell, TheMainThreadStaysFreeWhileTheChildRuns)
{
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(20ms);
    EXPECT_EQ(sh(QStringLiteral("sleep 0.5")).status, 0);
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
