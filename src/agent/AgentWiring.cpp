#include "agent/AgentWiring.h"

#include "agent/Agent.h"
#include "agent/HistoryUpkeep.h"
#include "agent/Instructions.h"
#include "agent/Tools.h"
#include "runtime/Runtime.h"
#include "runtime/Workspace.h"

#include <QPointer>

namespace zentoro {

namespace {
[[noreturn]] void unavailable()
{
    throw Workspace::Failure(QStringLiteral("Zentoro can't reach the model service in this build."));
}
} // namespace

AgentOperations programOperations(Agent &agent)
{
    QPointer<Agent> weak(&agent);
    AgentOperations operations;
    operations.bearer = [](const TaskHandle &, Provider, bool) -> QCoro::Task<QString> {
        unavailable();
        co_return QString();
    };
    operations.request = [](Provider) { return JSON::object(); };
    operations.respond = [](const TaskHandle &, const QString &, const JSON &,
                            const std::function<void(const JSON &)> &) -> QCoro::Task<JSON> {
        unavailable();
        co_return JSON();
    };
    // build, screenshot and read_log are plugged into `runtimeTools` by the runtime.
    Tools::RuntimeTools runtimeTools;
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
    operations.relaunch = [](bool) {};
    operations.canUsePlan = [] { return false; };
    operations.hasAPIKey = [] { return false; };
    Q_UNUSED(weak);
    return operations;
}

} // namespace zentoro
