#include "agent/Recovery.h"

#include "agent/Agent.h"
#include "model_service/AgentConfig.h"

namespace zentoro {

namespace {

constexpr int trimLimit = 4;
constexpr int waitLimit = 2;

// What the rules that need no waiting decided.
enum class Decision { Retry, Refuse, WaitForPlan };

bool chainLost(const OpenAI::Failure &failure, const QString &message)
{
    return failure.param == u"previous_response_id" || message.contains(u"previous_response") ||
           message.contains(u"previous response");
}

bool planBusy(const OpenAI::Failure &failure)
{
    return failure.code == u"subscription_sharing_usage_unavailable" ||
           failure.code == u"subscription_sharing_user_unavailable" || failure.status == 503;
}

Decision decide(Agent &agent, const OpenAI::Failure &failure, Provider provider, Recovery &recovery)
{
    const QString message = failure.message.toLower();
    if (agent.previousResponseID() && !recovery.droppedResponse && chainLost(failure, message)) {
        recovery.droppedResponse = true;
        agent.dropResponseChain();
        return Decision::Retry;
    }
    if (failure.code == u"context_length_exceeded" && recovery.trims < trimLimit && agent.trimHistory()) {
        ++recovery.trims;
        return Decision::Retry;
    }
    if (message.contains(u"encrypted") && !recovery.droppedReasoning && agent.dropReasoning()) {
        recovery.droppedReasoning = true;
        return Decision::Retry;
    }
    if (provider == Provider::ChatGPT && failure.status == 401 && !recovery.refreshed) {
        recovery.refresh = true;
        recovery.refreshed = true;
        return Decision::Retry;
    }
    if (provider == Provider::ChatGPT && planBusy(failure) && recovery.waits < waitLimit) {
        ++recovery.waits;
        agent.setActivity(QStringLiteral("Waiting for ChatGPT…"));
        return Decision::WaitForPlan;
    }
    return Decision::Refuse;
}

// <what> of a capability the plan lacks, from the failure's `param`.
QString missingCapability(const std::optional<QString> &param)
{
    if (!param)
        return QStringLiteral("something in this request");
    if (*param == u"model")
        return QStringLiteral("the model %1; pick another in Settings (Ctrl+,)").arg(AgentConfig::model());
    return QStringLiteral("“%1”").arg(*param);
}

ChatItem errorRow(QString text, std::optional<ChatLink> link = std::nullopt)
{
    ChatItem item = ChatItem::make(ChatItem::Kind::Error, std::move(text));
    item.link = std::move(link);
    return item;
}

ChatItem failureRow(const OpenAI::Failure &failure, Provider provider, const PlanService &plan)
{
    const ChatLink usage{QStringLiteral("Manage Usage"), plan.usageURL};
    if (failure.code == u"subscription_sharing_usage_limit_exceeded")
        return errorRow(QStringLiteral("Usage limit reached. Review your plan or Zentoro's limit in ChatGPT settings."),
                        usage);
    if (failure.code == u"subscription_sharing_user_not_eligible")
        return errorRow(QStringLiteral("Your ChatGPT plan can't be used in Zentoro (%1). You can add an OpenAI API "
                                       "key in Settings (Ctrl+,) instead.")
                            .arg(failure.message));
    if (failure.code == u"subscription_sharing_unsupported_capability")
        return errorRow(QStringLiteral("Your ChatGPT plan doesn't support %1. (%2)")
                            .arg(missingCapability(failure.param), failure.message));
    if (provider == Provider::ChatGPT && failure.status == 429)
        return errorRow(failure.errorDescription(), usage);
    return errorRow(failure.errorDescription());
}

} // namespace

namespace FailureRecovery {

QCoro::Task<bool> recover(Agent &agent, const TaskHandle &task, const OpenAI::Failure &failure, Provider provider,
                          Recovery &recovery, const PlanService &plan)
{
    const Decision decision = decide(agent, failure, provider, recovery);
    if (decision != Decision::WaitForPlan)
        co_return decision == Decision::Retry;
    co_await sleep(task, plan.busyWait * recovery.waits);
    co_return !task.isCancelled();
}

ChatItem errorItem(std::exception_ptr error, Provider provider, const PlanService &plan)
{
    try {
        std::rethrow_exception(error);
    } catch (const OpenAI::Failure &failure) {
        return failureRow(failure, provider, plan);
    } catch (...) {
        return errorRow(describe(error));
    }
}

} // namespace FailureRecovery

} // namespace zentoro
