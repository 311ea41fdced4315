#include "chatgpt/TokenEndpoint.h"

#include "chatgpt/Http.h"
#include "core/JSON.h"
#include "model_service/Failures.h"

#include <QStringDecoder>
#include <QUrl>

namespace zentoro::TokenEndpoint {

QString percentEncoded(const QString &value)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(value));
}

QString formBody(const QMap<QString, QString> &parameters)
{
    QStringList pairs;
    for (auto it = parameters.begin(); it != parameters.end(); ++it)
        pairs.append(it.key() + u'=' + percentEncoded(it.value()));
    return pairs.join(u'&');
}

ChatGPTTokens tokens(int status, const QByteArray &body)
{
    std::optional<JSON> document;
    try {
        document = JSON::decode(body);
    } catch (const JSON::Error &) {
    }
    if (status == 200 && document && document->objectValue()) {
        if (auto access = document->stringAt(QStringLiteral("access_token"))) {
            ChatGPTTokens tokens;
            tokens.accessToken = *access;
            tokens.refreshToken = document->stringAt(QStringLiteral("refresh_token"));
            tokens.idToken = document->stringAt(QStringLiteral("id_token"));
            tokens.expiresIn = document->numberAt(QStringLiteral("expires_in")).value_or(3600);
            tokens.scope = document->stringAt(QStringLiteral("scope"));
            return tokens;
        }
    }
    const JSON none;
    const JSON &answer = document ? *document : none;
    const JSON::Object *error = answer.objectAt(QStringLiteral("error"));
    const JSON errorObject = error ? JSON(*error) : JSON();
    QString code = QStringLiteral("HTTP %1").arg(status);
    if (auto text = answer.stringAt(QStringLiteral("error")))
        code = *text;
    else if (auto nested = errorObject.stringAt(QStringLiteral("code")))
        code = *nested;
    std::optional<QString> detail = answer.stringAt(QStringLiteral("error_description"));
    if (!detail)
        detail = errorObject.stringAt(QStringLiteral("message"));
    if (!detail && !document) {
        QStringDecoder decoder(QStringDecoder::Utf8);
        detail = QString(decoder(body.left(200)));
    }
    throw OAuthError(status, code, detail);
}

QCoro::Task<ChatGPTTokens> request(TaskHandle task, QUrl tokenURL, QMap<QString, QString> parameters)
{
    QNetworkRequest post(tokenURL);
    post.setRawHeader("Content-Type", "application/x-www-form-urlencoded");
    post.setRawHeader("Accept", "application/json");
    const Http::Reply reply = co_await Http::send(task, post, "POST", formBody(parameters).toUtf8());
    co_return tokens(reply.status, reply.body);
}

QCoro::Task<bool> revoke(QUrl revokeURL, QString token, QString clientID, std::chrono::milliseconds unit)
{
    QNetworkRequest post(revokeURL);
    post.setRawHeader("Content-Type", "application/x-www-form-urlencoded");
    const QByteArray body = formBody({{QStringLiteral("token"), token},
                                      {QStringLiteral("token_type_hint"), QStringLiteral("refresh_token")},
                                      {QStringLiteral("client_id"), clientID}})
                                .toUtf8();
    for (int attempt = 0; attempt < 3; ++attempt) {
        try {
            const Http::Reply reply = co_await Http::send(TaskHandle(), post, "POST", body);
            if (reply.status > 0 && reply.status < 500)
                co_return reply.status == 200;
        } catch (const NetworkError &) {
        }
        co_await sleep(TaskHandle(), unit * (1 << attempt));
    }
    co_return false;
}

} // namespace zentoro::TokenEndpoint
