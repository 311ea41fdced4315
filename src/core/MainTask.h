#pragma once

#include <QObject>
#include <QPointer>

#include <QCoroTask>

#include <chrono>
#include <functional>
#include <memory>

namespace zentoro {

namespace detail {
// The shared state of one task. It lives on the main thread; nothing here is locked.
class TaskState : public QObject {
    Q_OBJECT
public:
    bool cancelled = false;
    bool finished = false;
signals:
    void cancelRequested();
    void ended();
};
} // namespace detail

// A handle to a task on the main thread: a coroutine resumed by the Qt event loop.
// Cancellation is cooperative: the task's code looks at `isCancelled()` at its check
// points, and the awaits below (sleep, a network reply, a process) end early when the
// task is cancelled, so a stop never waits for a slow service.
class TaskHandle {
public:
    TaskHandle() = default;

    bool isValid() const { return state_ != nullptr; }
    bool isCancelled() const { return state_ && state_->cancelled; }
    bool isFinished() const { return !state_ || state_->finished; }
    void cancel() const;

    // Runs `onCancel` once when the task is cancelled (at once if it already is),
    // for as long as `context` lives. This is how an await is cut short.
    void whenCancelled(QObject *context, std::function<void()> onCancel) const;

    // Suspends the caller until this task has ended; returns at once if it has.
    QCoro::Task<> finished() const;

    bool operator==(const TaskHandle &) const = default;

private:
    friend TaskHandle startTask(std::function<QCoro::Task<>(TaskHandle)> body);
    std::shared_ptr<detail::TaskState> state_;
};

// Starts `body` as a task on the main thread and returns its handle at once. The body
// runs until its first suspension before this returns. An exception that escapes the body
// ends the task and is logged as a warning; reporting it to the user is the body's business.
TaskHandle startTask(std::function<QCoro::Task<>(TaskHandle)> body);

// Waits for `duration`, or less if `task` is cancelled meanwhile. Returns true when the
// full time has passed.
QCoro::Task<bool> sleep(const TaskHandle &task, std::chrono::milliseconds duration);

} // namespace zentoro
