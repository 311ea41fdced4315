#include "chatgpt/SignInRequest.h"

#include "core/Failure.h"

#include <gtest/gtest.h>

using namespace zentoro;

TEST(SignInRequest, PKCEFollowsRFC7636AndRandomValuesHaveTheirLengths)
{
    EXPECT_EQ(SignInRequest::challenge("dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"),
              "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM");
    const QString verifier = SignInRequest::random(48);
    EXPECT_EQ(verifier.size(), 64);
    EXPECT_EQ(SignInRequest::random(32).size(), 43);
    EXPECT_NE(SignInRequest::random(32), SignInRequest::random(32));
    EXPECT_FALSE(verifier.contains(u'+') || verifier.contains(u'/') || verifier.contains(u'='));
}

TEST(SignInRequest, TheQueryKeepsItsOrderAndEncodesEveryReservedCharacter)
{
    SignInRequest::Values values{
        "http://127.0.0.1:1455/auth/callback",         "st",           "no",
        "dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk", "urn:uuid:abc", "https://api.openai.com/v1"};
    const QString first = SignInRequest::query(values, std::nullopt, false);
    EXPECT_EQ(first,
              "client_id=dynamic_agent_client&response_type=code&redirect_uri=http%3A%2F%2F127.0.0.1%3A1455%2Fauth%"
              "2Fcallback&scope=openid%20profile%20email%20offline_access%20resource.invoke%20chatgpt.tokens.use."
              "direct&resource=https%3A%2F%2Fapi.openai.com%2Fv1&state=st&nonce=no&code_challenge_method=S256&"
              "code_challenge=E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM&ext_agent_host_id=urn%3Auuid%3Aabc&"
              "agent_name_hint=Zentoro");

    ChatGPTAccount account{"app_1", "user-1", std::nullopt, std::nullopt, {}, {}, {}, {}, {}};
    const QString bare = SignInRequest::query(values, account, true);
    EXPECT_TRUE(bare.startsWith("client_id=app_1&"));
    EXPECT_TRUE(bare.endsWith("ext_agent_host_id=urn%3Auuid%3Aabc&prompt=consent"));
    EXPECT_FALSE(bare.contains("dynamic_agent_client") || bare.contains("agent_name_hint"));
    account.email = "a+b@example.com";
    account.idToken = "x.y.z";
    EXPECT_TRUE(
        SignInRequest::query(values, account, false).endsWith("&id_token_hint=x.y.z&login_hint=a%2Bb%40example.com"));
}

TEST(SignInRequest, ARedirectIsCheckedInItsOrder)
{
    const ChatGPTAccount known{"app_1", "user-1", "ada@example.com", {}, {}, {}, {}, {}, {}};
    auto check = [](QMap<QString, QString> redirect, const std::optional<ChatGPTAccount> &account = std::nullopt) {
        try {
            return QStringLiteral("ok ") + SignInRequest::checkRedirect(redirect, "st", account);
        } catch (const Failure &failure) {
            return failure.message;
        }
    };
    EXPECT_EQ(check({{"state", "st"}, {"code", "c"}, {"client_id", "app_9"}}), "ok app_9");
    EXPECT_EQ(check({{"state", "other"}, {"error", "access_denied"}}),
              "The sign-in didn't match the one Zentoro started. Try again.");
    EXPECT_EQ(check({{"code", "c"}, {"client_id", "app_9"}}),
              "The sign-in didn't match the one Zentoro started. Try again.");
    EXPECT_EQ(check({{"state", "st"}, {"error", "access_denied"}}),
              "You didn't allow Zentoro to use your ChatGPT plan. You can still add an OpenAI API key.");
    EXPECT_EQ(check({{"state", "st"}, {"error", "server_error"}, {"error_description", "Down for a while"}}),
              "ChatGPT sign-in failed: Down for a while");
    EXPECT_EQ(check({{"state", "st"}, {"error", "server_error"}}), "ChatGPT sign-in failed: server_error");
    EXPECT_EQ(check({{"state", "st"}, {"code", "c"}, {"client_id", "dynamic_agent_client"}}),
              "ChatGPT didn't finish registering Zentoro. Try again.");
    EXPECT_EQ(check({{"state", "st"}, {"code", "c"}, {"client_id", ""}}),
              "ChatGPT didn't finish registering Zentoro. Try again.");
    EXPECT_EQ(check({{"state", "st"}, {"code", "c"}, {"client_id", "app_2"}}, known),
              "ChatGPT answered for a different registration than ada@example.com. Try again, or choose Add Another "
              "Account.");
    EXPECT_EQ(check({{"state", "st"}, {"code", "c"}}, known), "ok app_1");
    EXPECT_EQ(check({{"state", "st"}, {"code", ""}}, known), "ChatGPT didn't send a sign-in code. Try again.");
}
