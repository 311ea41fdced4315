#include "chatgpt/IDToken.h"

#include "support/FakeSignInService.h"

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

// RFC 7515 appendix A.2: an RS256 token of {"iss":"joe","exp":1300819380,...} and its key.
const QString rfcToken = QStringLiteral(
    "eyJhbGciOiJSUzI1NiJ9.eyJpc3MiOiJqb2UiLA0KICJleHAiOjEzMDA4MTkzODAsDQogImh0dHA6Ly9leGFtcGxlLmNvbS9pc19yb290Ijp0"
    "cnVlfQ.cC4hiUPoj9Eetdgtv3hF80EGrhuB__dzERat0XF9g2VtQgr9PJbu3XOiZj5RZmh7AAuHIm4Bh-0Qc_lF5YKt_O8W2Fp5jujGbds9uJdb"
    "F9CUAr7t1dnZcAcQjbKBYNX4BAynRFdiuB--f_nZLgrnbyTyWzO75vRK5h6xBArLIARNPvkSjtQBMHlb1L07Qe7K0GarZRmB_eSN9383LcOLn6_"
    "dO--xi12jzDwusC-eOkHWEsqtFZESc6BfI7noOPqvhJ1phCnvWh6IeYI2w9QOYEUipUTI8np6LbgGY9Fs98rqVt5AXLIhWkWywlVmtVrBp0igc"
    "N_IoypGlUPQGe77Rw");
const JSON rfcKeys = JSON::object(
    {{"keys",
      JSON::array({JSON::object(
          {{"kty", "RSA"},
           {"n",
            "ofgWCuLjybRlzo0tZWJjNiuSfb4p4fAkd_wWJcyQoTbji9k0l8W26mPddxHmfHQp-Vaw-4qPCJrcS2mJPMEzP1Pt0Bm4d4QlL-yRT-"
            "SFd2lZS-pCgNMsD1W_YpRPEwOWvG6b32690r2jZ47soMZo9wGzjb_7OMg0LOL-bSf63kpaSHSXndS5z5rexMdbBYUsLA9e-"
            "KXBdQOS-UTo7WTBEMa2R2CapHg665xsmtdVMTBQY4uDZlxvb3qCo5ZwKh9kG4LT6_I5IhlJH7aGhyxXFvUK-DWNmoudF8NAco9_"
            "h9iaGNj8q2ethFkMLs91kzk2PAcDTW9gb54h4FRWyuXpoQ"},
           {"e", "AQAB"}})})}});

QString reason(const QString &token, const JSON &keys, const QString &issuer, const QString &audience,
               const std::optional<QString> &nonce, const QDateTime &now)
{
    try {
        const IDToken::Claims claims = IDToken::verify(token, keys, issuer, audience, nonce, now);
        return QStringLiteral("ok ") + claims.subject + u' ' + claims.email.value_or(QStringLiteral("-"));
    } catch (const IDToken::Invalid &invalid) {
        return invalid.reason;
    }
}

} // namespace

TEST(IDToken, TheRFCExampleVerifiesWithItsKeyAndNotWithOneByteChanged)
{
    const QDateTime then = QDateTime::fromSecsSinceEpoch(1300819380 - 60, Qt::UTC);
    // The signature holds; the example has no audience, which is the next check.
    EXPECT_EQ(reason(rfcToken, rfcKeys, "joe", "anyone", std::nullopt, then), "wrong audience");
    EXPECT_EQ(reason(rfcToken, rfcKeys, "someone else", "anyone", std::nullopt, then), "wrong issuer");
    QString changed = rfcToken;
    const qsizetype at = changed.lastIndexOf(u'.') + 10;
    changed[at] = changed[at] == u'A' ? u'B' : u'A';
    EXPECT_EQ(reason(changed, rfcKeys, "joe", "anyone", std::nullopt, then), "bad signature");
}

TEST(IDToken, KeysAreBuiltByTheDERRules)
{
    const QByteArray modulus = QByteArray(1, '\0') + QByteArray(1, char(0xc0)) + QByteArray(255, char(0x11));
    const QByteArray der = IDToken::rsaPublicKeyDER(modulus, QByteArray::fromHex("010001"));
    // The leading zero goes, and comes back only because the high bit asks for it: 257 bytes.
    EXPECT_EQ(der.mid(4, 5).toHex(), "0282010100");
    EXPECT_EQ(der.right(5).toHex(), "0203010001");
    EXPECT_EQ(der.left(4).toHex(), "3082010a");
    EXPECT_EQ(IDToken::rsaPublicKeyDER(QByteArray(2, '\0'), "\x7f").toHex(), "300602010002017f");
}

TEST(IDToken, EachFlawHasItsReasonInOrder)
{
    test::FakeSignInService service;
    const JSON keys = JSON::decode(service.jwks());
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const qint64 at = now.toSecsSinceEpoch();
    const JSON good = JSON::object({{"iss", "https://auth.example"},
                                    {"aud", JSON::array({"other", "client"})},
                                    {"sub", "user-1"},
                                    {"nonce", "n1"},
                                    {"email", "ada@example.com"},
                                    {"exp", at + 600}});
    auto with = [&](const QString &key, const JSON &value) {
        JSON claims = good;
        if (value.isNull())
            claims.remove(key);
        else
            claims.set(key, value);
        return service.sign(claims);
    };
    auto check = [&](const QString &token, const std::optional<QString> &nonce = QStringLiteral("n1"),
                     const JSON &keySet = JSON()) {
        return reason(token, keySet.isNull() ? keys : keySet, "https://auth.example", "client", nonce, now);
    };
    const QString token = service.sign(good);
    const QStringList parts = token.split(u'.');

    EXPECT_EQ(check(token), "ok user-1 ada@example.com");
    EXPECT_EQ(check(parts[0] + "." + parts[1]), "malformed token");
    EXPECT_EQ(check(token + ".x"), "malformed token");
    EXPECT_EQ(check(parts[0] + ".%%%." + parts[2]), "malformed token");
    EXPECT_EQ(check(service.sign(good, JSON::object({{"alg", "HS256"}}))), "unexpected algorithm");
    EXPECT_EQ(check(service.sign(good, JSON::array())), "unexpected algorithm");
    EXPECT_EQ(check(service.sign(good, JSON::object({{"alg", "RS256"}, {"kid", "gone"}}))), "bad signature");
    // Without a kid every RSA key is tried in turn; other kinds of key are passed over.
    JSON mixed = JSON::object({{"keys", JSON::array({JSON::object({{"kty", "EC"}}), *rfcKeys.arrayAt("keys")->begin(),
                                                     keys.arrayAt("keys")->front()})}});
    EXPECT_EQ(check(service.sign(good, JSON::object({{"alg", "RS256"}})), "n1", mixed), "ok user-1 ada@example.com");
    EXPECT_EQ(check(token, "n1", JSON::array()), "bad signature");
    EXPECT_EQ(check(with("iss", "https://elsewhere")), "wrong issuer");
    EXPECT_EQ(check(with("aud", 7)), "wrong audience");
    EXPECT_EQ(check(with("aud", "client")), "ok user-1 ada@example.com");
    EXPECT_EQ(check(with("exp", at - 120)), "expired");
    EXPECT_EQ(check(with("exp", at - 119)), "ok user-1 ada@example.com");
    EXPECT_EQ(check(with("exp", "9999999999")), "expired");
    EXPECT_EQ(check(with("nonce", "n2")), "nonce mismatch");
    EXPECT_EQ(check(with("nonce", "n2"), std::nullopt), "ok user-1 ada@example.com");
    EXPECT_EQ(check(with("sub", "")), "no subject");
    EXPECT_EQ(check(with("email", 5)), "ok user-1 -");
}
