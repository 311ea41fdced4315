#pragma once

#include "core/DescribedError.h"
#include "core/JSON.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace zentoro {

// The scope that lets an access token pay for model requests.
inline constexpr auto planScope = "chatgpt.tokens.use.direct";
// A token counts as good only while it has more than this many seconds left.
inline constexpr int refreshMarginSeconds = 300;

// The decoded answer of the token endpoint.
struct ChatGPTTokens {
    QString accessToken;
    std::optional<QString> refreshToken;
    std::optional<QString> idToken;
    double expiresIn = 3600;
    std::optional<QString> scope;

    bool operator==(const ChatGPTTokens &) const = default;
};

// One signed-in registration, known by the client identifier the sign-in service issued. It
// stays listed after a sign-out, without its tokens, so it can be signed into again.
struct ChatGPTAccount {
    QString clientID;
    QString subject;
    std::optional<QString> email;
    std::optional<QString> idToken;
    std::optional<QString> accessToken;
    std::optional<QString> refreshToken;
    std::optional<QDateTime> expiresAt;
    QStringList scopes;
    std::optional<QDateTime> savedAt;

    // The email, else "ChatGPT account <last 6 characters of the client identifier>".
    QString label() const;
    // Has a refresh token, or an access token good for more than the margin at `now`.
    bool canAct(const QDateTime &now) const;
    bool hasAccessTokenBeyondMargin(const QDateTime &now) const;
    bool allowsPlan() const { return scopes.contains(QLatin1String(planScope)); }
    // Brings the record up to date with a token answer received at `now`; the ID token stays.
    void apply(const ChatGPTTokens &tokens, const QDateTime &now);
    // Forgets all four tokens: the sign-in has ended.
    void clearTokens();

    bool operator==(const ChatGPTAccount &) const = default;
};

// The content of "chatgpt.json": this installation's identifier towards the sign-in service,
// the active record and every record, the latest sign-in last.
struct ChatGPTCredentials {
    QString hostID;
    std::optional<QString> active;
    QList<ChatGPTAccount> accounts;

    // A fresh installation's: a new "urn:uuid:" identifier in lower case, nothing else.
    static ChatGPTCredentials fresh();
    // Indented, keys sorted, dates with whole seconds in UTC and a final Z.
    QByteArray encode() const;
    // Absent when the text isn't a whole credentials file.
    static std::optional<ChatGPTCredentials> decode(const QByteArray &bytes);

    ChatGPTAccount *account(const QString &clientID);

    bool operator==(const ChatGPTCredentials &) const = default;
};

// A refused token request.
struct OAuthError : DescribedError {
    int status = 0;
    QString code;
    std::optional<QString> detail;

    OAuthError(int status, QString code, std::optional<QString> detail)
        : status(status), code(std::move(code)), detail(std::move(detail))
    {
    }
    QString errorDescription() const override;
};

} // namespace zentoro
