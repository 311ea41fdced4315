#include "support/FakeSignInService.h"

#include <QCryptographicHash>
#include <QDesktopServices>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QNetworkReply>
#include <QThread>
#include <QUuid>

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>

namespace zentoro::test {

namespace {

QString base64URL(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

QByteArray number(EVP_PKEY *key, const char *name)
{
    BIGNUM *value = nullptr;
    EVP_PKEY_get_bn_param(key, name, &value);
    QByteArray bytes(BN_num_bytes(value), '\0');
    BN_bn2bin(value, reinterpret_cast<unsigned char *>(bytes.data()));
    BN_free(value);
    return bytes;
}

QHttpServerResponse json(const JSON &body, QHttpServerResponse::StatusCode status = QHttpServerResponse::StatusCode::Ok)
{
    return QHttpServerResponse("application/json", body.encode(), status);
}

QHttpServerResponse oauthError(const QString &code)
{
    return json(JSON::object({{"error", code}}), QHttpServerResponse::StatusCode::BadRequest);
}

// A value unlike any other text, so that a search of files can't mistake it.
QString distinct(const char *kind, int n)
{
    return QStringLiteral("%1-%2-%3").arg(QLatin1String(kind)).arg(n).arg(QUuid::createUuid().toString(QUuid::Id128));
}

} // namespace

FakeSignInService::FakeSignInService() : key_(EVP_RSA_gen(2048), EVP_PKEY_free)
{
    server_.route("/api/accounts/authorize", [this](const QHttpServerRequest &request) { return authorize(request); });
    server_.route("/api/accounts/oauth/token", [this](const QHttpServerRequest &request) { return token(request); });
    server_.route("/api/accounts/oauth/revoke", [this](const QHttpServerRequest &request) { return revoke(request); });
    server_.route("/.well-known/jwks.json", [this](const QHttpServerRequest &request) {
        record(request);
        return QHttpServerResponse("application/json", jwksBody.value_or(jwks()));
    });
    server_.route("/v1/models", [this](const QHttpServerRequest &request) { return models(request); });
    port_ = server_.listen(QHostAddress::LocalHost, 0);
}

FakeSignInService::~FakeSignInService() = default;

QString FakeSignInService::origin() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(port_);
}

ChatGPTEndpoints FakeSignInService::endpoints(const QString &api) const
{
    return ChatGPTEndpoints{origin(), origin(), api.isEmpty() ? origin() : api};
}

int FakeSignInService::count(const QByteArray &path) const
{
    return int(std::count_if(requests_.begin(), requests_.end(), [&](const Request &r) { return r.path == path; }));
}

FakeSignInService::Request &FakeSignInService::record(const QHttpServerRequest &request)
{
    Request recorded;
    recorded.path = request.url().path().toUtf8();
    recorded.query = request.query();
    recorded.authorization = request.value("Authorization");
    for (const auto &[name, value] : QUrlQuery(QString::fromUtf8(request.body())).queryItems(QUrl::FullyDecoded))
        recorded.form.insert(name, value);
    requests_.append(recorded);
    return requests_.last();
}

QHttpServerResponse FakeSignInService::authorize(const QHttpServerRequest &request)
{
    const Request &asked = record(request);
    const QString registered = asked.query.queryItemValue("client_id") == u"dynamic_agent_client"
                                   ? clientID
                                   : asked.query.queryItemValue("client_id", QUrl::FullyDecoded);
    const QString code = distinct("code", ++issued_);
    codes_.insert(code, Pending{asked.query.queryItemValue("code_challenge"),
                                asked.query.queryItemValue("nonce", QUrl::FullyDecoded), registered,
                                asked.query.queryItemValue("redirect_uri", QUrl::FullyDecoded)});
    QUrlQuery back;
    back.addQueryItem("code", code);
    back.addQueryItem("state", asked.query.queryItemValue("state", QUrl::FullyDecoded));
    back.addQueryItem("client_id", registered);
    if (editRedirect)
        editRedirect(back);
    QUrl target(asked.query.queryItemValue("redirect_uri", QUrl::FullyDecoded));
    target.setQuery(back);
    QHttpServerResponse response(QHttpServerResponse::StatusCode::Found);
    response.addHeader("Location", target.toEncoded());
    return response;
}

QHttpServerResponse FakeSignInService::issue(const QString &registered, const std::optional<QString> &nonce)
{
    ++issued_;
    accessToken_ = distinct("access", issued_);
    refreshToken_ = distinct("refresh", issued_);
    JSON answer = JSON::object({{"access_token", accessToken_},
                                {"refresh_token", refreshToken_},
                                {"expires_in", 3600},
                                {"scope", scope},
                                {"token_type", "Bearer"}});
    if (nonce) {
        JSON claims = JSON::object({{"iss", origin()},
                                    {"aud", registered},
                                    {"sub", subject},
                                    {"nonce", *nonce},
                                    {"exp", QDateTime::currentSecsSinceEpoch() + 3600}});
        if (email)
            claims.set("email", *email);
        if (editClaims)
            editClaims(claims);
        answer.set("id_token", sign(claims));
    }
    return json(answer);
}

QHttpServerResponse FakeSignInService::token(const QHttpServerRequest &request)
{
    const Request asked = record(request);
    if (tokenDelayMilliseconds > 0)
        QThread::msleep(tokenDelayMilliseconds);
    if (!tokenAnswers.empty()) {
        const auto [status, body] = tokenAnswers.front();
        tokenAnswers.pop_front();
        return QHttpServerResponse("application/json", body, QHttpServerResponse::StatusCode(status));
    }
    const QString grant = asked.form.value("grant_type");
    if (grant == u"authorization_code") {
        const Pending pending = codes_.take(asked.form.value("code"));
        const QString challenge = base64URL(
            QCryptographicHash::hash(asked.form.value("code_verifier").toLatin1(), QCryptographicHash::Sha256));
        if (pending.challenge.isEmpty() || pending.challenge != challenge ||
            pending.redirectURI != asked.form.value("redirect_uri") ||
            pending.clientID != asked.form.value("client_id"))
            return oauthError("invalid_grant");
        return issue(pending.clientID, pending.nonce);
    }
    if (grant == u"refresh_token") {
        const QString presented = asked.form.value("refresh_token");
        if (spentRefreshTokens_.contains(presented))
            return oauthError("refresh_token_reused");
        if (presented != refreshToken_)
            return oauthError("invalid_grant");
        spentRefreshTokens_.append(presented);
        return issue(asked.form.value("client_id"), std::nullopt);
    }
    return oauthError("unsupported_grant_type");
}

QHttpServerResponse FakeSignInService::revoke(const QHttpServerRequest &request)
{
    record(request);
    int status = 200;
    if (!revokeStatuses.empty()) {
        status = revokeStatuses.front();
        revokeStatuses.pop_front();
    }
    return QHttpServerResponse("application/json", "{}", QHttpServerResponse::StatusCode(status));
}

QHttpServerResponse FakeSignInService::models(const QHttpServerRequest &request)
{
    const Request &asked = record(request);
    if (asked.authorization != "Bearer " + accessToken_.toUtf8())
        return json(JSON::object({{"error", JSON::object({{"message", "bad token"}})}}),
                    QHttpServerResponse::StatusCode::Unauthorized);
    return QHttpServerResponse("application/json", modelsBody);
}

ChatGPTAccount FakeSignInService::account(const QDateTime &expiresAt)
{
    ++issued_;
    accessToken_ = distinct("access", issued_);
    refreshToken_ = distinct("refresh", issued_);
    ChatGPTAccount account;
    account.clientID = clientID;
    account.subject = subject;
    account.email = email;
    account.accessToken = accessToken_;
    account.refreshToken = refreshToken_;
    account.expiresAt = expiresAt;
    account.scopes = scope.split(u' ');
    account.scopes.sort();
    account.savedAt = QDateTime::currentDateTimeUtc();
    return account;
}

QString FakeSignInService::sign(const JSON &claims, const JSON &header) const
{
    const QByteArray message = (base64URL(header.encode()) + u'.' + base64URL(claims.encode())).toLatin1();
    EVP_MD_CTX *context = EVP_MD_CTX_new();
    size_t length = 0;
    EVP_DigestSignInit(context, nullptr, EVP_sha256(), nullptr, key_.get());
    EVP_DigestSign(context, nullptr, &length, reinterpret_cast<const unsigned char *>(message.constData()),
                   message.size());
    QByteArray signature(qsizetype(length), '\0');
    EVP_DigestSign(context, reinterpret_cast<unsigned char *>(signature.data()), &length,
                   reinterpret_cast<const unsigned char *>(message.constData()), message.size());
    EVP_MD_CTX_free(context);
    signature.resize(qsizetype(length));
    return QString::fromLatin1(message) + u'.' + base64URL(signature);
}

QByteArray FakeSignInService::jwks() const
{
    const JSON key = JSON::object({{"kty", "RSA"},
                                   {"kid", "test-key"},
                                   {"use", "sig"},
                                   {"n", base64URL(number(key_.get(), OSSL_PKEY_PARAM_RSA_N))},
                                   {"e", base64URL(number(key_.get(), OSSL_PKEY_PARAM_RSA_E))}});
    return JSON::object({{"keys", JSON::array({key})}}).encode();
}

FakeBrowser::FakeBrowser()
{
    network_.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "open");
    QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open");
}

FakeBrowser::~FakeBrowser()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("http"));
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
}

void FakeBrowser::open(const QUrl &url)
{
    opened.append(url);
    if (!follows)
        return;
    QNetworkReply *reply = network_.get(QNetworkRequest(url));
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        page = reply->readAll();
        reply->deleteLater();
    });
}

} // namespace zentoro::test
