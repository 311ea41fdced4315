#pragma once

#include "agent/SavedConversation.h"

#include <QByteArray>

#include <vector>

namespace zentoro {

// Encodes conversations for saving, reusing the text of rows and history items that are
// unchanged since the previous save: a conversation grows at its end and each save
// rewrites the whole file, so nearly all of it was encoded before. Gives the same JSON
// value as `SavedConversation::encode`.
class ConversationEncoder {
public:
    // Raises JSON::Error for a value JSON can't hold.
    QByteArray encode(const SavedConversation &saved);

private:
    template <typename Value>
    struct Entry {
        Value value;
        QByteArray text;
    };

    // Appends the array of `values` to `text`, reusing `cache` where a value is unchanged.
    template <typename Value, typename List, typename Encode>
    static void append(QByteArray &text, const List &values, std::vector<Entry<Value>> &cache, Encode encode);

    std::vector<Entry<JSON>> history_;
    std::vector<Entry<ChatItem>> items_;
};

} // namespace zentoro
