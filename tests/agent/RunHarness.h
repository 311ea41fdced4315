#pragma once

#include "agent/Agent.h"
#include "agent/HistoryUpkeep.h"
#include "agent/Recovery.h"

#include "support/Await.h"
#include "support/FakeAgent.h"
#include "support/FakePlan.h"

#include <gtest/gtest.h>

#include <deque>

namespace zentoro::test {

// Drives an Agent through a scripted model and fakes of the tools, the credentials and the
// process, with the real history upkeep, recovery and error rows.
struct RunHarness {
    std::deque<std::function<JSON()>> script;   // each response in turn, or a throw; "done" once it runs out
    std::vector<Provider> providers;            // as each request was built, with:
    std::vector<std::optional<QString>> chains; // previousResponseID
    std::vector<QList<JSON>> inputs;            // pendingInput
    std::vector<bool> refreshes;                // whether each bearer asked for a fresh token
    std::vector<std::pair<QString, JSON>> performed;
    std::function<void(const QString &name)> duringPerform;
    std::optional<Provider> available;
    PlanService plan{QUrl(QStringLiteral("https://chatgpt.example/settings/usage")), std::chrono::milliseconds(20)};
    int saves = 0;
    int relaunches = 0;
    FakePlan fakePlan;
    Agent agent;

    explicit RunHarness(std::optional<Provider> available = Provider::APIKey)
        : available(available), agent(operations())
    {
        fakePlan.usable = [this] { return this->available == Provider::ChatGPT; };
        agent.setPlan(&fakePlan);
    }

    AgentOperations operations()
    {
        AgentOperations ops = fakeOperations();
        ops.hasAPIKey = [this] { return available == Provider::APIKey; };
        ops.bearer = [this](const TaskHandle &, Provider, bool refresh) -> QCoro::Task<QString> {
            refreshes.push_back(refresh);
            co_return QString::fromUtf8("token");
        };
        ops.request = [this](Provider provider) {
            providers.push_back(provider);
            chains.push_back(agent.previousResponseID());
            inputs.push_back(agent.pendingInput());
            return JSON::object();
        };
        ops.respond = [this](const TaskHandle &task, const QString &, const JSON &,
                             const std::function<void(const JSON &)> &onItemStarted) -> QCoro::Task<JSON> {
            co_await sleep(task, std::chrono::milliseconds(1));
            if (script.empty()) {
                const JSON done = response({textMessage(QString::fromUtf8("done"))});
                co_return done;
            }
            const std::function<JSON()> next = std::move(script.front());
            script.pop_front();
            const JSON answer = next();
            if (const JSON::Array *items = answer.arrayAt("output")) {
                for (const JSON &item : *items)
                    onItemStarted(item);
            }
            co_return answer;
        };
        ops.perform = [this](const QString &name, const JSON &arguments) -> QCoro::Task<ToolResult> {
            performed.emplace_back(name, arguments);
            if (duringPerform)
                duringPerform(name);
            co_await sleep(TaskHandle(), std::chrono::milliseconds(1));
            co_return ToolResult{JSON("ran " + name), ChatItem::make(ChatItem::Kind::Tool, "row " + name)};
        };
        ops.forHistory = HistoryUpkeep::forHistory;
        ops.recover = [this](const TaskHandle &task, const OpenAI::Failure &failure, Provider provider,
                             Recovery *recovery) {
            return FailureRecovery::recover(agent, task, failure, provider, *recovery, plan);
        };
        ops.errorItem = [this](std::exception_ptr error, Provider provider) {
            return FailureRecovery::errorItem(error, provider, plan);
        };
        ops.save = [this] { ++saves; };
        ops.relaunch = [this](bool) { ++relaunches; };
        return ops;
    }

    // Queues responses that fail as given.
    void fail(std::initializer_list<OpenAI::Failure> failures)
    {
        for (const OpenAI::Failure &failure : failures)
            script.push_back([failure]() -> JSON { throw failure; });
    }

    void sendAndFinish(const QString &text)
    {
        agent.send(text);
        ASSERT_TRUE(spinUntil([&] { return !agent.isRunning(); }));
    }

    QStringList texts() const { return rowTexts(agent); }
    ChatItem last() const { return agent.items().last(); }

    // "<call id> <output>" of each tool output waiting to go out.
    QStringList pendingOutputs() const
    {
        QStringList result;
        for (const JSON &item : agent.pendingInput()) {
            if (item.stringAt("type") == u"function_call_output")
                result.append(*item.stringAt("call_id") + " " + item.stringAt("output").value_or("?"));
        }
        return result;
    }
};

} // namespace zentoro::test
