#pragma once

#include <QString>
#include <QUrl>

namespace zentoro {

// Where the sign-in service, the ChatGPT web service and the model service are. Settings of
// the build, overridden at run time by ZENTORO_AUTH_BASE, ZENTORO_CHATGPT_BASE and
// ZENTORO_API_BASE (for tests and local servers).
struct ChatGPTEndpoints {
    // Origins without a trailing slash.
    QString auth;
    QString chatgpt;
    QString api;

    static ChatGPTEndpoints standard();

    QUrl authorizeURL() const { return QUrl(auth + QStringLiteral("/api/accounts/authorize")); }
    QUrl tokenURL() const { return QUrl(auth + QStringLiteral("/api/accounts/oauth/token")); }
    QUrl revokeURL() const { return QUrl(auth + QStringLiteral("/api/accounts/oauth/revoke")); }
    QUrl jwksURL() const { return QUrl(auth + QStringLiteral("/.well-known/jwks.json")); }
    QUrl usageURL() const { return QUrl(chatgpt + QStringLiteral("/settings/usage")); }
    QUrl modelsURL() const { return QUrl(api + QStringLiteral("/v1/models")); }
    // As the service writes `iss` in its tokens.
    QString issuer() const { return auth; }
    // The model service, which the plan's tokens are for.
    QString resource() const { return api + QStringLiteral("/v1"); }

    bool operator==(const ChatGPTEndpoints &) const = default;
};

} // namespace zentoro
