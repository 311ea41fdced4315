#include "agent/AgentWiring.h"

#include "agent/Agent.h"
#include "agent/BuildTools.h"
#include "agent/HistoryUpkeep.h"
#include "agent/Instructions.h"
#include "agent/ModelRequest.h"
#include "agent/Tools.h"
#include "model_service/AgentConfig.h"
#include "model_service/OpenAI.h"
#include "runtime/Runtime.h"
#include "runtime/Workspace.h"

#include <QPointer>

namespace zentoro {

AgentOperations programOperations(Agent &agent)
{
    QPointer<Agent> weak(&agent);
    AgentOperations operations;
    operations.bearer = ModelRequest::bearer;
    operations.request = [weak](Provider provider) { return weak ? ModelRequest::request(*weak, provider) : JSON(); };
    operations.respond = OpenAI::respond;
    // build, screenshot and read_log work on the agent's runtime.
    Tools::RuntimeTools runtimeTools = BuildTools::runtimeTools();
    operations.perform = [weak, runtimeTools](const QString &name, const JSON &arguments) -> QCoro::Task<ToolResult> {
        co_return co_await Tools::perform(*weak, Workspace::shared(), runtimeTools, name, arguments);
    };
    operations.forHistory = HistoryUpkeep::forHistory;
    operations.context = [weak] { return Instructions::context(weak ? weak->runtime.data() : nullptr); };
    operations.recover = [weak](const TaskHandle &task, const OpenAI::Failure &failure, Provider provider,
                                Recovery *recovery) -> QCoro::Task<bool> {
        if (!weak)
            co_return false;
        const PlanService plan = PlanService::standard();
        const bool again = co_await FailureRecovery::recover(*weak, task, failure, provider, *recovery, plan);
        co_return again;
    };
    operations.errorItem = [](std::exception_ptr failure, Provider provider) {
        return FailureRecovery::errorItem(failure, provider, PlanService::standard());
    };
    operations.save = [weak] {
        if (weak)
            weak->writeConversation();
    };
    operations.relaunch = [weak](bool safeMode) {
        if (weak && weak->runtime)
            weak->runtime->relaunch(safeMode);
    };
    operations.canUsePlan = [] { return false; };
    operations.hasAPIKey = [] { return AgentConfig::effectiveKey().has_value(); };
    Q_UNUSED(weak);
    return operations;
}

} // namespace zentoro
