#include "agent/ConversationSummary.h"

#include "core/Text.h"

#include <QTimeZone>

namespace zentoro {

QDateTime ConversationSummary::distantPast()
{
    return QDateTime(QDate(1, 1, 1), QTime(0, 0), QTimeZone::utc());
}

QString ConversationSummary::titleFor(const QList<ChatItem> &items)
{
    QString source = QStringLiteral("Untitled");
    for (const ChatItem &item : items) {
        if (item.kind == ChatItem::Kind::User) {
            source = item.text;
            break;
        }
    }
    const QStringList lines = source.split(u'\n', Qt::SkipEmptyParts);
    const QString line = lines.isEmpty() ? source : lines.first();
    if (Text::characterCount(line) >= 61)
        return Text::firstCharacters(line, 59) + QStringLiteral("…");
    return line;
}

ConversationSummary ConversationSummary::make(const std::optional<QUuid> &id, const QList<ChatItem> &items,
                                              const std::optional<QDateTime> &updated, const QUuid &fallbackID)
{
    return ConversationSummary{id.value_or(fallbackID), titleFor(items), updated.value_or(distantPast()),
                               items.isEmpty()};
}

} // namespace zentoro
