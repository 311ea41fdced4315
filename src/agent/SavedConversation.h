#pragma once

#include "agent/ChatItem.h"
#include "agent/ConversationSummary.h"
#include "core/JSON.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <optional>

namespace zentoro {

// One conversation as it stands on disk: "Conversations/<id>.json" under a copy's root.
// Keys are the field names; dates are seconds since 2001-01-01 00:00:00 UTC.
struct SavedConversation {
    std::optional<QUuid> id;
    std::optional<QDateTime> created;
    std::optional<QDateTime> updated;
    QList<ChatItem> items;
    std::optional<QString> previousResponseID;
    QList<JSON> pendingInput;
    QStringList notes;
    std::optional<QString> restartCallID;
    QStringList unansweredCalls;
    QString currentRequest;
    QList<JSON> history;

    // Every key but the two that have no value; never a null.
    JSON toJSON() const;
    QByteArray encode() const;
    // Raises JSON::Error when a required key is missing or any value has another type.
    // Keys it doesn't know are passed over.
    static SavedConversation fromJSON(const JSON &json);
    // None when the file can't be read or doesn't decode.
    static std::optional<SavedConversation> read(const QString &path);

    // The menu entry; `fallbackID` stands in when the file has no id of its own.
    ConversationSummary summary(const QUuid &fallbackID) const;

    bool operator==(const SavedConversation &) const = default;
};

// Dates in conversation files: a double of seconds since 2001-01-01 00:00:00 UTC.
double referenceSeconds(const QDateTime &date);
// None for a number too far out for a date to hold.
std::optional<QDateTime> dateFromReferenceSeconds(double seconds);

// A UUID written as 36 characters with hyphens, in either case; none for anything else.
std::optional<QUuid> uuidFromText(const QString &text);

} // namespace zentoro
