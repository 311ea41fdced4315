#include "ChatGPTFixture.h"

#include "support/Files.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

using namespace zentoro;
using namespace zentoro::test;

using Tokens = ChatGPTFixture;

TEST_F(Tokens, CallersShareOneRefreshAndARotatedTokenIsNeverSpentTwice)
{
    // A lock file left by a process that died holds nobody up.
    writeFile(CredentialStore::lockPath(folder.path()), {});
    const ChatGPTAccount stale = storeAccount(299);
    QStringList got;
    for (int i = 0; i < 2; ++i)
        startTask([&](TaskHandle) -> QCoro::Task<> { got.append(co_await chatgpt->accessToken(false)); });
    ASSERT_TRUE(spinUntil([&] { return got.size() == 2; }));
    EXPECT_EQ(service.count("/api/accounts/oauth/token"), 1);
    EXPECT_EQ(got, QStringList(2, service.accessToken()));
    EXPECT_NE(got.front(), stale.accessToken);

    // A good token is used as it is, unless the service refused it.
    EXPECT_EQ(token(), service.accessToken());
    EXPECT_EQ(service.count("/api/accounts/oauth/token"), 1);
    const QString refused = service.accessToken();
    EXPECT_NE(token(true), refused);
    EXPECT_EQ(service.count("/api/accounts/oauth/token"), 2);
    EXPECT_EQ(chatgpt->account()->refreshToken, service.refreshToken());
    EXPECT_EQ(chatgpt->account()->email, "ada@example.com");
}

TEST_F(Tokens, ARefusedRefreshEndsTheSignInOnlyForGood)
{
    storeAccount(10);
    service.tokenAnswers = {{503, "{}"}, {200, R"({"token_type":"Bearer"})"}};
    EXPECT_EQ(token(), "failure: ChatGPT sign-in failed (HTTP 503).");
    EXPECT_EQ(token(), "failure: ChatGPT sign-in failed (HTTP 200).");
    EXPECT_TRUE(chatgpt->account()->refreshToken);

    service.tokenAnswers = {{400, R"({"error":"refresh_token_reused","error_description":"Used already"})"}};
    EXPECT_EQ(token(), "failure: Your ChatGPT sign-in has ended. Sign in again in Settings (Continue with ChatGPT).");
    const ChatGPTAccount ended = *chatgpt->account();
    EXPECT_FALSE(ended.accessToken || ended.refreshToken || ended.idToken || ended.expiresAt);
    EXPECT_EQ(ended.email, "ada@example.com");
    EXPECT_FALSE(chatgpt->canUsePlan());
    EXPECT_EQ(token(), "failure: Sign in with ChatGPT first in Settings (Ctrl+,).");

    // Choosing the ended record signs into it again.
    browser.follows = false;
    chatgpt->use(ended);
    EXPECT_TRUE(chatgpt->isSigningIn());
    ASSERT_TRUE(spinUntil([&] { return !browser.opened.isEmpty(); }));
    EXPECT_EQ(QUrlQuery(browser.opened.front()).queryItemValue("client_id"), ended.clientID);
    chatgpt->cancelSignIn();
    ASSERT_TRUE(spinUntil([&] { return !chatgpt->isSigningIn(); }));

    CredentialStore::update(folder.path(), [](ChatGPTCredentials &credentials) {
        credentials.accounts[0].refreshToken = "r";
        credentials.accounts[0].scopes = {"openid"};
    });
    EXPECT_EQ(token(), "failure: Zentoro doesn't have permission to use your ChatGPT plan. Allow it in Settings, or "
                       "use an API key.");
}

TEST_F(Tokens, SignOutForgetsAtOnceAndTellsWhenTheServiceDidNotConfirm)
{
    for (const auto &[statuses, attempts, confirmed] : std::vector<std::tuple<std::deque<int>, int, bool>>{
             {{503, 503, 503}, 3, false}, {{400}, 1, false}, {{}, 1, true}}) {
        const ChatGPTAccount account = storeAccount(3600);
        const int before = service.count("/api/accounts/oauth/revoke");
        service.revokeStatuses = statuses;
        chatgpt->signOut();
        EXPECT_FALSE(chatgpt->isSignedIn());
        EXPECT_EQ(chatgpt->accounts().size(), 1);
        EXPECT_EQ(chatgpt->activeID(), account.clientID);
        ASSERT_TRUE(spinUntil([&] { return service.count("/api/accounts/oauth/revoke") == before + attempts; }));
        spinUntil([] { return false; }, std::chrono::milliseconds(50));
        EXPECT_EQ(service.count("/api/accounts/oauth/revoke"), before + attempts);
        EXPECT_EQ(service.requests().last().form, (QMap<QString, QString>{{"token", *account.refreshToken},
                                                                          {"token_type_hint", "refresh_token"},
                                                                          {"client_id", account.clientID}}));
        EXPECT_EQ(chatgpt->message().has_value(), !confirmed);
    }
}

TEST_F(Tokens, TheFileIsWrittenWholeAndReadOnlyWhole)
{
    const ChatGPTCredentials first = CredentialStore::update(folder.path(), [](ChatGPTCredentials &) {});
    EXPECT_TRUE(first.hostID.startsWith("urn:uuid:"));
    EXPECT_EQ(first.hostID, first.hostID.toLower());
    ChatGPTAccount bare{"app_123456", "s", std::nullopt, {}, {}, {}, {}, {"a"}, {}};
    const ChatGPTCredentials second = CredentialStore::update(folder.path(), [&](ChatGPTCredentials &credentials) {
        credentials.accounts = {bare};
    });
    EXPECT_EQ(second.hostID, first.hostID);
    const QString text = readText(CredentialStore::path(folder.path()));
    EXPECT_FALSE(text.contains("email"));
    EXPECT_TRUE(text.contains("\n    \"accounts\": [\n"));
    EXPECT_EQ(CredentialStore::read(folder.path())->accounts, QList<ChatGPTAccount>{bare});
    EXPECT_EQ(bare.label(), "ChatGPT account 123456");

    writeFile(CredentialStore::path(folder.path()), QString(text).replace("\"scopes\"", "\"scope\"").toUtf8());
    EXPECT_FALSE(CredentialStore::read(folder.path()));
    EXPECT_NE(CredentialStore::update(folder.path(), [](ChatGPTCredentials &) {}).hostID, first.hostID);

    QFile::remove(CredentialStore::path(folder.path()));
    QDir(folder.path()).mkdir("chatgpt.json");
    try {
        CredentialStore::write(folder.path(), first);
        ADD_FAILURE() << "the write over a folder succeeded";
    } catch (const DescribedError &error) {
        EXPECT_EQ(error.errorDescription(),
                  "Couldn't save the ChatGPT sign-in to " + CredentialStore::path(folder.path()) + ".");
    }
    EXPECT_TRUE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
}

TEST_F(Tokens, ThePlansModelsAreKeptAcrossLaunchesAndOnlyReplacedByAListOfSome)
{
    storeAccount(3600);
    service.modelsBody = R"({"models":[{"slug":"a","display_name":"A","visibility":"list"},{"slug":"hidden",
        "visibility":"hide"},{"slug":"b","visibility":3},{"display_name":"no slug"},"odd"]})";
    await(chatgpt->refreshModels());
    const QList<PlanModel> listed{{"a", "A"}, {"b", "b"}};
    EXPECT_EQ(chatgpt->models(), listed);
    service.modelsBody = R"({"models":[]})";
    await(chatgpt->refreshModels());
    service.modelsBody = "<html>";
    await(chatgpt->refreshModels());
    EXPECT_EQ(make()->models(), listed);
    // A refused token leaves the list too, and says nothing.
    CredentialStore::update(folder.path(),
                            [](ChatGPTCredentials &credentials) { credentials.accounts[0].accessToken = "refused"; });
    await(chatgpt->refreshModels());
    EXPECT_EQ(chatgpt->models(), listed);
    EXPECT_EQ(chatgpt->message(), std::nullopt);
    Defaults::setValue(QStringLiteral("chatgptModels"), QByteArray("[{\"slug\":1}]"));
    EXPECT_TRUE(make()->models().isEmpty());
}

// The other copy: started by the test below with the shared folder and the service's origin.
TEST(TwoCopies, DISABLED_OneCopy)
{
    ChatGPT copy(ChatGPT::Settings{qEnvironmentVariable("ZENTORO_TEST_SHARED"), ChatGPTEndpoints::standard(), "Copy"});
    std::printf("token %s\n", qPrintable(await(copy.accessToken(false))));
}

TEST_F(Tokens, TwoCopiesWithOneExpiredTokenMakeOneRefreshBetweenThem)
{
    storeAccount(-60);
    service.tokenDelayMilliseconds = 400;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ZENTORO_TEST_SHARED", folder.path());
    environment.insert("ZENTORO_AUTH_BASE", service.origin());
    std::vector<std::unique_ptr<QProcess>> copies;
    for (int i = 0; i < 2; ++i) {
        auto copy = std::make_unique<QProcess>();
        copy->setProcessEnvironment(environment);
        copy->start(QCoreApplication::applicationFilePath(),
                    {"--gtest_also_run_disabled_tests", "--gtest_filter=TwoCopies.DISABLED_OneCopy"});
        copies.push_back(std::move(copy));
    }
    ASSERT_TRUE(spinUntil(
        [&] {
            return std::all_of(copies.begin(), copies.end(),
                               [](auto &c) { return c->state() == QProcess::NotRunning; });
        },
        std::chrono::seconds(30)));
    EXPECT_EQ(service.count("/api/accounts/oauth/token"), 1);
    for (auto &copy : copies) {
        const QString output = QString::fromUtf8(copy->readAllStandardOutput());
        EXPECT_TRUE(output.contains("token " + service.accessToken() + "\n")) << qPrintable(output);
    }
    chatgpt->reload();
    EXPECT_EQ(chatgpt->account()->refreshToken, service.refreshToken());
}
