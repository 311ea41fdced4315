#pragma once

#include "agent/ChatItem.h"
#include "agent/Recovery.h"
#include "core/JSON.h"
#include "core/MainTask.h"
#include "model_service/Failures.h"
#include "model_service/Provider.h"

#include <QCoroTask>

#include <exception>
#include <functional>
#include <optional>

namespace zentoro {

// What a run of the agent calls on the rest of the program. The agent fills these with
// the real operations; tests put fakes in their place to drive the run step by step.
struct AgentOperations {
    // The credential for one request; raises when there is none.
    std::function<QCoro::Task<QString>(const TaskHandle &task, Provider provider, bool refresh)> bearer;
    // The body of one request; changes nothing.
    std::function<JSON(Provider provider)> request;
    // Sends one request and reads the stream to the finished response; calls
    // `onItemStarted` on the main thread as each output item starts. Raises
    // OpenAI::Failure or NetworkError.
    std::function<QCoro::Task<JSON>(const TaskHandle &task, const QString &bearer, const JSON &body,
                                    const std::function<void(const JSON &item)> &onItemStarted)>
        respond;
    // Carries out one function call; never raises.
    std::function<QCoro::Task<ToolResult>(const QString &name, const JSON &arguments)> perform;
    // The form of an item to keep in history, or nothing to leave it out.
    std::function<std::optional<JSON>(const JSON &item)> forHistory;
    // The state note that goes with each user message.
    std::function<QString()> context;
    // Whether the failed request is to go out again after a repair.
    std::function<QCoro::Task<bool>(const TaskHandle &task, const OpenAI::Failure &failure, Provider provider,
                                    Recovery *recovery)>
        recover;
    // The error row for a failure that ends a run.
    std::function<ChatItem(std::exception_ptr failure, Provider provider)> errorItem;
    // Writes the open conversation; reports nothing.
    std::function<void()> save;
    // After each save: whether it failed for want of disk space, the one save failure the
    // user can act on.
    std::function<void(bool full)> diskFull;
    // Ends this process and starts it anew.
    std::function<void(bool safeMode)> relaunch;
    // Whether an API key is saved or in the environment.
    std::function<bool()> hasAPIKey;
};

} // namespace zentoro
