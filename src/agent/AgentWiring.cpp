#include "agent/AgentWiring.h"

#include "agent/Agent.h"
#include "agent/BuildTools.h"
#include "agent/HistoryUpkeep.h"
#include "agent/Instructions.h"
#include "agent/ModelRequest.h"
#include "agent/Tools.h"
#include "model_service/AgentConfig.h"
#include "model_service/OpenAI.h"
#include "runtime/DiskFull.h"
#include "runtime/Runtime.h"

#include <QPointer>

namespace zentoro {

namespace {

// The usage page of the agent's plan, and the waits for a busy plan.
PlanService planService(const QPointer<Agent> &agent)
{
    PlanService service = PlanService::standard();
    if (agent && agent->plan())
        service.usageURL = agent->plan()->usageURL();
    return service;
}

} // namespace

AgentOperations programOperations(Agent &agent, Runtime &runtime)
{
    QPointer<Agent> weak(&agent);
    QPointer<Runtime> weakRuntime(&runtime);
    AgentOperations operations;
    operations.bearer = [weak](const TaskHandle &task, Provider provider, bool refresh) {
        return ModelRequest::bearer(task, provider, refresh, weak ? weak->plan() : nullptr);
    };
    operations.request = [weak](Provider provider) { return weak ? ModelRequest::request(*weak, provider) : JSON(); };
    operations.respond = OpenAI::respond;
    Tools::RuntimeTools runtimeTools = BuildTools::runtimeTools(runtime);
    operations.perform = [weak, runtimeTools](const QString &name, const JSON &arguments) -> QCoro::Task<ToolResult> {
        co_return co_await Tools::perform(*weak, weak->workspace(), runtimeTools, name, arguments);
    };
    operations.forHistory = HistoryUpkeep::forHistory;
    operations.context = [weakRuntime] { return weakRuntime ? Instructions::context(*weakRuntime) : QString(); };
    operations.recover = [weak](const TaskHandle &task, const OpenAI::Failure &failure, Provider provider,
                                Recovery *recovery) -> QCoro::Task<bool> {
        if (!weak)
            co_return false;
        const bool again = co_await FailureRecovery::recover(*weak, task, failure, provider, *recovery,
                                                             planService(weak));
        co_return again;
    };
    operations.errorItem = [weak](std::exception_ptr failure, Provider provider) {
        return FailureRecovery::errorItem(failure, provider, planService(weak));
    };
    operations.save = [weak] {
        if (weak)
            weak->writeConversation();
    };
    operations.diskFull = [weakRuntime](bool full) {
        if (!weakRuntime)
            return;
        const Banner banner = DiskFull::banner(QStringLiteral("this conversation"));
        if (full)
            weakRuntime->setBanner(banner);
        else if (weakRuntime->banner() == banner)
            weakRuntime->setBanner(std::nullopt);
    };
    operations.relaunch = [weakRuntime](bool safeMode) {
        if (weakRuntime)
            weakRuntime->relaunch(safeMode);
    };
    operations.hasAPIKey = [] { return AgentConfig::effectiveKey().has_value(); };
    return operations;
}

} // namespace zentoro
