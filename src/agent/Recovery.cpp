#include "agent/Recovery.h"

#include "agent/Agent.h"
#include "agent/HistoryUpkeep.h"
#include "model_service/AgentConfig.h"

#include <algorithm>

namespace zentoro {

namespace {

constexpr int trimLimit = 4;
constexpr int waitLimit = 2;

// What the rules that need no waiting decided.
enum class Decision { Retry, Refuse, WaitForPlan };

bool isType(const JSON &item, QStringView type)
{
    return item.stringAt(QStringLiteral("type")) == type;
}

bool chainLost(const OpenAI::Failure &failure, const QString &message)
{
    return failure.param == u"previous_response_id" || message.contains(u"previous_response") ||
           message.contains(u"previous response");
}

void dropChain(Agent &agent)
{
    agent.previousResponseID.reset();
    if (!agent.history.isEmpty())
        return;
    // The chain was all there was: the calls of these outputs are gone with it.
    agent.pendingInput.removeIf([](const JSON &item) { return isType(item, u"function_call_output"); });
    agent.pendingInput.prepend(Agent::message(
        QStringLiteral("developer"),
        QStringLiteral("Earlier parts of this conversation were lost; look at the files again before relying on them.")));
}

bool planBusy(const OpenAI::Failure &failure)
{
    return failure.code == u"subscription_sharing_usage_unavailable" ||
           failure.code == u"subscription_sharing_user_unavailable" || failure.status == 503;
}

Decision decide(Agent &agent, const OpenAI::Failure &failure, Provider provider, Recovery &recovery)
{
    const QString message = failure.message.toLower();
    if (agent.previousResponseID && !recovery.droppedResponse && chainLost(failure, message)) {
        recovery.droppedResponse = true;
        dropChain(agent);
        return Decision::Retry;
    }
    if (failure.code == u"context_length_exceeded" && recovery.trims < trimLimit &&
        HistoryUpkeep::trimHistory(agent.history, agent.pendingInput)) {
        ++recovery.trims;
        return Decision::Retry;
    }
    if (message.contains(u"encrypted") && !recovery.droppedReasoning &&
        std::any_of(agent.history.begin(), agent.history.end(),
                    [](const JSON &item) { return isType(item, u"reasoning"); })) {
        recovery.droppedReasoning = true;
        agent.history.removeIf([](const JSON &item) { return isType(item, u"reasoning"); });
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
        return QStringLiteral("the model %1; pick another in Settings").arg(AgentConfig::model());
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
        return errorRow(
            QStringLiteral("Usage limit reached. Review your plan or Zentoro's limit in ChatGPT settings."), usage);
    if (failure.code == u"subscription_sharing_user_not_eligible")
        return errorRow(QStringLiteral("Your ChatGPT plan can't be used in Zentoro (%1). You can add an OpenAI API "
                                       "key in Settings instead.")
                            .arg(failure.message));
    if (failure.code == u"subscription_sharing_unsupported_capability")
        return errorRow(QStringLiteral("Your ChatGPT plan doesn't support %1. (%2)")
                            .arg(missingCapability(failure.param), failure.message));
    if (provider == Provider::ChatGPT && failure.status == 429)
        return errorRow(failure.errorDescription(), usage);
    return errorRow(failure.errorDescription());
}

} // namespace

PlanService PlanService::standard()
{
    QString origin = qEnvironmentVariable("ZENTORO_CHATGPT_BASE", QStringLiteral("https://chatgpt.com"));
    while (origin.endsWith(u'/'))
        origin.chop(1);
    return PlanService{QUrl(origin + QStringLiteral("/settings/usage")), std::chrono::seconds(5)};
}

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
