#include "ChatGPTFixture.h"

#include "chatgpt/CallbackHead.h"

#include <QDir>
#include <QFileInfo>
#include <QTcpSocket>

#include <sys/stat.h>

using namespace zentoro;
using namespace zentoro::test;

using SignIn = ChatGPTFixture;

namespace {
QUrlQuery lastAuthorize(const FakeSignInService &service)
{
    for (auto it = service.requests().rbegin(); it != service.requests().rend(); ++it) {
        if (it->path == "/api/accounts/authorize")
            return it->query;
    }
    return {};
}
} // namespace

TEST_F(SignIn, TheBrowserRoundTripStoresTheAccountAndReadiesThePlan)
{
    int planReady = 0;
    chatgpt->onPlanReady = [&] { ++planReady; };
    EXPECT_EQ(signIn(), std::nullopt);

    const std::optional<ChatGPTAccount> account = chatgpt->account();
    ASSERT_TRUE(account);
    EXPECT_EQ(account->clientID, service.clientID);
    EXPECT_EQ(account->email, "ada@example.com");
    EXPECT_EQ(account->accessToken, service.accessToken());
    EXPECT_TRUE(chatgpt->canUsePlan());
    EXPECT_EQ(planReady, 1);
    EXPECT_EQ(welcomes, 1);
    EXPECT_EQ(browser.page, CallbackHead::page("Back to Zentoro", "You can close this tab and return to Zentoro."));
    // The authorize request registered this installation by its identifier, and the file is the owner's alone.
    const FakeSignInService::Request &authorize = service.requests().front();
    const std::optional<ChatGPTCredentials> file = CredentialStore::read(folder.path());
    ASSERT_TRUE(file);
    EXPECT_EQ(authorize.query.queryItemValue("ext_agent_host_id", QUrl::FullyDecoded), file->hostID);
    struct stat status {};
    ASSERT_EQ(::stat(QFile::encodeName(CredentialStore::path(folder.path())).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_TRUE(spinUntil([&] { return !chatgpt->models().isEmpty(); }));
    EXPECT_EQ(chatgpt->models(), (QList<PlanModel>{{"gpt-plan", "Plan Model"}}));

    // Signing in again goes back into the registration, keeps the known email and shows no second notice.
    service.email.reset();
    EXPECT_EQ(signIn(chatgpt->account()), std::nullopt);
    EXPECT_EQ(lastAuthorize(service).queryItemValue("client_id"), service.clientID);
    EXPECT_EQ(chatgpt->account()->email, "ada@example.com");
    EXPECT_EQ(chatgpt->accounts().size(), 1);
    EXPECT_EQ(welcomes, 1);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"chatgpt.json"});
}

TEST_F(SignIn, EveryBadAnswerIsToldAndNoRecordIsWritten)
{
    struct Case {
        const char *name;
        std::function<void()> arrange;
        QString message;
    };
    const QString checkOut = QStringLiteral("ChatGPT's sign-in response didn't check out (%1). Try again.");
    const std::vector<Case> cases{
        {"state", [&] { service.editRedirect = [](QUrlQuery &q) { q.removeAllQueryItems("state"); }; },
         "The sign-in didn't match the one Zentoro started. Try again."},
        {"refused",
         [&] {
             service.editRedirect = [](QUrlQuery &q) {
                 q.removeAllQueryItems("code");
                 q.addQueryItem("error", "access_denied");
             };
         },
         "You didn't allow Zentoro to use your ChatGPT plan. You can still add an OpenAI API key."},
        {"unregistered", [&] { service.clientID = "dynamic_agent_client"; },
         "ChatGPT didn't finish registering Zentoro. Try again."},
        {"expired code",
         [&] {
             service.tokenAnswers.push_back({400, R"({"error":"invalid_grant"})"});
         },
         "The sign-in expired before Zentoro could finish it. Try again."},
        {"html",
         [&] {
             service.tokenAnswers.push_back({502, "<html><body>Bad gateway</body></html>"});
         },
         "ChatGPT sign-in failed (HTTP 502: <html><body>Bad gateway</body></html>)."},
        {"empty",
         [&] {
             service.tokenAnswers.push_back({200, ""});
         },
         "ChatGPT sign-in failed (HTTP 200: )."},
        {"no id token",
         [&] {
             service.tokenAnswers.push_back({200, R"({"access_token":"a"})"});
         },
         "ChatGPT didn't say who signed in. Try again."},
        {"key set", [&] { service.jwksBody = "not json"; }, checkOut.arg("no signing keys")},
        {"other keys", [&] { service.jwksBody = R"({"keys":[{"kty":"RSA","kid":"test-key","n":"AQAB","e":"AQAB"}]})"; },
         checkOut.arg("bad signature")},
        {"nonce", [&] { service.editClaims = [](JSON &claims) { claims.set("nonce", "replayed"); }; },
         checkOut.arg("nonce mismatch")},
        {"audience", [&] { service.editClaims = [](JSON &claims) { claims.set("aud", "app_other"); }; },
         checkOut.arg("wrong audience")},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const QString registered = service.clientID;
        c.arrange();
        EXPECT_EQ(signIn(), c.message);
        EXPECT_TRUE(chatgpt->accounts().isEmpty());
        EXPECT_FALSE(CredentialStore::read(folder.path())->active);
        service.editRedirect = nullptr;
        service.editClaims = nullptr;
        service.jwksBody.reset();
        service.tokenAnswers.clear();
        service.clientID = registered;
    }
    // Without the plan's scope the record is kept, and plan use can be asked for again.
    service.scope = "openid email offline_access";
    EXPECT_EQ(signIn(), "Signed in, but Zentoro doesn't have permission to use your ChatGPT plan.");
    EXPECT_TRUE(chatgpt->isSignedIn());
    EXPECT_FALSE(chatgpt->canUsePlan());
    EXPECT_EQ(welcomes, 0);
    // Another user answering for a known account is refused.
    service.subject = "user-2";
    EXPECT_EQ(signIn(chatgpt->account(), true),
              "That's a different ChatGPT account than ada@example.com. To use it, choose Add Another Account.");
    EXPECT_EQ(lastAuthorize(service).queryItemValue("prompt"), "consent");
}

TEST_F(SignIn, ACancelledSignInLeavesNothingBehind)
{
    browser.follows = false;
    chatgpt->signIn(std::nullopt, false);
    chatgpt->signIn(std::nullopt, true);
    ASSERT_TRUE(spinUntil([&] { return !browser.opened.isEmpty(); }));
    EXPECT_TRUE(chatgpt->isSigningIn());
    const QUrlQuery query(browser.opened.front());
    const QUrl redirect(query.queryItemValue("redirect_uri", QUrl::FullyDecoded));
    chatgpt->cancelSignIn();
    ASSERT_TRUE(spinUntil([&] { return !chatgpt->isSigningIn(); }));
    EXPECT_EQ(browser.opened.size(), 1);
    EXPECT_EQ(chatgpt->message(), std::nullopt);
    EXPECT_TRUE(CredentialStore::read(folder.path())->accounts.isEmpty());
    QTcpSocket late;
    late.connectToHost(QHostAddress::LocalHost, quint16(redirect.port()));
    EXPECT_FALSE(late.waitForConnected(1000));
}
