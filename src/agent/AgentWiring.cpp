#include "agent/AgentWiring.h"

#include "agent/Agent.h"
#include "agent/Tools.h"
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
    operations.forHistory = [](const JSON &item) -> std::optional<JSON> { return item; };
    operations.context = [] { return QString(); };
    operations.recover = [](const TaskHandle &, const OpenAI::Failure &, Provider,
                            Recovery *) -> QCoro::Task<bool> { co_return false; };
    operations.errorItem = [](std::exception_ptr failure, Provider) {
        ChatItem item = ChatItem::make(ChatItem::Kind::Error, describe(failure));
        item.failed = true;
        return item;
    };
    operations.save = [] {};
    operations.relaunch = [](bool) {};
    operations.canUsePlan = [] { return false; };
    operations.hasAPIKey = [] { return false; };
    Q_UNUSED(weak);
    return operations;
}

} // namespace zentoro
