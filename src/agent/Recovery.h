#pragma once

#include "agent/ChatItem.h"
#include "agent/PlanService.h"
#include "core/MainTask.h"
#include "model_service/Failures.h"
#include "model_service/Provider.h"

#include <QCoroTask>

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
