#include "model_service/ServiceOrigin.h"

#include "core/Defaults.h"
#include "core/Failure.h"

#include <QUrl>

namespace zentoro::ServiceOrigin {

namespace {

const QString settingKey = QStringLiteral("apiBase");

QString withoutClosingSlashes(QString text)
{
    while (text.endsWith(u'/'))
        text.chop(1);
    return text;
}

std::optional<QString> nonBlank(const QString &text)
{
    const QString trimmed = withoutClosingSlashes(text.trimmed());
    if (trimmed.isEmpty())
        return std::nullopt;
    return trimmed;
}

} // namespace

std::optional<QString> environment()
{
    return nonBlank(qEnvironmentVariable("ZENTORO_API_BASE"));
}

std::optional<QString> saved()
{
    return nonBlank(Defaults::string(settingKey).value_or(QString()));
}

QString inUse()
{
    if (auto origin = environment())
        return *origin;
    return saved().value_or(QString::fromLatin1(standard));
}

QString normalized(const QString &text)
{
    const QString origin = withoutClosingSlashes(text.trimmed());
    const QUrl url(origin, QUrl::StrictMode);
    const bool web = url.scheme() == u"http" || url.scheme() == u"https";
    if (!url.isValid() || !web || url.host().isEmpty() || url.hasQuery() || url.hasFragment())
        throw Failure(
            QStringLiteral("“%1” isn't a server's address. Write it as http://host:port or https://host.").arg(origin));
    // Local servers document their base as ".../v1"; requests add that part themselves.
    if (url.path().endsWith(QStringLiteral("/v1")))
        throw Failure(QStringLiteral("Leave out the closing “/v1”: Zentoro adds /v1/responses itself."));
    return origin;
}

void save(const QString &text)
{
    if (text.trimmed().isEmpty()) {
        Defaults::remove(settingKey);
        return;
    }
    Defaults::setValue(settingKey, normalized(text));
}

} // namespace zentoro::ServiceOrigin
