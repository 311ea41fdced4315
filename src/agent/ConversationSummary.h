#pragma once

#include "agent/ChatItem.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace zentoro {

// An entry of the conversation menu.
struct ConversationSummary {
    QUuid id;
    QString title;
    QDateTime updated;
    bool isEmpty = true;

    // From a stored conversation's parts; `fallbackID` stands in where it has no id, and
    // a missing date sorts last.
    static ConversationSummary make(const std::optional<QUuid> &id, const QList<ChatItem> &items,
                                    const std::optional<QDateTime> &updated, const QUuid &fallbackID);
    // The menu title: the first line with text of the first user message, at most 60 characters.
    static QString titleFor(const QList<ChatItem> &items);
    // Earlier than any real date.
    static QDateTime distantPast();
    bool operator==(const ConversationSummary &) const = default;
};

} // namespace zentoro
