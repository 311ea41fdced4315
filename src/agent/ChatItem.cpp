#include "agent/ChatItem.h"

namespace zentoro {

namespace {

const JSON &required(const JSON &json, const QString &key)
{
    const JSON *value = json.find(key);
    if (!value)
        throw JSON::Error(("Missing key " + key).toStdString());
    return *value;
}

QString requiredString(const JSON &json, const QString &key)
{
    auto text = required(json, key).stringValue();
    if (!text)
        throw JSON::Error(("Key " + key + " isn't text").toStdString());
    return *text;
}

// A missing or null optional key reads as absent; any other case is an error.
std::optional<QString> optionalString(const JSON &json, const QString &key)
{
    const JSON *value = json.find(key);
    if (!value || value->isNull())
        return std::nullopt;
    auto text = value->stringValue();
    if (!text)
        throw JSON::Error(("Key " + key + " isn't text").toStdString());
    return text;
}

} // namespace

QString uuidText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

JSON ChatLink::toJSON() const
{
    return JSON::object({{"title", title}, {"url", url.toString(QUrl::FullyEncoded)}});
}

ChatLink ChatLink::fromJSON(const JSON &json)
{
    if (!json.objectValue())
        throw JSON::Error("A link isn't an object");
    const QUrl url(requiredString(json, "url"), QUrl::StrictMode);
    if (!url.isValid())
        throw JSON::Error("A link's url isn't a URL");
    return ChatLink{requiredString(json, "title"), url};
}

ChatItem ChatItem::make(Kind kind, QString text, std::optional<QString> symbol)
{
    ChatItem item;
    item.kind = kind;
    item.text = std::move(text);
    item.symbol = std::move(symbol);
    return item;
}

QString ChatItem::kindText(Kind kind)
{
    switch (kind) {
    case Kind::User: return QStringLiteral("user");
    case Kind::Assistant: return QStringLiteral("assistant");
    case Kind::Tool: return QStringLiteral("tool");
    case Kind::Event: return QStringLiteral("event");
    case Kind::Error: return QStringLiteral("error");
    }
    return {};
}

std::optional<ChatItem::Kind> ChatItem::kindFromText(const QString &text)
{
    for (Kind kind : {Kind::User, Kind::Assistant, Kind::Tool, Kind::Event, Kind::Error}) {
        if (kindText(kind) == text)
            return kind;
    }
    return std::nullopt;
}

JSON ChatItem::toJSON() const
{
    JSON json = JSON::object({{"id", uuidText(id)}, {"kind", kindText(kind)}, {"text", text}, {"failed", failed}});
    if (detail)
        json.set("detail", *detail);
    if (symbol)
        json.set("symbol", *symbol);
    if (imagePath)
        json.set("imagePath", *imagePath);
    if (link)
        json.set("link", link->toJSON());
    return json;
}

ChatItem ChatItem::fromJSON(const JSON &json)
{
    if (!json.objectValue())
        throw JSON::Error("A row isn't an object");
    ChatItem item;
    item.id = QUuid::fromString(requiredString(json, "id"));
    if (item.id.isNull())
        throw JSON::Error("A row's id isn't a UUID");
    const auto kind = kindFromText(requiredString(json, "kind"));
    if (!kind)
        throw JSON::Error("A row's kind is unknown");
    item.kind = *kind;
    item.text = requiredString(json, "text");
    item.detail = optionalString(json, "detail");
    item.symbol = optionalString(json, "symbol");
    const auto failed = required(json, "failed").boolValue();
    if (!failed)
        throw JSON::Error("A row's failed isn't a Boolean");
    item.failed = *failed;
    item.imagePath = optionalString(json, "imagePath");
    if (const JSON *link = json.find("link"); link && !link->isNull())
        item.link = ChatLink::fromJSON(*link);
    return item;
}

} // namespace zentoro
