#include "agent/Agent.h"

#include "core/Defaults.h"
#include "core/Log.h"
#include "core/Text.h"

#include <QPointer>

namespace zentoro {

namespace {

const QString providerKey = QStringLiteral("provider");

// The text of an assistant message: each part's `text`, else its `refusal`, one per line.
QString messageText(const JSON &message)
{
    const JSON::Array *content = message.arrayAt("content");
    if (!content)
        return {};
    QStringList parts;
    for (const JSON &part : *content) {
        if (auto text = part.stringAt("text"))
            parts.append(*text);
        else if (auto refusal = part.stringAt("refusal"))
            parts.append(*refusal);
    }
    return parts.join(u'\n').trimmed();
}

ChatItem errorRow(const QString &text)
{
    return ChatItem::make(ChatItem::Kind::Error, text);
}

// How a run ended shows in its last row: an answer, "Stopped", an error.
void logRunEnd(const QList<ChatItem> &items)
{
    const QString last = items.isEmpty() ? QStringLiteral("none")
                                         : ChatItem::kindText(items.last().kind) + QStringLiteral(": ") +
                                               Text::firstCharacters(items.last().text, 300);
    qCDebug(logAgent, "The run ended; its last row is %s", qUtf8Printable(last));
}

QString stepLimitText()
{
    return QStringLiteral("Stopped after %1 steps. Say \"continue\" to keep going.").arg(Agent::stepLimit);
}

} // namespace

Agent::Agent(AgentOperations operations, Workspace workspace, QObject *parent)
    : QObject(parent), workspace_(std::move(workspace))
{
    if (auto stored = Defaults::string(providerKey))
        preferredProvider_ = providerFromText(*stored);
    setOperations(std::move(operations));
}

void Agent::setOperations(AgentOperations operations)
{
    operations_ = std::move(operations);
    if (operations_.hasAPIKey)
        setHasAPIKey(operations_.hasAPIKey());
}

void Agent::setPlan(PlanAccess *plan)
{
    if (plan_ == plan)
        return;
    if (plan_) {
        disconnect(plan_, nullptr, this, nullptr);
        plan_->onPlanReady = nullptr;
    }
    plan_ = plan;
    if (plan_) {
        QPointer<Agent> weak(this);
        plan_->onPlanReady = [weak] {
            if (weak)
                weak->setPreferredProvider(Provider::ChatGPT);
        };
        connect(plan_, &PlanAccess::changed, this, &Agent::planChanged);
    }
    emit planChanged();
}

std::optional<Provider> Agent::provider() const
{
    const bool canUsePlan = plan_ && plan_->canUsePlan();
    if (preferredProvider_ == Provider::APIKey) {
        if (hasAPIKey_)
            return Provider::APIKey;
        return canUsePlan ? std::optional(Provider::ChatGPT) : std::nullopt;
    }
    if (canUsePlan)
        return Provider::ChatGPT;
    return hasAPIKey_ ? std::optional(Provider::APIKey) : std::nullopt;
}

JSON Agent::message(const QString &role, const QString &text)
{
    return JSON::object({{"role", role}, {"content", text}});
}

JSON Agent::output(const QString &callID, const JSON &value)
{
    return JSON::object({{"type", "function_call_output"}, {"call_id", callID}, {"output", value}});
}

void Agent::send(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || isRunning_)
        return;
    appendItem(ChatItem::make(ChatItem::Kind::User, trimmed));
    currentRequest_ = trimmed;
    if (!notes_.isEmpty()) {
        QStringList lines;
        for (const QString &note : std::as_const(notes_))
            lines.append(QStringLiteral("- ") + note);
        pendingInput_.append(
            message(QStringLiteral("developer"), QStringLiteral("Meanwhile, in Zentoro:\n") + lines.join(u'\n')));
        notes_.clear();
    }
    pendingInput_.append(message(QStringLiteral("developer"), operations_.context()));
    pendingInput_.append(message(QStringLiteral("user"), trimmed));
    save();
    start();
}

void Agent::start()
{
    qCDebug(logAgent, "A run starts with %lld items of history and %lld waiting.", qlonglong(history_.size()),
            qlonglong(pendingInput_.size()));
    setRunning(true);
    startedAt_ = QDateTime::currentDateTimeUtc();
    emit startedAtChanged();
    QPointer<Agent> weak(this);
    task_ = startTask([weak](TaskHandle self) -> QCoro::Task<> {
        if (!weak)
            co_return;
        co_await weak->loop(self);
        if (!weak)
            co_return;
        logRunEnd(weak->items_);
        weak->setRunning(false);
        if (weak->startedAt_) {
            weak->startedAt_.reset();
            emit weak->startedAtChanged();
        }
        weak->setActivity(std::nullopt);
        weak->save();
    });
}

void Agent::afterStopping(std::function<void()> work)
{
    if (!task_.isValid() || !isRunning_) {
        work();
        return;
    }
    const TaskHandle running = task_;
    running.cancel();
    QPointer<Agent> weak(this);
    startTask([weak, running, work = std::move(work)](TaskHandle) -> QCoro::Task<> {
        co_await running.finished();
        if (weak)
            work();
    });
}

QCoro::Task<> Agent::loop(TaskHandle self)
{
    const std::optional<Provider> runProvider = provider();
    if (!runProvider) {
        appendItem(
            errorRow(QStringLiteral("Sign in with ChatGPT or add an OpenAI API key first in Settings (Ctrl+,).")));
        co_return;
    }
    const Provider provider = *runProvider;
    int steps = 0;
    Recovery recovery;
    QPointer<Agent> weak(this);

    for (;;) {
        if (self.isCancelled()) {
            stopped();
            co_return;
        }
        setActivity(QStringLiteral("Thinking…"));

        JSON response;
        std::exception_ptr failure;
        try {
            const QString credential = co_await operations_.bearer(self, provider, recovery.refresh);
            recovery.refresh = false;
            const JSON body = operations_.request(provider);
            const std::function<void(const JSON &)> onItemStarted = [weak](const JSON &item) {
                if (weak)
                    weak->started(item);
            };
            response = co_await operations_.respond(self, credential, body, onItemStarted);
        } catch (...) {
            failure = std::current_exception();
        }

        if (failure) {
            bool cancelled = self.isCancelled();
            std::optional<OpenAI::Failure> serviceFailure;
            try {
                std::rethrow_exception(failure);
            } catch (const NetworkError &error) {
                cancelled = cancelled || error.isCancelled();
            } catch (const OpenAI::Failure &error) {
                serviceFailure = error;
            } catch (...) {
            }
            if (cancelled) {
                stopped();
                co_return;
            }
            if (serviceFailure) {
                const bool again = co_await operations_.recover(self, *serviceFailure, provider, &recovery);
                // A stop during a repair's wait is a stop, not a failure.
                if (self.isCancelled()) {
                    stopped();
                    co_return;
                }
                if (again) {
                    if (++steps >= stepLimit) {
                        appendItem(errorRow(stepLimitText()));
                        co_return;
                    }
                    continue;
                }
            }
            appendItem(operations_.errorItem(failure, provider));
            co_return;
        }

        QList<JSON> calls;
        QSet<QString> callIDs;
        if (const JSON::Array *outputItems = response.arrayAt("output")) {
            for (const JSON &item : *outputItems) {
                // A call named twice runs once: two outputs for one call would be refused.
                if (item.stringAt("type") == u"function_call" &&
                    !callIDs.contains(item.stringAt("call_id").value_or(QString()))) {
                    callIDs.insert(item.stringAt("call_id").value_or(QString()));
                    calls.append(item);
                }
            }
        }
        // The calls are owed an answer from the save that records them on: a crash before
        // their own save would otherwise leave them in history with no output ever.
        record(response, provider);
        unansweredCalls_.clear();
        for (const JSON &call : std::as_const(calls)) {
            if (auto id = call.stringAt("call_id"))
                unansweredCalls_.append(*id);
        }
        save();
        showResponse(response);
        if (calls.isEmpty())
            co_return;

        if (co_await runCalls(self, calls))
            co_return;
        if (self.isCancelled()) {
            stopped();
            co_return;
        }
        if (++steps >= stepLimit) {
            appendItem(errorRow(stepLimitText()));
            co_return;
        }
    }
}

void Agent::showResponse(const JSON &response)
{
    if (const JSON::Array *outputItems = response.arrayAt("output")) {
        for (const JSON &item : *outputItems) {
            if (item.stringAt("type") != u"message")
                continue;
            const QString text = messageText(item);
            if (!text.isEmpty())
                appendItem(ChatItem::make(ChatItem::Kind::Assistant, text));
        }
    }
    if (response.stringAt("status") == u"incomplete") {
        const JSON *details = response.find("incomplete_details");
        const QString reason =
            (details ? details->stringAt("reason") : std::nullopt).value_or(QStringLiteral("unknown reason"));
        appendItem(errorRow(QStringLiteral("The response was cut short (%1).").arg(reason)));
    }
}

QCoro::Task<bool> Agent::runCalls(const TaskHandle &self, const QList<JSON> &calls)
{
    unansweredCalls_.clear();
    for (const JSON &call : calls) {
        if (auto id = call.stringAt("call_id"))
            unansweredCalls_.append(*id);
    }
    save();

    std::optional<QString> restartCall;
    for (const JSON &call : calls) {
        const QString callID = call.stringAt("call_id").value_or(QString());
        const QString name = call.stringAt("name").value_or(QString());
        if (self.isCancelled()) {
            pendingInput_.append(output(callID, QStringLiteral("The user stopped you before this ran.")));
            unansweredCalls_.removeOne(callID);
            continue;
        }
        if (name == u"restart_app") {
            restartCall = callID;
            continue;
        }
        JSON arguments = JSON::object();
        try {
            arguments = JSON::decode(call.stringAt("arguments").value_or(QStringLiteral("{}")).toUtf8());
        } catch (const JSON::Error &) {
        }
        if (!arguments.objectValue())
            arguments = JSON::object();
        const ToolResult result = co_await operations_.perform(name, arguments);
        pendingInput_.append(output(callID, result.output));
        unansweredCalls_.removeOne(callID);
        appendItem(result.item);
        save();
    }

    if (!restartCall)
        co_return false;
    if (self.isCancelled()) {
        pendingInput_.append(output(*restartCall, QStringLiteral("The user stopped you before the restart.")));
        unansweredCalls_.removeOne(*restartCall);
        co_return false;
    }
    restartCallID_ = restartCall;
    appendItem(ChatItem::make(ChatItem::Kind::Tool, QStringLiteral("Restarting %1…").arg(workspace_.name),
                              QStringLiteral("arrow.clockwise")));
    save();
    operations_.relaunch(false);
    co_return true;
}

void Agent::record(const JSON &response, Provider provider)
{
    QList<JSON> recorded = pendingInput_;
    if (const JSON::Array *outputItems = response.arrayAt("output"))
        recorded.append(QList<JSON>(outputItems->begin(), outputItems->end()));
    for (const JSON &item : std::as_const(recorded)) {
        if (auto kept = operations_.forHistory(item))
            history_.append(*kept);
    }
    const auto id = response.stringAt("id");
    previousResponseID_ = provider == Provider::APIKey && id ? id : std::nullopt;
    pendingInput_.clear();
}

void Agent::started(const JSON &item)
{
    const auto type = item.stringAt("type");
    if (type == u"function_call") {
        const auto name = item.stringAt("name");
        if (name == u"write_file" || name == u"edit_file")
            setActivity(QStringLiteral("Writing code…"));
    } else if (type == u"message") {
        setActivity(QStringLiteral("Writing a reply…"));
    }
}

void Agent::stopped()
{
    appendItem(ChatItem::make(ChatItem::Kind::Event, QStringLiteral("Stopped"), QStringLiteral("stop.circle")));
}

void Agent::save()
{
    if (operations_.save)
        operations_.save();
}

void Agent::setRunning(bool running)
{
    if (isRunning_ == running)
        return;
    isRunning_ = running;
    emit isRunningChanged();
}

void Agent::setActivity(std::optional<QString> activity)
{
    if (activity_ == activity)
        return;
    activity_ = std::move(activity);
    emit activityChanged();
}

void Agent::setHasAPIKey(bool hasAPIKey)
{
    if (hasAPIKey_ == hasAPIKey)
        return;
    hasAPIKey_ = hasAPIKey;
    emit hasAPIKeyChanged();
}

void Agent::setPreferredProvider(std::optional<Provider> provider)
{
    if (preferredProvider_ == provider)
        return;
    preferredProvider_ = provider;
    if (provider)
        Defaults::setValue(providerKey, providerText(*provider));
    else
        Defaults::remove(providerKey);
    emit preferredProviderChanged();
}

void Agent::appendItem(ChatItem item)
{
    items_.append(std::move(item));
    emit itemsChanged();
}

void Agent::setItems(QList<ChatItem> items)
{
    if (items_ == items)
        return;
    items_ = std::move(items);
    emit itemsChanged();
}

void Agent::setConversations(QList<ConversationSummary> conversations)
{
    if (conversations_ == conversations)
        return;
    conversations_ = std::move(conversations);
    emit conversationsChanged();
}

void Agent::setConversationID(const QUuid &id)
{
    if (conversationID_ == id)
        return;
    conversationID_ = id;
    emit conversationIDChanged();
}

void Agent::note(const QString &shown, const QString &told)
{
    appendItem(ChatItem::make(ChatItem::Kind::Event, shown, QStringLiteral("info.circle")));
    notes_.append(told);
    save();
}

bool Agent::canRetry() const
{
    // Without a way to reach the model there is nothing to retry: the access row is the way on.
    return !isRunning_ && provider().has_value() && !pendingInput_.isEmpty() && !items_.isEmpty() &&
           items_.last().kind == ChatItem::Kind::Error;
}

void Agent::retry()
{
    if (isRunning_ || pendingInput_.isEmpty())
        return;
    start();
}

} // namespace zentoro
