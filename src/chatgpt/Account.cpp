#include "chatgpt/Account.h"

#include <QJsonDocument>
#include <QUuid>

#include <algorithm>

namespace zentoro {

namespace {

QString dateText(const QDateTime &date)
{
    return date.toUTC().toString(Qt::ISODate);
}

std::optional<QDateTime> dateAt(const JSON &object, const QString &key)
{
    const std::optional<QString> text = object.stringAt(key);
    if (!text)
        return std::nullopt;
    const QDateTime date = QDateTime::fromString(*text, Qt::ISODate);
    if (!date.isValid())
        throw JSON::Error("a date that doesn't read");
    return date.toUTC();
}

// An optional string must be a string when it is there at all.
std::optional<QString> optionalString(const JSON &object, const QString &key)
{
    const JSON *value = object.find(key);
    if (!value)
        return std::nullopt;
    if (!value->stringRef())
        throw JSON::Error("a field of another kind");
    return *value->stringRef();
}

QString requiredString(const JSON &object, const QString &key)
{
    if (auto text = optionalString(object, key))
        return *text;
    throw JSON::Error("a required field is missing");
}

void setOptional(JSON &object, const QString &key, const std::optional<QString> &value)
{
    if (value)
        object.set(key, *value);
}

JSON accountJSON(const ChatGPTAccount &account)
{
    JSON object = JSON::object(
        {{QStringLiteral("client_id"), account.clientID}, {QStringLiteral("subject"), account.subject}});
    setOptional(object, QStringLiteral("email"), account.email);
    setOptional(object, QStringLiteral("id_token"), account.idToken);
    setOptional(object, QStringLiteral("access_token"), account.accessToken);
    setOptional(object, QStringLiteral("refresh_token"), account.refreshToken);
    if (account.expiresAt)
        object.set(QStringLiteral("expires_at"), dateText(*account.expiresAt));
    JSON scopes = JSON::array();
    for (const QString &scope : account.scopes)
        scopes.append(scope);
    object.set(QStringLiteral("scopes"), scopes);
    if (account.savedAt)
        object.set(QStringLiteral("saved_at"), dateText(*account.savedAt));
    return object;
}

ChatGPTAccount accountFrom(const JSON &object)
{
    if (!object.objectValue())
        throw JSON::Error("an account that isn't an object");
    ChatGPTAccount account;
    account.clientID = requiredString(object, QStringLiteral("client_id"));
    account.subject = requiredString(object, QStringLiteral("subject"));
    account.email = optionalString(object, QStringLiteral("email"));
    account.idToken = optionalString(object, QStringLiteral("id_token"));
    account.accessToken = optionalString(object, QStringLiteral("access_token"));
    account.refreshToken = optionalString(object, QStringLiteral("refresh_token"));
    account.expiresAt = dateAt(object, QStringLiteral("expires_at"));
    account.savedAt = dateAt(object, QStringLiteral("saved_at"));
    const JSON::Array *scopes = object.arrayAt(QStringLiteral("scopes"));
    if (!scopes)
        throw JSON::Error("an account without scopes");
    for (const JSON &scope : *scopes) {
        if (!scope.stringRef())
            throw JSON::Error("a scope that isn't text");
        account.scopes.append(*scope.stringRef());
    }
    return account;
}

} // namespace

QString ChatGPTAccount::label() const
{
    if (email)
        return *email;
    return QStringLiteral("ChatGPT account %1").arg(clientID.right(6));
}

bool ChatGPTAccount::hasAccessTokenBeyondMargin(const QDateTime &now) const
{
    return accessToken && expiresAt && now.secsTo(*expiresAt) > refreshMarginSeconds;
}

bool ChatGPTAccount::canAct(const QDateTime &now) const
{
    return refreshToken.has_value() || hasAccessTokenBeyondMargin(now);
}

void ChatGPTAccount::apply(const ChatGPTTokens &tokens, const QDateTime &now)
{
    accessToken = tokens.accessToken;
    if (tokens.refreshToken)
        refreshToken = tokens.refreshToken;
    expiresAt = now.addMSecs(qint64(tokens.expiresIn * 1000));
    if (tokens.scope) {
        QStringList names = tokens.scope->split(u' ', Qt::SkipEmptyParts);
        std::sort(names.begin(), names.end());
        scopes = names;
    }
    savedAt = now;
}

void ChatGPTAccount::clearTokens()
{
    idToken.reset();
    accessToken.reset();
    refreshToken.reset();
    expiresAt.reset();
}

ChatGPTCredentials ChatGPTCredentials::fresh()
{
    return ChatGPTCredentials{
        QStringLiteral("urn:uuid:") + QUuid::createUuid().toString(QUuid::WithoutBraces).toLower(), std::nullopt, {}};
}

QByteArray ChatGPTCredentials::encode() const
{
    JSON object = JSON::object({{QStringLiteral("ext_agent_host_id"), hostID}});
    setOptional(object, QStringLiteral("active"), active);
    JSON list = JSON::array();
    for (const ChatGPTAccount &account : accounts)
        list.append(accountJSON(account));
    object.set(QStringLiteral("accounts"), list);
    return QJsonDocument::fromJson(object.encode()).toJson(QJsonDocument::Indented);
}

std::optional<ChatGPTCredentials> ChatGPTCredentials::decode(const QByteArray &bytes)
{
    try {
        const JSON document = JSON::decode(bytes);
        ChatGPTCredentials credentials;
        credentials.hostID = requiredString(document, QStringLiteral("ext_agent_host_id"));
        credentials.active = optionalString(document, QStringLiteral("active"));
        const JSON::Array *accounts = document.arrayAt(QStringLiteral("accounts"));
        if (!accounts)
            return std::nullopt;
        for (const JSON &account : *accounts)
            credentials.accounts.append(accountFrom(account));
        return credentials;
    } catch (const JSON::Error &) {
        return std::nullopt;
    }
}

ChatGPTAccount *ChatGPTCredentials::account(const QString &clientID)
{
    for (ChatGPTAccount &account : accounts) {
        if (account.clientID == clientID)
            return &account;
    }
    return nullptr;
}

QString OAuthError::errorDescription() const
{
    if (detail)
        return QStringLiteral("ChatGPT sign-in failed (%1: %2).").arg(code, *detail);
    return QStringLiteral("ChatGPT sign-in failed (%1).").arg(code);
}

} // namespace zentoro
