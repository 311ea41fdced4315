#pragma once

#include "core/DescribedError.h"
#include "core/JSON.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>
#include <optional>

typedef struct evp_pkey_st EVP_PKEY;

// Checks the OpenID Connect ID token that a sign-in returns and says who signed in. Only
// RS256 is accepted; the keys come from the sign-in service's key set.
namespace zentoro::IDToken {

struct Claims {
    QString subject;
    std::optional<QString> email;

    bool operator==(const Claims &) const = default;
};

struct Invalid : DescribedError {
    QString reason;
    explicit Invalid(QString reason) : reason(std::move(reason)) {}
    QString errorDescription() const override
    {
        return QStringLiteral("ChatGPT's sign-in response didn't check out (%1). Try again.").arg(reason);
    }
};

// The token's claims once its signature, issuer, audience, expiry (120 s of skew), nonce (when
// given) and subject hold; raises Invalid with the first reason that doesn't.
Claims verify(const QString &token, const JSON &jwks, const QString &issuer, const QString &audience,
              const std::optional<QString> &nonce, const QDateTime &now);

// base64url without padding, the rule adds it; absent for text base64 refuses.
std::optional<QByteArray> base64URLDecode(const QByteArray &text);

// The DER of a PKCS#1 RSAPublicKey of these big-endian numbers.
QByteArray rsaPublicKeyDER(const QByteArray &modulus, const QByteArray &exponent);

using Key = std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY *)>;
// A public RSA key of these numbers; null when the system refuses them.
Key rsaPublicKey(const QByteArray &modulus, const QByteArray &exponent);

} // namespace zentoro::IDToken
