#pragma once

#include "core/JSON.h"

#include <QList>
#include <QString>

#include <optional>

namespace zentoro::HistoryUpkeep {

// What a screenshot that is no longer sent says in its place.
QString screenshotNotice();
// What leads the history after a trim.
QString trimNotice();

// The form in which an item enters the history, or none to leave it out: reasoning the
// service can't be given back is dropped, and no item keeps its `id`.
std::optional<JSON> forHistory(const JSON &item);

// `items` without the calls that have no output and the outputs that have no call, so a
// whole-history request never sends half a pair.
JSON::Array consistent(JSON::Array items);

// Turns the newest `keep` screenshot references in the outputs into image data read from
// disk, newest first, and every older or unreadable one into the notice. The stored
// references stay as they are: the data lives only in the returned request.
JSON::Array attachingScreenshots(JSON::Array items, qsizetype keep);

// The input of a whole-history request: `history` and then `pendingInput`, made consistent,
// with the newest `keep` screenshots attached. What it learns of `history` is kept for the
// next request, which then looks only at the items added since.
JSON::Array sendable(const QList<JSON> &history, const QList<JSON> &pendingInput, qsizetype keep);

// Drops about the first half of `history`, cutting as near the middle as its structure
// allows: never between a call and its output (the calls of outputs still in
// `pendingInput` included) and never in front of a reasoning item. False when no cut is
// possible and nothing changed.
bool trimHistory(QList<JSON> &history, const QList<JSON> &pendingInput);

} // namespace zentoro::HistoryUpkeep
