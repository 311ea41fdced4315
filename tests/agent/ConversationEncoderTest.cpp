#include "agent/ConversationEncoder.h"
#include "agent/Agent.h"

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

SavedConversation conversation()
{
    SavedConversation saved;
    saved.id = QUuid::createUuid();
    saved.created = QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), QTimeZone::utc());
    saved.updated = saved.created->addSecs(60);
    saved.notes = {"a note"};
    saved.restartCallID = "call_9";
    for (int i = 0; i < 6; ++i) {
        saved.history.append(Agent::message("user", QString::number(i)));
        saved.items.append(ChatItem::make(ChatItem::Kind::User, QString::number(i)));
    }
    return saved;
}

// What a save writes must read back as the plain encoding of the same conversation.
void expectSameAsPlain(ConversationEncoder &encoder, const SavedConversation &saved)
{
    EXPECT_EQ(JSON::decode(encoder.encode(saved)), saved.toJSON());
}

} // namespace

TEST(ConversationEncoder, ReusedTextNeverHidesAChange)
{
    ConversationEncoder encoder;
    SavedConversation saved = conversation();
    expectSameAsPlain(encoder, saved);

    saved.history.append(Agent::output("c1", "done"));
    saved.items.append(ChatItem::make(ChatItem::Kind::Tool, "Built"));
    expectSameAsPlain(encoder, saved);

    // Changed in place: the item shares its data with what was encoded before.
    saved.history[2].set("content", "changed");
    saved.items[3].text = "changed too";
    expectSameAsPlain(encoder, saved);

    // A trim moves every item to a new place.
    saved.history.remove(0, 3);
    saved.history.prepend(Agent::message("developer", "Earlier parts were dropped."));
    expectSameAsPlain(encoder, saved);

    saved.history.clear();
    saved.items.clear();
    expectSameAsPlain(encoder, saved);
    SavedConversation read = SavedConversation::fromJSON(JSON::decode(encoder.encode(saved)));
    EXPECT_EQ(read, saved);
}
