#pragma once

#include "core/JSON.h"

#include <QHash>
#include <QStringView>

#include <span>
#include <vector>

namespace zentoro {

// Which items of a history are calls and outputs, under which call_id, and which calls and
// outputs have their partner, kept from one whole-history request to the next. A conversation
// grows at its end, so all but the newest items were looked at before, and looking again at
// thousands of items that lie scattered in memory would cost most of a request.
class HistoryIndex {
public:
    // `history` and then `extra`, without the calls that have no output and the outputs that have
    // no call. What is learnt of `history` is kept for the next time; `extra` is looked at afresh.
    // `withParts` gets the places in the result of the outputs whose `output` is an array.
    JSON::Array consistent(std::span<const JSON> history, std::span<const JSON> extra,
                           std::vector<qsizetype> &withParts);

private:
    enum class Role : unsigned char { Other, Call, Output };

    struct Look {
        Role role = Role::Other;
        // An output whose `output` is an array of parts, where screenshots may be.
        bool hasParts = false;
        // Calls and outputs without a string `call_id` are filed under the empty one.
        QStringView callID;
    };

    struct Entry {
        // Held so that the item's data, which `look` points into, stays as it was: a change to
        // a shared JSON value copies it away, so an unchanged item is the same object.
        JSON item;
        Look look;
        // The call_id's place in `seen_`, or -1 for an item that is neither call nor output.
        qsizetype place = -1;
    };

    static Look lookAt(const JSON &item);
    static bool sameItem(const JSON &a, const JSON &b);
    // Brings `entries_` up to `history`: the items past the known ones are looked at; after any
    // other change everything is.
    void follow(std::span<const JSON> history);

    std::vector<Entry> entries_;
    QHash<QStringView, qsizetype> places_;
    // For each call_id: 1 when a call was seen, 2 for an output, 3 for both.
    std::vector<unsigned char> seen_;
};

} // namespace zentoro
