#pragma once

#include <QCoroTask>

#include <chrono>
#include <exception>
#include <functional>
#include <optional>
#include <type_traits>

namespace zentoro::test {

namespace detail {
// Catches what the task raises, so that the waiting loop always ends.
template <typename T>
QCoro::Task<std::optional<T>> capture(QCoro::Task<T> task, std::exception_ptr *failure)
{
    try {
        co_return co_await std::move(task);
    } catch (...) {
        *failure = std::current_exception();
    }
    co_return std::nullopt;
}

inline QCoro::Task<bool> capture(QCoro::Task<> task, std::exception_ptr *failure)
{
    try {
        co_await std::move(task);
    } catch (...) {
        *failure = std::current_exception();
    }
    co_return true;
}
} // namespace detail

// Runs the event loop until `task` ends and returns its result, or raises what it raised.
template <typename T>
T await(QCoro::Task<T> &&task)
{
    std::exception_ptr failure;
    auto result = QCoro::waitFor(detail::capture(std::move(task), &failure));
    if (failure)
        std::rethrow_exception(failure);
    if constexpr (!std::is_void_v<T>)
        return std::move(*result);
}

// Runs the event loop until `condition` holds or `timeout` passes; returns the condition.
bool spinUntil(const std::function<bool()> &condition, std::chrono::milliseconds timeout = std::chrono::seconds(10));

} // namespace zentoro::test
