#include "agent/ConversationEncoder.h"

namespace zentoro {

template <typename Value, typename List, typename Encode>
void ConversationEncoder::append(QByteArray &text, const List &values, std::vector<Entry<Value>> &cache, Encode encode)
{
    cache.resize(values.size());
    qsizetype size = 0;
    for (qsizetype index = 0; index < values.size(); ++index) {
        Entry<Value> &entry = cache[index];
        // A kept copy shares the value's data, so an unchanged JSON value compares by
        // identity and a changed one has been copied away from it.
        if (entry.text.isEmpty() || !(entry.value == values[index])) {
            entry.text = encode(values[index]);
            entry.value = values[index];
        }
        size += entry.text.size() + 1;
    }
    text.reserve(text.size() + size + 2);
    text.append('[');
    for (std::size_t index = 0; index < cache.size(); ++index) {
        if (index > 0)
            text.append(',');
        text.append(cache[index].text);
    }
    text.append(']');
}

QByteArray ConversationEncoder::encode(const SavedConversation &saved)
{
    SavedConversation rest = saved;
    rest.history.clear();
    rest.items.clear();
    JSON small = rest.toJSON();
    small.remove(QStringLiteral("history"));
    small.remove(QStringLiteral("items"));

    // `small` always holds the id, so the two big arrays follow behind a comma.
    QByteArray text = small.encode();
    text.chop(1);
    text.append(",\"history\":");
    append<JSON>(text, saved.history, history_, [](const JSON &item) { return item.encode(); });
    text.append(",\"items\":");
    append<ChatItem>(text, saved.items, items_, [](const ChatItem &item) { return item.toJSON().encode(); });
    text.append('}');
    return text;
}

} // namespace zentoro
