#include "agent/Agent.h"
#include "agent/ModelRequest.h"
#include "model_service/AgentConfig.h"
#include "runtime/Workspace.h"
#include "support/Await.h"
#include "support/FakeResponsesServer.h"

#include <gtest/gtest.h>

using namespace zentoro;
using namespace zentoro::test;

namespace {

bool mentions(const JSON &input, const QString &text)
{
    return QString::fromUtf8(input.encode()).contains(text);
}

} // namespace

// The program's own operations from the user's words to the model's reply and back,
// against a fake of the model service.
TEST(FirstConversation, AReplyAppearsAndTheNextMessageIsChained)
{
    Workspace::initShared(QStringLiteral("First Conversation"));
    AgentConfig::saveAPIKey(std::nullopt);
    qputenv("OPENAI_API_KEY", "sk-from-environment");
    FakeResponsesServer server;
    server.becomeModelService();
    server.enqueue(FakeResponsesServer::textReply(QStringLiteral("Hello! What shall we build?"), "resp_1"));

    Agent agent;
    ASSERT_TRUE(agent.hasAPIKey());
    agent.send(QStringLiteral("  Make a to-do list\n"));
    ASSERT_TRUE(spinUntil([&] { return !agent.isRunning(); }));

    ASSERT_EQ(server.requests().size(), 1);
    const RecordedRequest &first = server.requests()[0];
    EXPECT_EQ(first.header("Authorization"), "Bearer sk-from-environment");
    const JSON firstBody = first.json();
    EXPECT_EQ(*firstBody.find("tools"), ModelRequest::tools());
    EXPECT_FALSE(firstBody.find("previous_response_id"));
    const JSON::Array &firstInput = *firstBody.arrayAt("input");
    ASSERT_FALSE(firstInput.empty());
    EXPECT_EQ(firstInput.back(), Agent::message("user", "Make a to-do list"));

    ASSERT_FALSE(agent.items().isEmpty());
    EXPECT_EQ(agent.items().back().text, "Hello! What shall we build?");

    // The service keeps the conversation: the next request carries only what is new.
    server.enqueue(FakeResponsesServer::textReply(QStringLiteral("A list it is."), "resp_2"));
    agent.send(QStringLiteral("A to-do list with due dates"));
    ASSERT_TRUE(spinUntil([&] { return !agent.isRunning(); }));

    ASSERT_EQ(server.requests().size(), 2);
    const JSON secondBody = server.requests()[1].json();
    EXPECT_EQ(secondBody.stringAt("previous_response_id"), "resp_1");
    const JSON &secondInput = *secondBody.find("input");
    EXPECT_EQ(secondInput.arrayValue()->back(), Agent::message("user", "A to-do list with due dates"));
    EXPECT_FALSE(mentions(secondInput, "Make a to-do list"));
    EXPECT_FALSE(mentions(secondInput, "What shall we build?"));
    EXPECT_EQ(agent.items().back().text, "A list it is.");
    qunsetenv("OPENAI_API_KEY");
}

TEST(FirstConversation, AServiceRefusalEndsTheRunWithItsWordsAndKeepsTheInput)
{
    Workspace::initShared(QStringLiteral("First Conversation"));
    AgentConfig::saveAPIKey(QStringLiteral("sk-saved"));
    FakeResponsesServer server;
    server.becomeModelService();
    server.enqueue(FakeResponsesServer::httpError(401, R"({"error":{"message":"Incorrect API key provided."}})"));

    Agent agent;
    agent.send(QStringLiteral("Hello"));
    ASSERT_TRUE(spinUntil([&] { return !agent.isRunning(); }));

    EXPECT_EQ(server.requests().at(0).header("Authorization"), "Bearer sk-saved");
    ASSERT_FALSE(agent.items().isEmpty());
    EXPECT_EQ(agent.items().back().kind, ChatItem::Kind::Error);
    EXPECT_TRUE(agent.items().back().text.contains("Incorrect API key provided."))
        << agent.items().back().text.toStdString();
    EXPECT_FALSE(agent.pendingInput.isEmpty());
    AgentConfig::saveAPIKey(std::nullopt);
}
