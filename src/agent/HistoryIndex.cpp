#include "agent/HistoryIndex.h"

#include "agent/ItemKinds.h"

namespace zentoro {

using namespace ItemKinds;

namespace {

// Asks for the members of the item a few places ahead while this one is looked at: the items
// lie scattered in memory, and waiting for each in turn costs more than the look itself.
void fetchAhead(std::span<const JSON> items, std::size_t index)
{
    if (index + 16 < items.size())
        __builtin_prefetch(items[index + 16].objectValue());
    if (index + 8 < items.size()) {
        if (const JSON::Object *ahead = items[index + 8].objectValue(); ahead && !ahead->empty())
            __builtin_prefetch(&*ahead->begin());
    }
}

enum Seen : unsigned char { callSeen = 1, outputSeen = 2, bothSeen = 3 };

} // namespace

HistoryIndex::Look HistoryIndex::lookAt(const JSON &item)
{
    Look look;
    const QString *type = textAt(item, typeKey);
    if (!type)
        return look;
    if (sameText(*type, *functionCall.stringRef())) {
        look.role = Role::Call;
    } else if (sameText(*type, *functionCallOutput.stringRef())) {
        look.role = Role::Output;
        const JSON *parts = item.find(*outputKey.stringRef());
        look.hasParts = parts && parts->kind() == JSON::Kind::Array;
    } else {
        return look;
    }
    if (const QString *id = textAt(item, callIDKey))
        look.callID = *id;
    return look;
}

bool HistoryIndex::sameItem(const JSON &a, const JSON &b)
{
    const JSON::Object *object = a.objectValue();
    return object ? object == b.objectValue() : a == b;
}

void HistoryIndex::follow(std::span<const JSON> history)
{
    std::size_t known = 0;
    while (known < entries_.size() && known < history.size() && sameItem(entries_[known].item, history[known]))
        ++known;
    if (known < entries_.size()) {
        entries_.clear();
        places_.clear();
        seen_.clear();
        known = 0;
    }
    entries_.reserve(history.size());
    for (std::size_t index = known; index < history.size(); ++index) {
        fetchAhead(history, index);
        Entry entry{history[index], lookAt(history[index])};
        if (entry.look.role != Role::Other) {
            qsizetype &place = places_[entry.look.callID];
            if (place == 0) {
                seen_.push_back(0);
                place = qsizetype(seen_.size());
            }
            entry.place = place - 1;
            seen_[entry.place] |= entry.look.role == Role::Call ? callSeen : outputSeen;
        }
        entries_.push_back(std::move(entry));
    }
}

JSON::Array HistoryIndex::consistent(std::span<const JSON> history, std::span<const JSON> extra,
                                     std::vector<qsizetype> &withParts)
{
    follow(history);
    // The extra items pair up with the history's in a copy: they are gone by the next request.
    std::vector<unsigned char> seen = seen_;
    QHash<QStringView, qsizetype> extraPlaces;
    std::vector<std::pair<Look, qsizetype>> extraLooks;
    for (const JSON &item : extra) {
        const Look look = lookAt(item);
        qsizetype place = -1;
        if (look.role != Role::Other) {
            place = places_.value(look.callID, 0) - 1;
            if (place < 0) {
                qsizetype &added = extraPlaces[look.callID];
                if (added == 0) {
                    seen.push_back(0);
                    added = qsizetype(seen.size());
                }
                place = added - 1;
            }
            seen[place] |= look.role == Role::Call ? callSeen : outputSeen;
        }
        extraLooks.emplace_back(look, place);
    }

    JSON::Array items;
    items.reserve(history.size() + extra.size());
    const auto keep = [&](const JSON &item, const Look &look, qsizetype place) {
        if (place >= 0 && seen[place] != bothSeen)
            return;
        if (look.hasParts)
            withParts.push_back(qsizetype(items.size()));
        items.push_back(item);
    };
    for (const Entry &entry : entries_)
        keep(entry.item, entry.look, entry.place);
    for (std::size_t index = 0; index < extra.size(); ++index)
        keep(extra[index], extraLooks[index].first, extraLooks[index].second);
    return items;
}

} // namespace zentoro
