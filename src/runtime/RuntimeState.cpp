#include "runtime/RuntimeState.h"

#include "core/AtomicFile.h"
#include "core/JSON.h"

#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTimeZone>

#include <cmath>

namespace zentoro {

namespace {

QString formatDate(const QDateTime &date)
{
    return date.toUTC().toString(Qt::ISODate);
}

// Whole seconds with "Z" or an offset; anything else fails the file.
std::optional<QDateTime> parseDate(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^\\d{4}-\\d{2}-\\d{2}T\\d{2}:\\d{2}:\\d{2}(Z|[+-]\\d{2}:\\d{2})$"));
    if (!form.match(text).hasMatch())
        return std::nullopt;
    const QDateTime date = QDateTime::fromString(text, Qt::ISODate);
    if (!date.isValid())
        return std::nullopt;
    return date.toUTC();
}

std::optional<int> integer(const JSON *value)
{
    if (!value)
        return std::nullopt;
    const std::optional<double> number = value->numberValue();
    if (!number || std::trunc(*number) != *number || std::abs(*number) > 2147483647.0)
        return std::nullopt;
    return static_cast<int>(*number);
}

// An optional key that is present must be an integer.
bool optionalInteger(const JSON &object, const QString &key, std::optional<int> &into)
{
    const JSON *value = object.find(key);
    if (!value || value->isNull())
        return true;
    into = integer(value);
    return into.has_value();
}

std::optional<VersionRecord> decodeRecord(const JSON &object)
{
    const std::optional<bool> crashed = object.boolAt(QStringLiteral("crashed"));
    const std::optional<QString> date = object.stringAt(QStringLiteral("date"));
    const std::optional<int> number = integer(object.find(QStringLiteral("number")));
    const std::optional<QString> summary = object.stringAt(QStringLiteral("summary"));
    if (!crashed || !date || !number || !summary)
        return std::nullopt;
    const std::optional<QDateTime> parsed = parseDate(*date);
    if (!parsed)
        return std::nullopt;
    return VersionRecord{*number, *parsed, *summary, *crashed};
}

} // namespace

const VersionRecord *RuntimeState::record(int number) const
{
    for (const VersionRecord &record : versions) {
        if (record.number == number)
            return &record;
    }
    return nullptr;
}

void RuntimeState::markCrashed(int number)
{
    for (VersionRecord &record : versions) {
        if (record.number == number)
            record.crashed = true;
    }
}

QByteArray RuntimeState::encode() const
{
    JSON records = JSON::array();
    for (const VersionRecord &record : versions) {
        records.append(JSON::object({{QStringLiteral("crashed"), record.crashed},
                                     {QStringLiteral("date"), formatDate(record.date)},
                                     {QStringLiteral("number"), record.number},
                                     {QStringLiteral("summary"), record.summary}}));
    }
    JSON object = JSON::object({{QStringLiteral("nextNumber"), nextNumber}, {QStringLiteral("versions"), records}});
    if (current)
        object.set(QStringLiteral("current"), *current);
    if (lastGood)
        object.set(QStringLiteral("lastGood"), *lastGood);
    if (loading)
        object.set(QStringLiteral("loading"), *loading);
    // Qt's document keeps the sorted order and only adds the indentation for people.
    return QJsonDocument::fromJson(object.encode()).toJson(QJsonDocument::Indented);
}

std::optional<RuntimeState> RuntimeState::decode(const QByteArray &bytes)
{
    JSON object;
    try {
        object = JSON::decode(bytes);
    } catch (const JSON::Error &) {
        return std::nullopt;
    }
    RuntimeState state;
    const std::optional<int> next = integer(object.find(QStringLiteral("nextNumber")));
    const JSON::Array *records = object.arrayAt(QStringLiteral("versions"));
    if (!object.objectValue() || !next || !records)
        return std::nullopt;
    state.nextNumber = *next;
    if (!optionalInteger(object, QStringLiteral("current"), state.current) ||
        !optionalInteger(object, QStringLiteral("lastGood"), state.lastGood) ||
        !optionalInteger(object, QStringLiteral("loading"), state.loading))
        return std::nullopt;
    for (const JSON &element : *records) {
        std::optional<VersionRecord> record = decodeRecord(element);
        if (!record)
            return std::nullopt;
        state.versions.append(*record);
    }
    return state;
}

RuntimeState RuntimeState::read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return decode(file.readAll()).value_or(RuntimeState{});
}

RuntimeState RuntimeState::readKeepingUnreadable(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return {};
    if (file.open(QIODevice::ReadOnly)) {
        if (std::optional<RuntimeState> state = decode(file.readAll()))
            return *state;
        file.close();
    }
    const QString aside = path + QStringLiteral(".unreadable");
    QFile::remove(aside);
    QFile::rename(path, aside);
    return {};
}

std::optional<QString> RuntimeState::write(const QString &path) const
{
    return AtomicFile::write(path, encode());
}

} // namespace zentoro
