#include "agent/Agent.h"

#include "support/Await.h"
#include "support/FakeAgent.h"

#include <gtest/gtest.h>

#include <deque>

using namespace zentoro;
using namespace zentoro::test;
using namespace std::chrono_literals;

namespace {

// Drives an Agent through fakes of everything a run calls.
struct Harness {
    std::deque<std::function<JSON()>> script;
    std::vector<JSON> bodies;
    std::vector<std::pair<QString, JSON>> performed;
    std::function<void(const QString &name)> duringPerform;
    std::optional<Provider> available = Provider::APIKey;
    int saves = 0;
    int relaunches = 0;
    Agent agent;

    Harness() : agent(operations()) {}

    AgentOperations operations()
    {
        AgentOperations ops = test::fakeOperations();
        ops.hasAPIKey = [this] { return available == Provider::APIKey; };
        ops.canUsePlan = [this] { return available == Provider::ChatGPT; };
        ops.request = [this](Provider provider) {
            return JSON::object({{"provider", providerText(provider)},
                                 {"input", JSON(JSON::Array(agent.pendingInput.begin(), agent.pendingInput.end()))}});
        };
        ops.respond = [this](const TaskHandle &task, const QString &, const JSON &body,
                             const std::function<void(const JSON &)> &onItemStarted) -> QCoro::Task<JSON> {
            bodies.push_back(body);
            co_await sleep(task, 1ms);
            if (script.empty())
                co_return response({textMessage("done")});
            auto next = std::move(script.front());
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
            co_await sleep(TaskHandle(), 1ms);
            co_return ToolResult{JSON("ran " + name), ChatItem::make(ChatItem::Kind::Tool, "row " + name)};
        };
        ops.save = [this] { ++saves; };
        ops.relaunch = [this](bool) { ++relaunches; };
        return ops;
    }

    void sendAndFinish(const QString &text)
    {
        agent.send(text);
        ASSERT_TRUE(spinUntil([&] { return !agent.isRunning(); }));
    }

    QStringList texts() const { return rowTexts(agent); }

    QStringList pendingOutputs() const
    {
        QStringList result;
        for (const JSON &item : agent.pendingInput) {
            if (item.stringAt("type") == u"function_call_output")
                result.append(*item.stringAt("call_id") + " " + item.stringAt("output").value_or("?"));
        }
        return result;
    }
};

} // namespace

TEST(AgentLoop, BlankMessagesAndMessagesDuringARunChangeNothing)
{
    Harness harness;
    harness.agent.send(" \n\t \n");
    EXPECT_TRUE(harness.agent.items().isEmpty());
    EXPECT_FALSE(harness.agent.isRunning());

    harness.agent.send("first");
    ASSERT_TRUE(harness.agent.isRunning());
    const qsizetype pending = harness.agent.pendingInput.size();
    harness.agent.send("second");
    EXPECT_EQ(harness.agent.pendingInput.size(), pending);
    ASSERT_TRUE(spinUntil([&] { return !harness.agent.isRunning(); }));
    EXPECT_EQ(harness.texts(), (QStringList{"user: first", "assistant: done"}));
    EXPECT_EQ(harness.bodies.size(), 1u);
}

TEST(AgentLoop, SendQueuesNotesStateNoteAndTextAndRecordsTheExchange)
{
    Harness harness;
    harness.agent.notes = QStringList{"Version 2 crashed", "The user went back to version 1"};
    harness.sendAndFinish("  make it blue \n");

    ASSERT_EQ(harness.bodies.size(), 1u);
    const JSON::Array input = *harness.bodies[0].arrayAt("input");
    ASSERT_EQ(input.size(), 3u);
    EXPECT_EQ(input[0], Agent::message("developer", "Meanwhile, in Zentoro:\n- Version 2 crashed\n- The user went back to version 1"));
    EXPECT_EQ(input[1], Agent::message("developer", "state note"));
    EXPECT_EQ(input[2], Agent::message("user", "make it blue"));
    EXPECT_TRUE(harness.agent.notes.isEmpty());
    EXPECT_EQ(harness.agent.currentRequest, "make it blue");

    // The input and the response's output are in history; nothing waits.
    EXPECT_EQ(harness.agent.history.size(), 4);
    EXPECT_TRUE(harness.agent.pendingInput.isEmpty());
    EXPECT_EQ(harness.agent.previousResponseID, "resp_1");
    // Saved after send, after the response and at the end of the run.
    EXPECT_EQ(harness.saves, 3);
    EXPECT_FALSE(harness.agent.activity());
    EXPECT_FALSE(harness.agent.startedAt());
}

TEST(AgentLoop, AssistantRowComesFirstAndCallsRunInOrderOneAfterAnother)
{
    Harness harness;
    harness.script.push_back([] {
        return response({functionCall("c1", "read_file"), functionCall("c2", "list_files"), textMessage("Looking.")});
    });
    QStringList seenBeforeSecond;
    harness.duringPerform = [&](const QString &name) {
        if (name == "list_files")
            seenBeforeSecond = harness.texts();
    };
    harness.sendAndFinish("look");

    EXPECT_EQ(harness.texts(), (QStringList{"user: look", "assistant: Looking.", "tool: row read_file",
                                            "tool: row list_files", "assistant: done"}));
    EXPECT_EQ(seenBeforeSecond, (QStringList{"user: look", "assistant: Looking.", "tool: row read_file"}));
    ASSERT_EQ(harness.bodies.size(), 2u);
    // The second request carries both outputs, in call order.
    const JSON::Array input = *harness.bodies[1].arrayAt("input");
    ASSERT_EQ(input.size(), 2u);
    EXPECT_EQ(input[0], Agent::output("c1", "ran read_file"));
    EXPECT_EQ(input[1], Agent::output("c2", "ran list_files"));
    EXPECT_TRUE(harness.agent.unansweredCalls.isEmpty());
}

TEST(AgentLoop, AStopDuringTheFirstOfThreeCallsAnswersTheOthersWithoutRows)
{
    Harness harness;
    harness.script.push_back([] {
        return response({functionCall("c1", "write_file"), functionCall("c2", "build"), functionCall("c3", "screenshot")});
    });
    QStringList unansweredDuringFirst;
    harness.duringPerform = [&](const QString &) {
        unansweredDuringFirst = harness.agent.unansweredCalls;
        harness.agent.task().cancel();
    };
    harness.sendAndFinish("go");

    EXPECT_EQ(unansweredDuringFirst, (QStringList{"c1", "c2", "c3"}));
    EXPECT_EQ(harness.texts(), (QStringList{"user: go", "tool: row write_file", "event: Stopped"}));
    EXPECT_EQ(harness.pendingOutputs(), (QStringList{"c1 ran write_file", "c2 The user stopped you before this ran.",
                                                     "c3 The user stopped you before this ran."}));
    EXPECT_TRUE(harness.agent.unansweredCalls.isEmpty());
    EXPECT_EQ(harness.bodies.size(), 1u);
}

TEST(AgentLoop, RestartWaitsBehindTheOtherCallsAndRelaunches)
{
    Harness harness;
    harness.script.push_back([] {
        return response({functionCall("r1", "restart_app"), functionCall("b1", "build"), functionCall("r2", "restart_app")});
    });
    harness.sendAndFinish("restart it");

    ASSERT_EQ(harness.performed.size(), 1u);
    EXPECT_EQ(harness.performed[0].first, "build");
    EXPECT_EQ(harness.relaunches, 1);
    EXPECT_EQ(harness.agent.restartCallID, "r2");
    // The restart's answer is owed until the next launch; the first restart call stays unanswered too.
    EXPECT_EQ(harness.agent.unansweredCalls, (QStringList{"r1", "r2"}));
    EXPECT_TRUE(harness.texts().last().startsWith("tool: Restarting "));
    EXPECT_EQ(harness.pendingOutputs(), QStringList{"b1 ran build"});
    EXPECT_EQ(harness.bodies.size(), 1u);
}

TEST(AgentLoop, AStopBeforeTheRestartTellsTheModelAndKeepsTheProcess)
{
    Harness harness;
    harness.script.push_back([] { return response({functionCall("r1", "restart_app"), functionCall("b1", "build")}); });
    harness.duringPerform = [&](const QString &) { harness.agent.task().cancel(); };
    harness.sendAndFinish("restart it");

    EXPECT_EQ(harness.relaunches, 0);
    EXPECT_FALSE(harness.agent.restartCallID);
    EXPECT_EQ(harness.pendingOutputs(), (QStringList{"b1 ran build", "r1 The user stopped you before the restart."}));
    EXPECT_TRUE(harness.agent.unansweredCalls.isEmpty());
    EXPECT_EQ(harness.texts().last(), "event: Stopped");
}

TEST(AgentLoop, ACutShortResponseShowsWhyAndStillRunsItsCalls)
{
    Harness harness;
    harness.script.push_back([] {
        JSON answer = response({functionCall("c1", "list_files")});
        answer.set("status", "incomplete");
        answer.set("incomplete_details", JSON::object({{"reason", "max_output_tokens"}}));
        return answer;
    });
    harness.script.push_back([] {
        JSON answer = response({});
        answer.set("status", "incomplete");
        return answer;
    });
    harness.sendAndFinish("go");

    EXPECT_EQ(harness.texts(), (QStringList{"user: go", "error: The response was cut short (max_output_tokens).",
                                            "tool: row list_files",
                                            "error: The response was cut short (unknown reason)."}));
}

TEST(AgentLoop, ArgumentsThatArentJSONRunTheToolWithAnEmptyObject)
{
    Harness harness;
    harness.script.push_back([] {
        return response({functionCall("c1", "read_file", "{\"path\": "), functionCall("c2", "read_file", "[1]"),
                         JSON::object({{"type", "function_call"}, {"call_id", "c3"}, {"name", "read_file"}})});
    });
    harness.sendAndFinish("go");
    ASSERT_EQ(harness.performed.size(), 3u);
    for (const auto &[name, arguments] : harness.performed)
        EXPECT_EQ(arguments, JSON::object());
}

// Only the API-key path keeps the response's identity for the next request.
TEST(AgentLoop, ThePlanPathForgetsTheResponseIdentity)
{
    Harness plan;
    plan.available = Provider::ChatGPT;
    plan.agent.previousResponseID = "resp_old";
    plan.sendAndFinish("hi");
    EXPECT_EQ(plan.bodies[0].stringAt("provider"), "chatgpt");
    EXPECT_FALSE(plan.agent.previousResponseID);
}

TEST(AgentLoop, EightyStepsEndTheRunWithTheLastOutputsQueued)
{
    Harness harness;
    for (int step = 0; step < 100; ++step) {
        harness.script.push_back([step] {
            return response({functionCall(QStringLiteral("c%1").arg(step), "list_files")});
        });
    }
    harness.sendAndFinish("loop forever");
    EXPECT_EQ(harness.bodies.size(), 80u);
    EXPECT_EQ(harness.texts().last(), "error: Stopped after 80 steps. Say \"continue\" to keep going.");
    EXPECT_EQ(harness.pendingOutputs(), QStringList{"c79 ran list_files"});

    // The next message carries them to the model, ahead of the new words.
    harness.script.clear();
    harness.sendAndFinish("continue");
    const JSON::Array input = *harness.bodies.back().arrayAt("input");
    EXPECT_EQ(input[0], Agent::output("c79", "ran list_files"));
    EXPECT_EQ(input.back(), Agent::message("user", "continue"));
}

TEST(AgentLoop, AFailureEndsInOneErrorRowAndKeepsTheInput)
{
    Harness harness;
    harness.script.push_back([]() -> JSON { throw OpenAI::Failure(429, "rate_limit", std::nullopt, "Slow down."); });
    harness.sendAndFinish("hi");
    EXPECT_EQ(harness.texts().last(), "error: OpenAI error 429: Slow down.");
    EXPECT_EQ(harness.agent.pendingInput.size(), 2);
    EXPECT_TRUE(harness.agent.history.isEmpty());
}

TEST(AgentLoop, ProviderFollowsPreferenceKeyAndPlanAndWithoutOneTheRunAsksForIt)
{
    Harness harness;
    harness.agent.setHasAPIKey(true);
    harness.agent.setPreferredProvider(Provider::ChatGPT);
    EXPECT_EQ(harness.agent.provider(), Provider::APIKey);
    harness.available = Provider::ChatGPT;
    EXPECT_EQ(harness.agent.provider(), Provider::ChatGPT);
    harness.agent.setPreferredProvider(Provider::APIKey);
    EXPECT_EQ(harness.agent.provider(), Provider::APIKey);
    harness.agent.setHasAPIKey(false);
    EXPECT_EQ(harness.agent.provider(), Provider::ChatGPT);

    harness.available.reset();
    EXPECT_FALSE(harness.agent.provider());
    harness.sendAndFinish("hi");
    EXPECT_TRUE(harness.texts().last().startsWith("error: Sign in with ChatGPT or add an OpenAI API key first ("));
    EXPECT_TRUE(harness.bodies.empty());
    EXPECT_EQ(harness.agent.pendingInput.size(), 2);
}

TEST(AgentLoop, ActivityFollowsTheItemsAsTheyStart)
{
    Harness harness;
    harness.agent.started(functionCall("c", "read_file"));
    EXPECT_FALSE(harness.agent.activity());
    harness.agent.started(functionCall("c", "edit_file"));
    EXPECT_EQ(harness.agent.activity(), "Writing code…");
    harness.agent.started(textMessage("x"));
    EXPECT_EQ(harness.agent.activity(), "Writing a reply…");
    harness.agent.started(JSON::object({{"type", "reasoning"}}));
    EXPECT_EQ(harness.agent.activity(), "Writing a reply…");
}

TEST(AgentLoop, AStopWhileWaitingForTheModelShowsStoppedAndRunsWhatWaitsForTheEnd)
{
    Harness harness;
    harness.agent.operations().respond = respondOnlyToAStop;
    harness.agent.send("hi");
    bool ran = false;
    bool runningWhenRan = true;
    harness.agent.afterStopping([&] {
        ran = true;
        runningWhenRan = harness.agent.isRunning();
    });
    EXPECT_FALSE(ran);
    ASSERT_TRUE(spinUntil([&] { return ran; }, 2s));
    EXPECT_FALSE(runningWhenRan);
    EXPECT_EQ(harness.texts(), (QStringList{"user: hi", "event: Stopped"}));
    EXPECT_EQ(harness.agent.pendingInput.size(), 2);

    bool ranAtOnce = false;
    harness.agent.afterStopping([&] { ranAtOnce = true; });
    EXPECT_TRUE(ranAtOnce);
}
