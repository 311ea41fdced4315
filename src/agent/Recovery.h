#pragma once

#include "agent/ChatItem.h"
#include "core/MainTask.h"
#include "model_service/Failures.h"
#include "model_service/Provider.h"

#include <QUrl>

#include <QCoroTask>

#include <chrono>
#include <exception>

namespace zentoro {

class Agent;

// The repairs already tried in one run of the agent; every limit counts for the whole run.
struct Recovery {
    bool refresh = false;
    bool refreshed = false;
    bool droppedResponse = false;
    bool droppedReasoning = false;
    int trims = 0;
    int waits = 0;

    bool operator==(const Recovery &) const = default;
};

// What recovery needs of the ChatGPT plan's service: where its usage is managed, and how
// long a busy plan is given before each new attempt (the first wait one unit, the second two).
struct PlanService {
    QUrl usageURL;
    std::chrono::milliseconds busyWait{5000};

    // The service's own usage page, under $ZENTORO_CHATGPT_BASE when that is set.
    static PlanService standard();
};

namespace FailureRecovery {

// Tries the one repair that fits `failure` within the run's limits in `recovery`; true
// when the request is to go out again. Changes the agent's history, queued input and
// chain where a repair needs it.
QCoro::Task<bool> recover(Agent &agent, const TaskHandle &task, const OpenAI::Failure &failure, Provider provider,
                          Recovery &recovery, const PlanService &plan);

// The error row that ends a run, in words the user can act on.
ChatItem errorItem(std::exception_ptr error, Provider provider, const PlanService &plan);

} // namespace FailureRecovery

} // namespace zentoro
