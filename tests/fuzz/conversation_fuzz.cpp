// A conversation file: what decodes as a conversation is written again as the same one, but
// for the identity and dates that writing supplies when the file had none.
#include "agent/SavedConversation.h"

#include <cstdlib>

using zentoro::JSON;
using zentoro::SavedConversation;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    SavedConversation conversation;
    try {
        conversation = SavedConversation::fromJSON(JSON::decode(bytes));
    } catch (const JSON::Error &) {
        return 0;
    }
    const SavedConversation again = SavedConversation::fromJSON(JSON::decode(conversation.encode()));
    conversation.id = conversation.id.value_or(again.id.value_or(QUuid()));
    conversation.created = conversation.created.value_or(again.created.value_or(QDateTime()));
    conversation.updated = conversation.updated.value_or(again.updated.value_or(QDateTime()));
    if (again != conversation)
        std::abort();
    return 0;
}
