#include "core/MainTask.h"

#include "support/Await.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

using namespace zentoro;
using namespace std::chrono_literals;

TEST(MainTask, ASleepRunsItsTimeUnlessCancellingCutsItShort)
{
    bool slept = false;
    QElapsedTimer clock;
    clock.start();
    TaskHandle full = startTask([&](TaskHandle self) -> QCoro::Task<> { slept = co_await sleep(self, 50ms); });
    ASSERT_TRUE(test::spinUntil([&] { return full.isFinished(); }));
    EXPECT_TRUE(slept);
    EXPECT_GE(clock.elapsed(), 45);

    std::vector<QString> trace;
    TaskHandle task = startTask([&](TaskHandle self) -> QCoro::Task<> {
        trace.push_back("begin");
        const bool ranOut = co_await sleep(self, 10s);
        trace.push_back(ranOut ? "slept" : "woken");
        if (self.isCancelled())
            trace.push_back("noticed");
    });
    EXPECT_EQ(trace, std::vector<QString>{"begin"});
    clock.restart();
    task.cancel();
    ASSERT_TRUE(test::spinUntil([&] { return task.isFinished(); }));
    EXPECT_LT(clock.elapsed(), 2000);
    EXPECT_EQ(trace, (std::vector<QString>{"begin", "woken", "noticed"}));
}

TEST(MainTask, AnotherTaskAwaitsTheEnd)
{
    std::vector<QString> trace;
    TaskHandle first = startTask([&](TaskHandle self) -> QCoro::Task<> {
        co_await sleep(self, 30ms);
        trace.push_back("first ended");
    });
    TaskHandle second = startTask([&](TaskHandle) -> QCoro::Task<> {
        co_await first.finished();
        trace.push_back("after first");
    });
    ASSERT_TRUE(test::spinUntil([&] { return second.isFinished(); }));
    EXPECT_EQ(trace, (std::vector<QString>{"first ended", "after first"}));

    // Awaiting a task that already ended returns at once.
    bool ran = false;
    TaskHandle third = startTask([&](TaskHandle) -> QCoro::Task<> {
        co_await first.finished();
        ran = true;
    });
    EXPECT_TRUE(ran);
    EXPECT_TRUE(third.isFinished());
}

TEST(MainTask, CancelHooksRunOnceAndAtOnceWhenAlreadyCancelled)
{
    QObject context;
    int calls = 0;
    TaskHandle task = startTask([](TaskHandle self) -> QCoro::Task<> { co_await sleep(self, 10s); });
    task.whenCancelled(&context, [&] { ++calls; });
    task.cancel();
    task.cancel();
    EXPECT_EQ(calls, 1);
    task.whenCancelled(&context, [&] { ++calls; });
    EXPECT_EQ(calls, 2);
    ASSERT_TRUE(test::spinUntil([&] { return task.isFinished(); }));
}

namespace {
QStringList logged;
void keep(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    logged.append(QString::number(type) + u' ' + QString::fromUtf8(context.category) + u' ' + message);
}
} // namespace

TEST(MainTask, AnEscapingExceptionEndsTheTaskAndIsLogged)
{
    const QtMessageHandler previous = qInstallMessageHandler(keep);
    TaskHandle task = startTask([](TaskHandle self) -> QCoro::Task<> {
        co_await sleep(self, 1ms);
        throw std::runtime_error("boom");
    });
    EXPECT_TRUE(test::spinUntil([&] { return task.isFinished(); }));
    qInstallMessageHandler(previous);
    EXPECT_EQ(logged, QStringList{QString::number(QtWarningMsg) +
                                  " zentoro.core A task ended on an error it didn't handle: boom"});
}
