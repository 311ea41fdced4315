#include "RunHarness.h"

#include "model_service/AgentConfig.h"
#include "runtime/Workspace.h"

#include <QElapsedTimer>

using namespace zentoro;
using namespace zentoro::test;
using namespace std::chrono_literals;

namespace {

OpenAI::Failure failure(int status, std::optional<QString> code, std::optional<QString> param = std::nullopt,
                        QString message = QStringLiteral("It failed."))
{
    return OpenAI::Failure(status, std::move(code), std::move(param), std::move(message));
}

QList<JSON> texts(int count)
{
    QList<JSON> list;
    for (int i = 0; i < count; ++i)
        list.append(Agent::message("user", QString::number(i)));
    return list;
}

} // namespace

TEST(Recovery, ALostChainIsDroppedOnceAndTheNextRequestGoesOutWhole)
{
    RunHarness harness;
    harness.agent.load({.previousResponseID = "resp_old", .history = texts(2)});
    harness.fail({failure(400, std::nullopt, "previous_response_id", "Not found.")});
    harness.sendAndFinish("go on");
    EXPECT_EQ(harness.chains, (std::vector<std::optional<QString>>{"resp_old", std::nullopt}));
    EXPECT_EQ(harness.inputs[1], harness.inputs[0]); // history holds it all: no notice
    EXPECT_EQ(harness.last().text, "done");

    // Once per run: a loss of the chain that a later step of the same run started is an error row.
    RunHarness twice;
    twice.agent.load({.previousResponseID = "resp_old", .history = texts(2)});
    twice.fail({failure(400, std::nullopt, std::nullopt, "Previous response with id 'x' not found.")});
    twice.script.push_back([] { return response({functionCall("c1", "list_files")}, "resp_again"); });
    twice.fail({failure(404, std::nullopt, std::nullopt, "previous response is gone")});
    twice.sendAndFinish("go on");
    EXPECT_EQ(twice.chains, (std::vector<std::optional<QString>>{"resp_old", std::nullopt, "resp_again"}));
    EXPECT_EQ(twice.last().text, "OpenAI error 404: previous response is gone");
}

TEST(Recovery, ALostChainWithNothingKeptHereDropsTheOrphanedOutputsAndSaysSo)
{
    RunHarness harness;
    harness.agent.load({.previousResponseID = "resp_old", .pendingInput = {Agent::output("c1", "built")}});
    harness.fail({failure(400, std::nullopt, "previous_response_id")});
    harness.sendAndFinish("and now?");
    ASSERT_EQ(harness.inputs.size(), 2u);
    EXPECT_EQ(harness.inputs[1],
              (QList<JSON>{Agent::message("developer", "Earlier parts of this conversation were lost; "
                                                       "look at the files again before relying on them."),
                           Agent::message("developer", "state note"), Agent::message("user", "and now?")}));
}

TEST(Recovery, TooLongIsTrimmedFourTimesAtMost)
{
    RunHarness harness;
    harness.agent.load({.history = texts(200)});
    const auto tooLong = failure(400, "context_length_exceeded");
    harness.fail({tooLong, tooLong, tooLong, tooLong, tooLong});
    harness.sendAndFinish("more");
    EXPECT_EQ(harness.inputs.size(), 5u);
    EXPECT_EQ(harness.last().text, "OpenAI error 400: It failed.");
    EXPECT_LT(harness.agent.history().size(), 200 / 8);
    // The queued input goes out unchanged each time, and stays for another try.
    for (const QList<JSON> &input : harness.inputs)
        EXPECT_EQ(input, harness.inputs[0]);
    EXPECT_EQ(harness.agent.pendingInput(), harness.inputs[0]);

    RunHarness untrimmable;
    untrimmable.fail({tooLong});
    untrimmable.sendAndFinish("more");
    EXPECT_EQ(untrimmable.inputs.size(), 1u);
    EXPECT_EQ(untrimmable.last().kind, ChatItem::Kind::Error);
}

TEST(Recovery, RefusedReasoningIsTakenOutOfHistoryOnce)
{
    RunHarness harness;
    harness.agent.load(
        {.history = {Agent::message("user", "a"), JSON::object({{"type", "reasoning"}, {"encrypted_content", "x"}})}});
    const auto refused = failure(400, "invalid_encrypted_content", std::nullopt,
                                 "Encrypted content could not be verified.");
    harness.fail({refused, refused});
    harness.sendAndFinish("next");
    EXPECT_EQ(harness.inputs.size(), 2u);
    EXPECT_EQ(harness.last().kind, ChatItem::Kind::Error);
    for (const JSON &item : harness.agent.history())
        EXPECT_NE(item.stringAt("type"), "reasoning");
}

TEST(Recovery, OnThePlanA401AsksForOneFreshToken)
{
    struct Case {
        Provider provider;
        int unauthorized;
        std::vector<bool> refreshes;
        bool fixed;
    };
    for (const Case &c : {Case{Provider::ChatGPT, 2, {false, true}, false},
                          Case{Provider::ChatGPT, 1, {false, true}, true}, Case{Provider::APIKey, 1, {false}, false}}) {
        RunHarness harness(c.provider);
        for (int i = 0; i < c.unauthorized; ++i)
            harness.fail({failure(401, std::nullopt)});
        harness.sendAndFinish("hello");
        EXPECT_EQ(harness.refreshes, c.refreshes) << c.unauthorized;
        EXPECT_EQ(harness.last().text == "done", c.fixed) << c.unauthorized;
    }
}

TEST(Recovery, ABusyPlanIsWaitedForTwiceLongerEachTime)
{
    RunHarness harness(Provider::ChatGPT);
    harness.fail({failure(503, std::nullopt), failure(0, "subscription_sharing_user_unavailable"),
                  failure(429, "subscription_sharing_usage_unavailable")});
    QElapsedTimer timer;
    timer.start();
    harness.sendAndFinish("hello");
    EXPECT_GE(timer.elapsed(), 60); // 20 ms, then 40 ms
    EXPECT_EQ(harness.inputs.size(), 3u);
    EXPECT_EQ(harness.last().kind, ChatItem::Kind::Error);
    EXPECT_EQ(harness.last().link, (ChatLink{"Manage Usage", harness.plan.usageURL}));

    // The API key path doesn't wait.
    RunHarness withKey;
    withKey.fail({failure(503, std::nullopt)});
    withKey.sendAndFinish("hello");
    EXPECT_EQ(withKey.inputs.size(), 1u);
}

TEST(Recovery, AStopDuringAWaitEndsWithStoppedNotAnError)
{
    RunHarness harness(Provider::ChatGPT);
    harness.plan.busyWait = 20s;
    harness.fail({failure(503, std::nullopt)});
    harness.agent.send("hello");
    ASSERT_TRUE(spinUntil([&] { return harness.agent.activity() == "Waiting for ChatGPT…"; }));
    harness.agent.task().cancel();
    ASSERT_TRUE(spinUntil([&] { return !harness.agent.isRunning(); }, 2s));
    EXPECT_EQ(harness.last().text, "Stopped");
    EXPECT_FALSE(harness.agent.canRetry());
    EXPECT_FALSE(harness.agent.pendingInput().isEmpty());
}

TEST(Recovery, ErrorRowsSayWhatTheUserCanDo)
{
    const PlanService plan{QUrl(QStringLiteral("https://chatgpt.example/settings/usage")), 1ms};
    const ChatLink usage{"Manage Usage", plan.usageURL};
    auto row = [&](const OpenAI::Failure &error, Provider provider = Provider::ChatGPT) {
        return FailureRecovery::errorItem(std::make_exception_ptr(error), provider, plan);
    };

    const ChatItem limit = row(failure(429, "subscription_sharing_usage_limit_exceeded"), Provider::APIKey);
    EXPECT_EQ(limit.text, "Usage limit reached. Review your plan or Zentoro's limit in ChatGPT settings.");
    EXPECT_EQ(limit.link, usage);
    // An error row is told apart by its kind; like every new row it isn't marked failed.
    EXPECT_EQ(limit.kind, ChatItem::Kind::Error);
    EXPECT_FALSE(limit.failed);

    EXPECT_EQ(row(failure(403, "subscription_sharing_user_not_eligible", std::nullopt, "Free plan")).text,
              "Your ChatGPT plan can't be used in Zentoro (Free plan). You can add an OpenAI API key in Settings "
              "(Ctrl+,) instead.");
    EXPECT_EQ(row(failure(400, "subscription_sharing_unsupported_capability", std::nullopt, "No.")).text,
              "Your ChatGPT plan doesn't support something in this request. (No.)");
    EXPECT_EQ(row(failure(400, "subscription_sharing_unsupported_capability", "model", "No.")).text,
              "Your ChatGPT plan doesn't support the model " + AgentConfig::model() +
                  "; pick another in Settings (Ctrl+,). (No.)");
    EXPECT_EQ(row(failure(400, "subscription_sharing_unsupported_capability", "tools", "No.")).text,
              "Your ChatGPT plan doesn't support “tools”. (No.)");

    const ChatItem busy = row(failure(429, "rate_limit_exceeded", std::nullopt, "Slow down."));
    EXPECT_EQ(busy.text, "OpenAI error 429: Slow down.");
    EXPECT_EQ(busy.link, usage);
    EXPECT_FALSE(row(failure(429, std::nullopt), Provider::APIKey).link);
    EXPECT_FALSE(row(failure(500, std::nullopt)).link);

    const ChatItem other = FailureRecovery::errorItem(std::make_exception_ptr(
                                                          Workspace::Failure("Sign in with ChatGPT again.")),
                                                      Provider::ChatGPT, plan);
    EXPECT_EQ(other.text, "Sign in with ChatGPT again.");
    EXPECT_FALSE(other.link);
}

TEST(Recovery, TryAgainSendsTheSameInputWithNoNewRow)
{
    RunHarness harness;
    harness.fail({failure(500, std::nullopt)});
    harness.sendAndFinish("hello");
    ASSERT_TRUE(harness.agent.canRetry());
    const qsizetype rows = harness.agent.items().size();

    harness.agent.retry();
    EXPECT_FALSE(harness.agent.canRetry());
    harness.agent.retry(); // refused while the run goes on
    ASSERT_TRUE(spinUntil([&] { return !harness.agent.isRunning(); }));
    ASSERT_EQ(harness.inputs.size(), 2u);
    EXPECT_EQ(harness.inputs[1], harness.inputs[0]);
    EXPECT_EQ(harness.agent.items().size(), rows + 1);
    EXPECT_EQ(harness.last().text, "done");
}

TEST(Recovery, PlanServiceFollowsTheConfiguredOrigin)
{
    qputenv("ZENTORO_CHATGPT_BASE", "http://127.0.0.1:9/");
    EXPECT_EQ(PlanService::standard().usageURL, QUrl("http://127.0.0.1:9/settings/usage"));
    qunsetenv("ZENTORO_CHATGPT_BASE");
    EXPECT_EQ(PlanService::standard().usageURL, QUrl("https://chatgpt.com/settings/usage"));
}
