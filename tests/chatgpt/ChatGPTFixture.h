#pragma once

#include "chatgpt/ChatGPT.h"
#include "chatgpt/CredentialStore.h"
#include "core/Defaults.h"
#include "support/Await.h"
#include "support/FakeSignInService.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace zentoro::test {

// A ChatGPT over a fresh shared folder, talking to the fake sign-in service through the fake
// browser. The welcome notice is counted, not shown.
class ChatGPTFixture : public ::testing::Test {
protected:
    QTemporaryDir folder;
    FakeSignInService service;
    FakeBrowser browser;
    int welcomes = 0;
    std::unique_ptr<ChatGPT> chatgpt;

    void SetUp() override
    {
        Defaults::remove(QStringLiteral("chatgptWelcomeShown"));
        Defaults::remove(QStringLiteral("chatgptModels"));
        chatgpt = make();
    }

    std::unique_ptr<ChatGPT> make(const QString &api = {})
    {
        auto made = std::make_unique<ChatGPT>(ChatGPT::Settings{folder.path(), service.endpoints(api),
                                                                QStringLiteral("Tally"), std::chrono::milliseconds(1),
                                                                0});
        made->showWelcome = [this] {
            ++welcomes;
            return false;
        };
        return made;
    }

    // Signs in through the browser and waits for the end; the message, if any.
    std::optional<QString> signIn(std::optional<ChatGPTAccount> account = std::nullopt, bool consent = false)
    {
        chatgpt->signIn(std::move(account), consent);
        EXPECT_TRUE(spinUntil([&] { return !chatgpt->isSigningIn(); }));
        return chatgpt->message();
    }

    // Puts a signed-in record on file whose access token expires in `seconds`.
    ChatGPTAccount storeAccount(int seconds)
    {
        const ChatGPTAccount account = service.account(QDateTime::currentDateTimeUtc().addSecs(seconds));
        CredentialStore::update(folder.path(), [&](ChatGPTCredentials &credentials) {
            credentials.accounts = {account};
            credentials.active = account.clientID;
        });
        chatgpt->reload();
        return account;
    }

    // The token, or "failure: <words>".
    QString token(bool force = false)
    {
        try {
            return await(chatgpt->accessToken(force));
        } catch (const DescribedError &error) {
            return QStringLiteral("failure: ") + error.errorDescription();
        }
    }
};

} // namespace zentoro::test
