#include "ChatGPTFixture.h"

#include "agent/Agent.h"
#include "support/FakeAgent.h"
#include "ui/AgentPanel.h"
#include "ui/ChatGPTSettingsRows.h"
#include "ui/ChatGPTSignIn.h"
#include "ui/SetupRows.h"

#include <QAction>
#include <QMenu>
#include <QPushButton>

using namespace zentoro;
using namespace zentoro::test;

using SignInScreens = ChatGPTFixture;

TEST_F(SignInScreens, TheAccessRowTheSettingsRowsAndThePanelFollowASignIn)
{
    AgentOperations ops = fakeOperations();
    ops.hasAPIKey = [] { return false; };
    Agent agent(ops);
    agent.setPlan(chatgpt.get());
    AgentPanel panel(agent);
    ChatGPTSettingsRows settings(*chatgpt, agent);
    panel.show();
    settings.show();
    ChatGPTSignIn *signIn = panel.accessRow()->signIn();
    ASSERT_TRUE(signIn);
    EXPECT_EQ(signIn->text(), "Continue with ChatGPT");
    EXPECT_EQ(settings.accountText(), "");
    EXPECT_FALSE(panel.planRow()->isVisible());

    // Abandoned in the browser, then cancelled from the row.
    browser.follows = false;
    signIn->actionButton()->click();
    EXPECT_EQ(signIn->text(), "Finish signing in in your browser…");
    EXPECT_EQ(settings.accountText(), "Waiting for your browser…");
    signIn->cancelButton()->click();
    ASSERT_TRUE(spinUntil([&] { return !chatgpt->isSigningIn(); }));
    EXPECT_EQ(signIn->text(), "Continue with ChatGPT");

    // A failure is told under the button.
    browser.follows = true;
    service.tokenAnswers.push_back({400, R"({"error":"invalid_grant"})"});
    settings.accountButton()->click();
    ASSERT_TRUE(spinUntil([&] { return !chatgpt->isSigningIn(); }));
    EXPECT_EQ(signIn->text(), "Continue with ChatGPT\nThe sign-in expired before Zentoro could finish it. Try again.");

    signIn->actionButton()->click();
    ASSERT_TRUE(spinUntil([&] { return agent.provider() == Provider::ChatGPT; }));
    EXPECT_EQ(agent.preferredProvider(), Provider::ChatGPT);
    EXPECT_TRUE(panel.accessBox()->isHidden());
    EXPECT_TRUE(panel.planRow()->isVisible());
    EXPECT_EQ(settings.accountText(), "ada@example.com");
    EXPECT_EQ(settings.accountButton()->text(), "Sign Out");
    EXPECT_FALSE(settings.providerPicker()->isVisible());
    EXPECT_TRUE(settings.planNote()->isVisible());
    emit settings.accountsMenu()->aboutToShow();
    QStringList entries;
    for (QAction *action : settings.accountsMenu()->actions())
        entries.append(action->text());
    EXPECT_EQ(entries, QStringList{"Add Another Account…"});

    settings.accountButton()->click();
    EXPECT_EQ(agent.provider(), std::nullopt);
    EXPECT_FALSE(panel.accessBox()->isHidden());
    EXPECT_EQ(settings.accountButton()->text(), "Continue with ChatGPT");
    EXPECT_EQ(signIn->text(), "Continue with ChatGPT");
}
