#pragma once

#include "chatgpt/Account.h"
#include "core/MainTask.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QUrl>

#include <QCoroTask>

#include <chrono>

// The sign-in service's token and revocation endpoints.
namespace zentoro::TokenEndpoint {

// A value percent-encoded so that only A-Z, a-z, 0-9, "-", ".", "_" and "~" stand as they are.
QString percentEncoded(const QString &value);
// "key=value" pairs in ascending order of key, values percent-encoded, joined by "&".
QString formBody(const QMap<QString, QString> &parameters);

// The tokens in a token endpoint's answer; raises OAuthError for anything but a 200 with an
// access token.
ChatGPTTokens tokens(int status, const QByteArray &body);

// Posts `parameters` to `tokenURL`. Raises OAuthError, or NetworkError for a transport failure.
QCoro::Task<ChatGPTTokens> request(TaskHandle task, QUrl tokenURL, QMap<QString, QString> parameters);

// Asks the service to forget `token`, trying three times with waits of 1, 2 and 4 `unit`s after
// a transport failure or a server error. True when the service confirmed it; never raises.
QCoro::Task<bool> revoke(QUrl revokeURL, QString token, QString clientID,
                         std::chrono::milliseconds unit = std::chrono::seconds(1));

} // namespace zentoro::TokenEndpoint
