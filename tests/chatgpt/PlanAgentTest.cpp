#include "ChatGPTFixture.h"

#include "agent/Agent.h"
#include "agent/ModelRequest.h"
#include "agent/Recovery.h"
#include "model_service/OpenAI.h"
#include "support/FakeAgent.h"
#include "support/FakeResponsesServer.h"
#include "support/Files.h"

#include <QDirIterator>
#include <QLoggingCategory>

using namespace zentoro;
using namespace zentoro::test;

namespace {

QStringList logged;

void keep(QtMsgType, const QMessageLogContext &, const QString &message)
{
    logged.append(message);
}

// Every file under `root` that holds one of `secrets`.
QStringList filesHolding(const QString &root, const QStringList &secrets)
{
    QStringList holding;
    QDirIterator files(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const QString text = readText(path);
        for (const QString &secret : secrets) {
            if (text.contains(secret))
                holding.append(path);
        }
    }
    return holding;
}

} // namespace

using PlanAgent = ChatGPTFixture;

TEST_F(PlanAgent, ARefusedTokenIsRefreshedOnceABusyPlanWaitedForAndTheTurnGoesOnWithoutATokenInAnyFile)
{
    FakeResponsesServer model;
    model.becomeModelService();
    model.enqueue(FakeResponsesServer::httpError(401, R"({"error":{"message":"Token expired"}})"));
    model.enqueue(FakeResponsesServer::httpError(503, R"({"error":{"message":"Busy"}})"));
    model.enqueue(FakeResponsesServer::textReply("All done."));
    const ChatGPTAccount stored = storeAccount(3600);
    QTemporaryDir copy;
    const Workspace workspace{QStringLiteral("Tally"), copy.path()};

    AgentOperations ops = fakeOperations();
    ops.hasAPIKey = [] { return false; };
    const PlanService plan{chatgpt->usageURL(), std::chrono::milliseconds(1)};
    Agent agent(ops, workspace);
    ops.bearer = [&](const TaskHandle &task, Provider provider, bool refresh) {
        return ModelRequest::bearer(task, provider, refresh, chatgpt.get());
    };
    ops.respond = OpenAI::respond;
    ops.recover = [&](const TaskHandle &task, const OpenAI::Failure &failure, Provider provider, Recovery *recovery) {
        return FailureRecovery::recover(agent, task, failure, provider, *recovery, plan);
    };
    ops.save = [&] { agent.writeConversation(); };
    agent.setOperations(ops);
    agent.setPlan(chatgpt.get());
    ASSERT_EQ(agent.provider(), Provider::ChatGPT);

    QLoggingCategory::setFilterRules(QStringLiteral("zentoro.*.debug=true"));
    const QtMessageHandler previous = qInstallMessageHandler(keep);
    agent.send(QStringLiteral("Make it blue"));
    const bool finished = spinUntil([&] { return !agent.isRunning(); });
    qInstallMessageHandler(previous);
    QLoggingCategory::setFilterRules(QString());
    ASSERT_TRUE(finished);

    EXPECT_EQ(rowTexts(agent).last(), "assistant: All done.");
    EXPECT_EQ(service.count("/api/accounts/oauth/token"), 1);
    ASSERT_EQ(model.requests().size(), 3);
    EXPECT_EQ(model.requests()[0].header("Authorization"), "Bearer " + stored.accessToken->toUtf8());
    EXPECT_EQ(model.requests()[2].header("Authorization"), "Bearer " + service.accessToken().toUtf8());

    const QStringList secrets{*stored.accessToken, *stored.refreshToken, service.accessToken(), service.refreshToken()};
    EXPECT_TRUE(filesHolding(copy.path(), secrets).isEmpty());
    for (const char *variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
        EXPECT_TRUE(filesHolding(qEnvironmentVariable(variable), secrets).isEmpty()) << variable;
    EXPECT_EQ(filesHolding(folder.path(), secrets), QStringList(2, CredentialStore::path(folder.path())));
    for (const QString &line : std::as_const(logged)) {
        for (const QString &secret : secrets)
            EXPECT_FALSE(line.contains(secret)) << qPrintable(line);
    }
}
