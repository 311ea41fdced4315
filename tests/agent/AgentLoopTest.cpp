#include "RunHarness.h"

using namespace zentoro;
using namespace zentoro::test;
using namespace std::chrono_literals;

TEST(AgentLoop, SendQueuesNotesStateNoteAndTextButNotBlankOrBusySends)
{
    RunHarness harness;
    harness.agent.send(" \n\t \n");
    EXPECT_TRUE(harness.agent.items().isEmpty());
    EXPECT_FALSE(harness.agent.isRunning());

    harness.agent.load({.notes = {"Version 2 crashed", "The user went back to version 1"}});
    harness.agent.send("  make it blue \n");
    ASSERT_TRUE(harness.agent.isRunning());
    harness.agent.send("ignored during the run");
    ASSERT_TRUE(spinUntil([&] { return !harness.agent.isRunning(); }));
    EXPECT_EQ(harness.texts(), (QStringList{"user: make it blue", "assistant: done"}));

    ASSERT_EQ(harness.inputs.size(), 1u);
    const QList<JSON> input = harness.inputs[0];
    ASSERT_EQ(input.size(), 3);
    EXPECT_EQ(input[0],
              Agent::message("developer",
                             "Meanwhile, in Zentoro:\n- Version 2 crashed\n- The user went back to version 1"));
    EXPECT_EQ(input[1], Agent::message("developer", "state note"));
    EXPECT_EQ(input[2], Agent::message("user", "make it blue"));
    EXPECT_TRUE(harness.agent.notes().isEmpty());
    EXPECT_EQ(harness.agent.currentRequest(), "make it blue");

    // The input and the response's output are in history; nothing waits.
    EXPECT_EQ(harness.agent.history().size(), 4);
    EXPECT_TRUE(harness.agent.pendingInput().isEmpty());
    EXPECT_EQ(harness.agent.previousResponseID(), "resp_1");
    // Saved after send, after the response and at the end of the run.
    EXPECT_EQ(harness.saves, 3);
    EXPECT_FALSE(harness.agent.activity());
    EXPECT_FALSE(harness.agent.startedAt());
}

TEST(AgentLoop, AssistantRowComesFirstAndCallsRunInOrderOneAfterAnother)
{
    RunHarness harness;
    harness.script.push_back([] {
        // Arguments that aren't a JSON object run the tool with an empty one; a call named
        // twice runs once.
        return response({functionCall("c1", "read_file", "{\"path\": "), functionCall("c2", "list_files", "[1]"),
                         functionCall("c1", "delete_file", "{}"), textMessage("Looking.")});
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
    // The second request carries both outputs, in call order.
    ASSERT_EQ(harness.inputs.size(), 2u);
    EXPECT_EQ(harness.inputs[1],
              (QList<JSON>{Agent::output("c1", "ran read_file"), Agent::output("c2", "ran list_files")}));
    EXPECT_TRUE(harness.agent.unansweredCalls().isEmpty());
    ASSERT_EQ(harness.performed.size(), 2u);
    EXPECT_EQ(harness.performed[0].second, JSON::object());
    EXPECT_EQ(harness.performed[1].second, JSON::object());
}

TEST(AgentLoop, RestartWaitsBehindTheOtherCallsAndRelaunches)
{
    RunHarness harness;
    harness.script.push_back([] {
        return response(
            {functionCall("r1", "restart_app"), functionCall("b1", "build"), functionCall("r2", "restart_app")});
    });
    harness.sendAndFinish("restart it");

    ASSERT_EQ(harness.performed.size(), 1u);
    EXPECT_EQ(harness.performed[0].first, "build");
    EXPECT_EQ(harness.relaunches, 1);
    EXPECT_EQ(harness.agent.restartCallID(), "r2");
    // The restart's answer is owed until the next launch; the first restart call stays unanswered too.
    EXPECT_EQ(harness.agent.unansweredCalls(), (QStringList{"r1", "r2"}));
    EXPECT_TRUE(harness.texts().last().startsWith("tool: Restarting "));
    EXPECT_EQ(harness.pendingOutputs(), QStringList{"b1 ran build"});
    EXPECT_EQ(harness.inputs.size(), 1u);
}

// A stop in the first call answers the later ones without rows, and calls off the restart
// that waited behind them.
TEST(AgentLoop, AStopDuringACallAnswersTheRestWithoutRowsAndKeepsTheProcess)
{
    RunHarness harness;
    harness.script.push_back([] {
        return response({functionCall("r1", "restart_app"), functionCall("c1", "write_file"),
                         functionCall("c2", "build"), functionCall("c3", "screenshot")});
    });
    QStringList unansweredDuringFirst;
    harness.duringPerform = [&](const QString &) {
        unansweredDuringFirst = harness.agent.unansweredCalls();
        harness.agent.task().cancel();
    };
    harness.sendAndFinish("go");

    EXPECT_EQ(unansweredDuringFirst, (QStringList{"r1", "c1", "c2", "c3"}));
    EXPECT_EQ(harness.texts(), (QStringList{"user: go", "tool: row write_file", "event: Stopped"}));
    EXPECT_EQ(harness.pendingOutputs(),
              (QStringList{"c1 ran write_file", "c2 The user stopped you before this ran.",
                           "c3 The user stopped you before this ran.", "r1 The user stopped you before the restart."}));
    EXPECT_TRUE(harness.agent.unansweredCalls().isEmpty());
    EXPECT_EQ(harness.relaunches, 0);
    EXPECT_FALSE(harness.agent.restartCallID());
    EXPECT_EQ(harness.inputs.size(), 1u);
}

TEST(AgentLoop, ACutShortResponseShowsWhyAndStillRunsItsCalls)
{
    RunHarness harness;
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

    EXPECT_EQ(harness.texts(),
              (QStringList{"user: go", "error: The response was cut short (max_output_tokens).", "tool: row list_files",
                           "error: The response was cut short (unknown reason)."}));
    EXPECT_FALSE(harness.agent.items()[1].failed);
}

TEST(AgentLoop, EightyStepsEndTheRunWithTheLastOutputsQueued)
{
    RunHarness harness;
    for (int step = 0; step < 100; ++step) {
        harness.script.push_back(
            [step] { return response({functionCall(QStringLiteral("c%1").arg(step), "list_files")}); });
    }
    harness.sendAndFinish("loop forever");
    EXPECT_EQ(harness.inputs.size(), 80u);
    EXPECT_EQ(harness.texts().last(), "error: Stopped after 80 steps. Say \"continue\" to keep going.");
    EXPECT_EQ(harness.pendingOutputs(), QStringList{"c79 ran list_files"});

    // The next message carries them to the model, ahead of the new words.
    harness.script.clear();
    harness.sendAndFinish("continue");
    EXPECT_EQ(harness.inputs.back().first(), Agent::output("c79", "ran list_files"));
    EXPECT_EQ(harness.inputs.back().last(), Agent::message("user", "continue"));
}

TEST(AgentLoop, AFailureEndsInOneErrorRowAndKeepsTheInput)
{
    RunHarness harness;
    harness.fail({OpenAI::Failure(429, "rate_limit", std::nullopt, "Slow down.")});
    harness.sendAndFinish("hi");
    EXPECT_EQ(harness.texts().last(), "error: OpenAI error 429: Slow down.");
    EXPECT_EQ(harness.agent.items().last().toJSON().boolAt("failed"), false);
    EXPECT_EQ(harness.agent.pendingInput().size(), 2);
    EXPECT_TRUE(harness.agent.history().isEmpty());
}

TEST(AgentLoop, ProviderFollowsPreferenceKeyAndPlanAndWithoutOneTheRunAsksForIt)
{
    RunHarness harness;
    harness.agent.setHasAPIKey(true);
    harness.agent.setPreferredProvider(Provider::ChatGPT);
    EXPECT_EQ(harness.agent.provider(), Provider::APIKey);
    harness.available = Provider::ChatGPT;
    EXPECT_EQ(harness.agent.provider(), Provider::ChatGPT);
    harness.agent.setPreferredProvider(Provider::APIKey);
    EXPECT_EQ(harness.agent.provider(), Provider::APIKey);
    harness.agent.setHasAPIKey(false);
    EXPECT_EQ(harness.agent.provider(), Provider::ChatGPT);
    // Only the API-key path keeps the response's identity for the next request.
    harness.agent.load({.previousResponseID = "resp_old"});
    harness.sendAndFinish("hi");
    EXPECT_EQ(harness.providers, std::vector<Provider>{Provider::ChatGPT});
    EXPECT_FALSE(harness.agent.previousResponseID());

    harness.available.reset();
    EXPECT_FALSE(harness.agent.provider());
    harness.sendAndFinish("hi again");
    EXPECT_EQ(harness.texts().last(),
              "error: Sign in with ChatGPT or add an OpenAI API key first in Settings (Ctrl+,).");
    EXPECT_EQ(harness.inputs.size(), 1u);
    EXPECT_EQ(harness.agent.pendingInput().size(), 2);
}

TEST(AgentLoop, ActivityFollowsTheItemsAsTheyStart)
{
    RunHarness harness;
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
    RunHarness harness;
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
    EXPECT_EQ(harness.agent.pendingInput().size(), 2);

    bool ranAtOnce = false;
    harness.agent.afterStopping([&] { ranAtOnce = true; });
    EXPECT_TRUE(ranAtOnce);
}
