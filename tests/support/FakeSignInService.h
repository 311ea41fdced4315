#pragma once

#include "chatgpt/Account.h"
#include "chatgpt/Endpoints.h"
#include "core/JSON.h"

#include <QDateTime>
#include <QHttpServer>
#include <QMap>
#include <QNetworkAccessManager>
#include <QObject>
#include <QUrl>
#include <QUrlQuery>

#include <deque>
#include <functional>
#include <memory>
#include <optional>

typedef struct evp_pkey_st EVP_PKEY;

namespace zentoro::test {

// A fake of the sign-in service: real HTTP on 127.0.0.1 with its own RSA key and key set. It
// registers the agent, redirects the browser back with a code, exchanges codes (checking PKCE),
// rotates refresh tokens and refuses a reused one, revokes, and lists the plan's models.
class FakeSignInService {
public:
    struct Request {
        QByteArray path;
        QMap<QString, QString> form;
        QUrlQuery query;
        QByteArray authorization;
    };

    FakeSignInService();
    ~FakeSignInService();
    FakeSignInService(const FakeSignInService &) = delete;
    FakeSignInService &operator=(const FakeSignInService &) = delete;

    QString origin() const;
    // Sign-in and usage at this service; the model service at `api`, else here too.
    ChatGPTEndpoints endpoints(const QString &api = {}) const;

    // What the service answers.
    QString clientID = QStringLiteral("app_registered42");
    QString subject = QStringLiteral("user-1");
    std::optional<QString> email = QStringLiteral("ada@example.com");
    QString scope = QStringLiteral("openid profile email offline_access resource.invoke chatgpt.tokens.use.direct");
    // Changes the redirect's query before the browser is sent back.
    std::function<void(QUrlQuery &)> editRedirect;
    // Changes the ID token's claims before it is signed.
    std::function<void(JSON &)> editClaims;
    // Answers the token endpoint gives before its own, in turn.
    std::deque<std::pair<int, QByteArray>> tokenAnswers;
    int tokenDelayMilliseconds = 0;
    // Each revocation's status in turn; 200 once they run out.
    std::deque<int> revokeStatuses;
    std::optional<QByteArray> jwksBody;
    QByteArray modelsBody = R"({"models":[{"slug":"gpt-plan","display_name":"Plan Model"}]})";

    const QList<Request> &requests() const { return requests_; }
    int count(const QByteArray &path) const;
    // The tokens the service handed out last; the refresh token is the one it still honours.
    QString accessToken() const { return accessToken_; }
    QString refreshToken() const { return refreshToken_; }

    // A signed-in record as this service would have left it, its access token good until
    // `expiresAt`; the service honours its refresh token.
    ChatGPTAccount account(const QDateTime &expiresAt);
    // An RS256 token of `claims` under this service's key.
    QString sign(const JSON &claims, const JSON &header = JSON::object({{"alg", "RS256"}, {"kid", "test-key"}})) const;
    QByteArray jwks() const;

private:
    struct Pending {
        QString challenge;
        QString nonce;
        QString clientID;
        QString redirectURI;
    };
    QHttpServerResponse authorize(const QHttpServerRequest &request);
    QHttpServerResponse token(const QHttpServerRequest &request);
    QHttpServerResponse revoke(const QHttpServerRequest &request);
    QHttpServerResponse models(const QHttpServerRequest &request);
    QHttpServerResponse issue(const QString &clientID, const std::optional<QString> &nonce);
    Request &record(const QHttpServerRequest &request);

    QHttpServer server_;
    quint16 port_ = 0;
    std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY *)> key_;
    QMap<QString, Pending> codes_;
    QList<Request> requests_;
    QString accessToken_;
    QString refreshToken_;
    QStringList spentRefreshTokens_;
    int issued_ = 0;
};

// A browser for `QDesktopServices::openUrl`: it follows each http(s) URL it is given, redirects
// included, and keeps what it was shown. Only one exists at a time.
class FakeBrowser : public QObject {
    Q_OBJECT
public:
    FakeBrowser();
    ~FakeBrowser() override;

    QList<QUrl> opened;
    // The last page's status and body.
    int status = 0;
    QByteArray page;
    // When false the browser only notes the URL, as a user who never finishes would.
    bool follows = true;

public slots:
    void open(const QUrl &url);

private:
    QNetworkAccessManager network_;
};

} // namespace zentoro::test
