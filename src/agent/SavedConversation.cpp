#include "agent/SavedConversation.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTimeZone>

#include <cmath>

namespace zentoro {

namespace {

// 2001-01-01 00:00:00 UTC in milliseconds since 1970.
constexpr qint64 referenceEpochMSecs = 978307200000;
// Beyond about 285,000 years either way a date no longer fits in milliseconds.
constexpr double largestReferenceSeconds = 9e12;

[[noreturn]] void wrong(const QString &key)
{
    throw JSON::Error(("Key " + key + " has the wrong type").toStdString());
}

const JSON &required(const JSON &json, const QString &key)
{
    const JSON *value = json.find(key);
    if (!value)
        throw JSON::Error(("Missing key " + key).toStdString());
    return *value;
}

// A key that may be left out: missing and null both read as absent.
const JSON *optional(const JSON &json, const QString &key)
{
    const JSON *value = json.find(key);
    return value && !value->isNull() ? value : nullptr;
}

std::optional<QString> optionalString(const JSON &json, const QString &key)
{
    const JSON *value = optional(json, key);
    if (!value)
        return std::nullopt;
    auto text = value->stringValue();
    if (!text)
        wrong(key);
    return text;
}

std::optional<QDateTime> optionalDate(const JSON &json, const QString &key)
{
    const JSON *value = optional(json, key);
    if (!value)
        return std::nullopt;
    const auto seconds = value->numberValue();
    if (!seconds)
        wrong(key);
    auto date = dateFromReferenceSeconds(*seconds);
    if (!date)
        wrong(key);
    return date;
}

const JSON::Array &arrayOf(const JSON &value, const QString &key)
{
    const JSON::Array *array = value.arrayValue();
    if (!array)
        wrong(key);
    return *array;
}

QList<JSON> values(const JSON &value, const QString &key)
{
    const JSON::Array &array = arrayOf(value, key);
    return QList<JSON>(array.begin(), array.end());
}

QStringList texts(const JSON &value, const QString &key)
{
    QStringList result;
    for (const JSON &element : arrayOf(value, key)) {
        auto text = element.stringValue();
        if (!text)
            wrong(key);
        result.append(*text);
    }
    return result;
}

JSON arrayJSON(const QList<JSON> &list)
{
    return JSON(JSON::Array(list.begin(), list.end()));
}

JSON arrayJSON(const QStringList &list)
{
    JSON::Array array;
    array.reserve(list.size());
    for (const QString &text : list)
        array.emplace_back(text);
    return JSON(std::move(array));
}

} // namespace

double referenceSeconds(const QDateTime &date)
{
    return double(date.toMSecsSinceEpoch() - referenceEpochMSecs) / 1000.0;
}

std::optional<QDateTime> dateFromReferenceSeconds(double seconds)
{
    if (!std::isfinite(seconds) || std::fabs(seconds) > largestReferenceSeconds)
        return std::nullopt;
    return QDateTime::fromMSecsSinceEpoch(std::llround(seconds * 1000.0) + referenceEpochMSecs, QTimeZone::utc());
}

std::optional<QUuid> uuidFromText(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^[0-9A-Fa-f]{8}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{12}$"));
    if (!form.match(text).hasMatch())
        return std::nullopt;
    return QUuid::fromString(text);
}

JSON SavedConversation::toJSON() const
{
    JSON::Array rows;
    rows.reserve(items.size());
    for (const ChatItem &item : items)
        rows.push_back(item.toJSON());
    const QDateTime now = QDateTime::currentDateTimeUtc();
    JSON json = JSON::object({
        {"id", uuidText(id.value_or(QUuid::createUuid()))},
        {"created", JSON::number(referenceSeconds(created.value_or(now)))},
        {"updated", JSON::number(referenceSeconds(updated.value_or(now)))},
        {"items", JSON(std::move(rows))},
        {"pendingInput", arrayJSON(pendingInput)},
        {"notes", arrayJSON(notes)},
        {"unansweredCalls", arrayJSON(unansweredCalls)},
        {"currentRequest", currentRequest},
        {"history", arrayJSON(history)},
    });
    if (previousResponseID)
        json.set("previousResponseID", *previousResponseID);
    if (restartCallID)
        json.set("restartCallID", *restartCallID);
    return json;
}

QByteArray SavedConversation::encode() const
{
    return toJSON().encode();
}

SavedConversation SavedConversation::fromJSON(const JSON &json)
{
    if (!json.objectValue())
        throw JSON::Error("A conversation isn't an object");
    SavedConversation saved;
    if (auto id = optionalString(json, "id")) {
        saved.id = uuidFromText(*id);
        if (!saved.id)
            wrong("id");
    }
    saved.created = optionalDate(json, "created");
    saved.updated = optionalDate(json, "updated");
    for (const JSON &row : arrayOf(required(json, "items"), "items"))
        saved.items.append(ChatItem::fromJSON(row));
    saved.previousResponseID = optionalString(json, "previousResponseID");
    saved.pendingInput = values(required(json, "pendingInput"), "pendingInput");
    saved.notes = texts(required(json, "notes"), "notes");
    saved.restartCallID = optionalString(json, "restartCallID");
    if (const JSON *calls = optional(json, "unansweredCalls"))
        saved.unansweredCalls = texts(*calls, "unansweredCalls");
    saved.currentRequest = optionalString(json, "currentRequest").value_or(QString());
    if (const JSON *history = optional(json, "history"))
        saved.history = values(*history, "history");
    return saved;
}

std::optional<SavedConversation> SavedConversation::read(const QString &path)
{
    // Anything but a plain file (a pipe, for one) could block the reader.
    if (!QFileInfo(path).isFile())
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    // Decoded straight from the mapped file: a long conversation is held once, as values,
    // never a second time as its text.
    const qint64 size = file.size();
    const uchar *mapped = size > 0 ? file.map(0, size) : nullptr;
    const QByteArray bytes = mapped ? QByteArray() : file.readAll();
    try {
        return fromJSON(JSON::decode(mapped ? QByteArrayView(mapped, size) : QByteArrayView(bytes)));
    } catch (const JSON::Error &) {
        return std::nullopt;
    }
}

ConversationSummary SavedConversation::summary(const QUuid &fallbackID) const
{
    return ConversationSummary::make(id, items, updated, fallbackID);
}

} // namespace zentoro
