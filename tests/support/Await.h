#pragma once

#include <QCoroTask>

#include <chrono>
#include <functional>

namespace zentoro::test {

// Runs the event loop until `task` ends and returns its result.
template <typename T>
T await(QCoro::Task<T> &&task)
{
    return QCoro::waitFor(std::move(task));
}

// Runs the event loop until `condition` holds or `timeout` passes; returns the condition.
bool spinUntil(const std::function<bool()> &condition, std::chrono::milliseconds timeout = std::chrono::seconds(10));

} // namespace zentoro::test
