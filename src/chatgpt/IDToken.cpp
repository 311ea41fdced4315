#include "chatgpt/IDToken.h"

#include <openssl/evp.h>
#include <openssl/x509.h>

namespace zentoro::IDToken {

namespace {

QByteArray derLength(qsizetype length)
{
    if (length < 128)
        return QByteArray(1, char(length));
    QByteArray bytes;
    for (qsizetype rest = length; rest > 0; rest >>= 8)
        bytes.prepend(char(rest & 0xff));
    return char(0x80 + bytes.size()) + bytes;
}

QByteArray derInteger(const QByteArray &number)
{
    qsizetype first = 0;
    while (first < number.size() && number[first] == 0)
        ++first;
    QByteArray value = number.mid(first);
    if (value.isEmpty())
        value = QByteArray(1, '\0');
    else if (quint8(value[0]) & 0x80)
        value.prepend('\0');
    return char(0x02) + derLength(value.size()) + value;
}

bool verifies(EVP_PKEY *key, const QByteArray &message, const QByteArray &signature)
{
    EVP_MD_CTX *context = EVP_MD_CTX_new();
    if (!context)
        return false;
    const bool good = EVP_DigestVerifyInit(context, nullptr, EVP_sha256(), nullptr, key) == 1 &&
                      EVP_DigestVerify(context, reinterpret_cast<const unsigned char *>(signature.constData()),
                                       signature.size(), reinterpret_cast<const unsigned char *>(message.constData()),
                                       message.size()) == 1;
    EVP_MD_CTX_free(context);
    return good;
}

JSON decodePart(const QByteArray &part)
{
    const std::optional<QByteArray> bytes = base64URLDecode(part);
    if (!bytes)
        throw Invalid(QStringLiteral("malformed token"));
    try {
        return JSON::decode(*bytes);
    } catch (const JSON::Error &) {
        throw Invalid(QStringLiteral("malformed token"));
    }
}

bool signatureVerifies(const JSON &jwks, const std::optional<QString> &kid, const QByteArray &message,
                       const QByteArray &signature)
{
    const JSON::Array *keys = jwks.arrayAt(QStringLiteral("keys"));
    if (!keys)
        return false;
    for (const JSON &jwk : *keys) {
        if (!jwk.objectValue() || jwk.stringAt(QStringLiteral("kty")) != u"RSA")
            continue;
        if (kid && jwk.stringAt(QStringLiteral("kid")) != *kid)
            continue;
        const std::optional<QString> n = jwk.stringAt(QStringLiteral("n"));
        const std::optional<QString> e = jwk.stringAt(QStringLiteral("e"));
        if (!n || !e)
            continue;
        const std::optional<QByteArray> modulus = base64URLDecode(n->toUtf8());
        const std::optional<QByteArray> exponent = base64URLDecode(e->toUtf8());
        if (!modulus || !exponent)
            continue;
        const Key key = rsaPublicKey(*modulus, *exponent);
        if (key && verifies(key.get(), message, signature))
            return true;
    }
    return false;
}

} // namespace

std::optional<QByteArray> base64URLDecode(const QByteArray &text)
{
    QByteArray standard = text;
    standard.replace('-', '+').replace('_', '/');
    while (standard.size() % 4 != 0)
        standard.append('=');
    QByteArray::FromBase64Result result = QByteArray::fromBase64Encoding(standard,
                                                                         QByteArray::Base64Encoding |
                                                                             QByteArray::AbortOnBase64DecodingErrors);
    if (!result)
        return std::nullopt;
    return std::move(result.decoded);
}

QByteArray rsaPublicKeyDER(const QByteArray &modulus, const QByteArray &exponent)
{
    const QByteArray body = derInteger(modulus) + derInteger(exponent);
    return char(0x30) + derLength(body.size()) + body;
}

Key rsaPublicKey(const QByteArray &modulus, const QByteArray &exponent)
{
    const QByteArray der = rsaPublicKeyDER(modulus, exponent);
    const unsigned char *bytes = reinterpret_cast<const unsigned char *>(der.constData());
    EVP_PKEY *key = d2i_PublicKey(EVP_PKEY_RSA, nullptr, &bytes, long(der.size()));
    return Key(key, EVP_PKEY_free);
}

Claims verify(const QString &token, const JSON &jwks, const QString &issuer, const QString &audience,
              const std::optional<QString> &nonce, const QDateTime &now)
{
    const QByteArray text = token.toUtf8();
    const QList<QByteArray> parts = text.split('.');
    if (parts.size() != 3)
        throw Invalid(QStringLiteral("malformed token"));
    const JSON header = decodePart(parts[0]);
    const JSON payload = decodePart(parts[1]);
    const std::optional<QByteArray> signature = base64URLDecode(parts[2]);
    if (!signature)
        throw Invalid(QStringLiteral("malformed token"));

    if (!header.objectValue() || header.stringAt(QStringLiteral("alg")) != u"RS256")
        throw Invalid(QStringLiteral("unexpected algorithm"));
    const std::optional<QString> kid = header.stringAt(QStringLiteral("kid"));
    if (!signatureVerifies(jwks, kid, parts[0] + '.' + parts[1], *signature))
        throw Invalid(QStringLiteral("bad signature"));

    if (!payload.objectValue() || payload.stringAt(QStringLiteral("iss")) != issuer)
        throw Invalid(QStringLiteral("wrong issuer"));
    QStringList audiences;
    if (const JSON::Array *list = payload.arrayAt(QStringLiteral("aud"))) {
        for (const JSON &member : *list) {
            if (member.stringRef())
                audiences.append(*member.stringRef());
        }
    } else if (auto single = payload.stringAt(QStringLiteral("aud"))) {
        audiences.append(*single);
    }
    if (!audiences.contains(audience))
        throw Invalid(QStringLiteral("wrong audience"));
    const std::optional<double> expiry = payload.numberAt(QStringLiteral("exp"));
    if (!expiry || !(*expiry > double(now.toMSecsSinceEpoch()) / 1000 - 120))
        throw Invalid(QStringLiteral("expired"));
    if (nonce && payload.stringAt(QStringLiteral("nonce")) != *nonce)
        throw Invalid(QStringLiteral("nonce mismatch"));
    const std::optional<QString> subject = payload.stringAt(QStringLiteral("sub"));
    if (!subject || subject->isEmpty())
        throw Invalid(QStringLiteral("no subject"));
    return Claims{*subject, payload.stringAt(QStringLiteral("email"))};
}

} // namespace zentoro::IDToken
