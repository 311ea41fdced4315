#pragma once

#include "chatgpt/Account.h"

#include <QByteArray>
#include <QMap>
#include <QString>

#include <optional>

// The pieces of one sign-in that need no network: the values made for it, the authorize
// query, and the checks of the browser's redirect.
namespace zentoro::SignInRequest {

inline constexpr auto scopes = "openid profile email offline_access resource.invoke chatgpt.tokens.use.direct";
inline constexpr auto dynamicClient = "dynamic_agent_client";

// `n` bytes of the system's secure random source in base64url without padding.
QString random(int n);
// The PKCE challenge of `verifier`: its SHA-256 in base64url without padding.
QString challenge(const QString &verifier);

struct Values {
    QString redirectURI;
    QString state;
    QString nonce;
    QString verifier;
    QString hostID;
    QString resource;
};

// The authorize URL's query, in the service's order; with `account` the sign-in goes back into
// that registration, without one it asks the service to register Zentoro.
QString query(const Values &values, const std::optional<ChatGPTAccount> &account, bool consent);

// The client identifier the redirect finished under; raises Failure with the words for the
// first check that fails.
QString checkRedirect(const QMap<QString, QString> &redirect, const QString &state,
                      const std::optional<ChatGPTAccount> &account);

} // namespace zentoro::SignInRequest
