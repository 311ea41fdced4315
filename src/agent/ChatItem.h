#pragma once

#include "core/JSON.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>

namespace zentoro {

// A labelled link under a row: the usage page of a plan that ran out.
struct ChatLink {
    QString title;
    QUrl url;

    JSON toJSON() const;
    // Raises JSON::Error when a key is missing or of another type.
    static ChatLink fromJSON(const JSON &json);
    bool operator==(const ChatLink &) const = default;
};

// One row of the visible transcript. Rows are for people: they are never sent to the model.
struct ChatItem {
    enum class Kind { User, Assistant, Tool, Event, Error };

    QUuid id = QUuid::createUuid();
    Kind kind = Kind::Event;
    QString text;
    std::optional<QString> detail;
    std::optional<QString> symbol;
    bool failed = false;
    std::optional<QString> imagePath;
    std::optional<ChatLink> link;

    static ChatItem make(Kind kind, QString text, std::optional<QString> symbol = std::nullopt);

    static QString kindText(Kind kind);
    static std::optional<Kind> kindFromText(const QString &text);

    JSON toJSON() const;
    // Raises JSON::Error for a missing required key, an unknown kind or a wrong type.
    static ChatItem fromJSON(const JSON &json);
    bool operator==(const ChatItem &) const = default;
};

// What one tool call gives back: the `output` for the model and the row for the transcript.
struct ToolResult {
    JSON output;
    ChatItem item;
    bool operator==(const ToolResult &) const = default;
};

// The canonical upper-case text of an identity, as stored and as shown to the model.
QString uuidText(const QUuid &id);

} // namespace zentoro
