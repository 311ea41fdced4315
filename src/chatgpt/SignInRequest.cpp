#include "chatgpt/SignInRequest.h"

#include "chatgpt/TokenEndpoint.h"
#include "core/Failure.h"

#include <QCryptographicHash>
#include <QRandomGenerator>

namespace zentoro::SignInRequest {

namespace {

QString base64URL(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

} // namespace

QString random(int n)
{
    QByteArray bytes(n, Qt::Uninitialized);
    QRandomGenerator::system()->generate(bytes.begin(), bytes.end());
    return base64URL(bytes);
}

QString challenge(const QString &verifier)
{
    return base64URL(QCryptographicHash::hash(verifier.toLatin1(), QCryptographicHash::Sha256));
}

QString query(const Values &values, const std::optional<ChatGPTAccount> &account, bool consent)
{
    QList<std::pair<QString, QString>> parameters{
        {QStringLiteral("client_id"), account ? account->clientID : QString::fromLatin1(dynamicClient)},
        {QStringLiteral("response_type"), QStringLiteral("code")},
        {QStringLiteral("redirect_uri"), values.redirectURI},
        {QStringLiteral("scope"), QString::fromLatin1(scopes)},
        {QStringLiteral("resource"), values.resource},
        {QStringLiteral("state"), values.state},
        {QStringLiteral("nonce"), values.nonce},
        {QStringLiteral("code_challenge_method"), QStringLiteral("S256")},
        {QStringLiteral("code_challenge"), challenge(values.verifier)},
        {QStringLiteral("ext_agent_host_id"), values.hostID},
    };
    if (!account)
        parameters.append({QStringLiteral("agent_name_hint"), QStringLiteral("Zentoro")});
    if (account && account->idToken)
        parameters.append({QStringLiteral("id_token_hint"), *account->idToken});
    if (account && account->email)
        parameters.append({QStringLiteral("login_hint"), *account->email});
    if (consent)
        parameters.append({QStringLiteral("prompt"), QStringLiteral("consent")});
    QStringList pairs;
    for (const auto &[name, value] : parameters)
        pairs.append(name + u'=' + TokenEndpoint::percentEncoded(value));
    return pairs.join(u'&');
}

QString checkRedirect(const QMap<QString, QString> &redirect, const QString &state,
                      const std::optional<ChatGPTAccount> &account)
{
    const QString stateKey = QStringLiteral("state");
    if (!redirect.contains(stateKey) || redirect.value(stateKey) != state)
        throw Failure(QStringLiteral("The sign-in didn't match the one Zentoro started. Try again."));
    if (redirect.contains(QStringLiteral("error"))) {
        const QString error = redirect.value(QStringLiteral("error"));
        if (error == u"access_denied")
            throw Failure(QStringLiteral("You didn't allow Zentoro to use your ChatGPT plan. You can still add an "
                                         "OpenAI API key."));
        const QString description = redirect.value(QStringLiteral("error_description"), error);
        throw Failure(QStringLiteral("ChatGPT sign-in failed: %1").arg(description));
    }
    const std::optional<QString> clientID = redirect.contains(QStringLiteral("client_id"))
                                                ? std::optional(redirect.value(QStringLiteral("client_id")))
                                                : std::nullopt;
    QString finished;
    if (account) {
        if (clientID && *clientID != account->clientID)
            throw Failure(QStringLiteral("ChatGPT answered for a different registration than %1. Try again, or "
                                         "choose Add Another Account.")
                              .arg(account->label()));
        finished = account->clientID;
    } else {
        if (!clientID || clientID->isEmpty() || *clientID == QLatin1String(dynamicClient))
            throw Failure(QStringLiteral("ChatGPT didn't finish registering Zentoro. Try again."));
        finished = *clientID;
    }
    if (redirect.value(QStringLiteral("code")).isEmpty())
        throw Failure(QStringLiteral("ChatGPT didn't send a sign-in code. Try again."));
    return finished;
}

} // namespace zentoro::SignInRequest
