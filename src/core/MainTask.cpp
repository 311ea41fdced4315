#include "core/MainTask.h"

#include "core/DescribedError.h"
#include "core/Log.h"

#include <QTimer>

#include <QCoroSignal>

namespace zentoro {

void TaskHandle::cancel() const
{
    if (!state_ || state_->cancelled || state_->finished)
        return;
    state_->cancelled = true;
    emit state_->cancelRequested();
}

void TaskHandle::whenCancelled(QObject *context, std::function<void()> onCancel) const
{
    if (!state_)
        return;
    if (state_->cancelled) {
        onCancel();
        return;
    }
    QObject::connect(state_.get(), &detail::TaskState::cancelRequested, context, std::move(onCancel),
                     Qt::SingleShotConnection);
}

QCoro::Task<> TaskHandle::finished() const
{
    auto state = state_;
    if (!state || state->finished)
        co_return;
    co_await qCoro(state.get(), &detail::TaskState::ended);
}

namespace {

// A task's body reports its own failures; one that escapes only ends the task, and is told
// here so that it is seen at all.
void logEscaped(std::exception_ptr error)
{
    qCWarning(logCore, "A task ended on an error it didn't handle: %s", qUtf8Printable(describe(error)));
}

QCoro::Task<> runToEnd(std::function<QCoro::Task<>(TaskHandle)> body, TaskHandle handle,
                       std::shared_ptr<detail::TaskState> state)
{
    try {
        co_await body(handle);
    } catch (...) {
        logEscaped(std::current_exception());
    }
    state->finished = true;
    emit state->ended();
}

} // namespace

TaskHandle startTask(std::function<QCoro::Task<>(TaskHandle)> body)
{
    TaskHandle handle;
    handle.state_ = std::make_shared<detail::TaskState>();
    runToEnd(std::move(body), handle, handle.state_);
    return handle;
}

// Emits `done` once, whichever comes first: the timer or the task's cancellation.
class SleepWaker : public QObject {
    Q_OBJECT
public:
    bool elapsed = false;
signals:
    void done();
};

QCoro::Task<bool> sleep(const TaskHandle &task, std::chrono::milliseconds duration)
{
    if (task.isCancelled())
        co_return false;
    SleepWaker waker;
    QTimer timer;
    timer.setSingleShot(true);
    // A coarse timer may fire up to 5% early; a wait here is a promise of at least `duration`.
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &waker, [&waker] {
        waker.elapsed = true;
        emit waker.done();
    });
    task.whenCancelled(&waker, [&waker, &timer] {
        timer.stop();
        emit waker.done();
    });
    timer.start(duration);
    co_await qCoro(&waker, &SleepWaker::done);
    co_return waker.elapsed;
}

} // namespace zentoro

#include "MainTask.moc"
