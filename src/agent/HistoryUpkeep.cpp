#include "agent/HistoryUpkeep.h"

#include "agent/Agent.h"
#include "agent/HistoryIndex.h"
#include "agent/ItemKinds.h"
#include "agent/ScreenshotReference.h"
#include "core/DataURL.h"

#include <QFile>
#include <QHash>
#include <QSet>

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace zentoro::HistoryUpkeep {

using namespace ItemKinds;

namespace {

// A stored screenshot: its file, or none for any other part (a data URL, text).
std::optional<QString> screenshotFile(const JSON &part)
{
    if (!isType(part, inputImage))
        return std::nullopt;
    const QString *address = textAt(part, imageURLKey);
    return address ? ScreenshotReference::file(*address) : std::nullopt;
}

// The picture's bytes as a data URL, made afresh for each request: image data never outlives
// the request that carries it. The file is mapped rather than read: screenshots are replaced
// whole, never rewritten in place, and the encoding is the only copy made.
std::optional<QString> dataURL(const QString &path)
{
    const QLatin1StringView png("image/png");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    if (const uchar *mapped = file.size() > 0 ? file.map(0, file.size()) : nullptr)
        return DataURL::make(png, QByteArrayView(mapped, file.size()));
    return DataURL::make(png, file.readAll());
}

const JSON &noticePart()
{
    static const JSON part = JSON::object({{"type", "input_text"}, {"text", screenshotNotice()}});
    return part;
}

// The parts of an output as they are sent: the newest `keep` screenshots attached, and the
// notice in place of every other one. None when no part is a screenshot.
std::optional<JSON::Array> sentParts(const JSON::Array &stored, qsizetype &keep)
{
    std::optional<JSON::Array> parts;
    for (std::size_t at = stored.size(); at-- > 0;) {
        const auto file = screenshotFile(stored[at]);
        if (!file)
            continue;
        if (!parts)
            parts = stored;
        JSON &part = (*parts)[at];
        const auto url = keep >= 1 ? dataURL(*file) : std::nullopt;
        if (url) {
            --keep;
            part.set(*imageURLKey.stringRef(), *url);
        } else {
            part = noticePart();
        }
    }
    return parts;
}

// An output as it is sent once no more pictures go out, remembered: all but the newest few of
// a long conversation's screenshots go out this way, and every request would otherwise copy
// and rewrite each of them again. The remembered item is held, so its address can't come back
// as another item's.
JSON withNotices(const JSON &item, const JSON::Array &stored)
{
    static constexpr qsizetype remembered = 4096;
    static QHash<const JSON::Object *, std::pair<JSON, JSON>> known;
    if (const auto found = known.constFind(item.objectValue()); found != known.cend())
        return found->second;
    qsizetype none = 0;
    JSON sent = item;
    if (std::optional<JSON::Array> parts = sentParts(stored, none))
        sent.set(*outputKey.stringRef(), JSON(std::move(*parts)));
    if (known.size() >= remembered)
        known.clear();
    known.insert(item.objectValue(), {item, sent});
    return sent;
}

// Attaches the newest `keep` screenshots of the outputs at `places` in `items`, and puts the
// notice in place of every other one.
void attach(JSON::Array &items, const std::vector<qsizetype> &places, qsizetype keep)
{
    for (auto place = places.rbegin(); place != places.rend(); ++place) {
        JSON &item = items[*place];
        const JSON::Array *stored = isType(item, functionCallOutput) ? item.arrayAt(*outputKey.stringRef()) : nullptr;
        if (!stored)
            continue;
        if (keep < 1)
            item = withNotices(item, *stored);
        else if (std::optional<JSON::Array> parts = sentParts(*stored, keep))
            item.set(*outputKey.stringRef(), JSON(std::move(*parts)));
    }
}

std::vector<qsizetype> everyPlace(const JSON::Array &items)
{
    std::vector<qsizetype> places(items.size());
    std::iota(places.begin(), places.end(), 0);
    return places;
}

} // namespace

QString screenshotNotice()
{
    return QStringLiteral("(This screenshot is no longer attached. Take a new one to see the app.)");
}

QString trimNotice()
{
    return QStringLiteral("Earlier parts of this conversation were dropped to fit the context window. Look at the "
                          "files again before relying on what came before.");
}

std::optional<JSON> forHistory(const JSON &item)
{
    if (!item.objectValue())
        return item;
    if (isType(item, reasoning) && !item.stringAt(QStringLiteral("encrypted_content")))
        return std::nullopt;
    if (!item.find(QStringLiteral("id")))
        return item;
    JSON kept = item;
    kept.remove(QStringLiteral("id"));
    return kept;
}

JSON::Array consistent(JSON::Array items)
{
    std::vector<qsizetype> withParts;
    return HistoryIndex().consistent(items, {}, withParts);
}

JSON::Array attachingScreenshots(JSON::Array items, qsizetype keep)
{
    attach(items, everyPlace(items), keep);
    return items;
}

JSON::Array sendable(const QList<JSON> &history, const QList<JSON> &pendingInput, qsizetype keep)
{
    // Whole-history requests come one after another for one conversation at a time.
    static HistoryIndex index;
    std::vector<qsizetype> withParts;
    JSON::Array items = index.consistent(history, pendingInput, withParts);
    attach(items, withParts, keep);
    return items;
}

bool trimHistory(QList<JSON> &history, const QList<JSON> &pendingInput)
{
    QSet<QString> open;
    for (const JSON &item : pendingInput) {
        if (isType(item, functionCallOutput)) {
            if (auto id = item.stringAt(QStringLiteral("call_id")))
                open.insert(*id);
        }
    }
    const qsizetype half = history.size() / 2;
    std::optional<qsizetype> best;
    for (qsizetype i = history.size() - 1; i >= 1; --i) {
        const JSON &item = history[i];
        if (const auto id = item.stringAt(QStringLiteral("call_id"))) {
            if (isType(item, functionCallOutput))
                open.insert(*id);
            else if (isType(item, functionCall))
                open.remove(*id);
        }
        if (!open.isEmpty() || isType(item, reasoning))
            continue;
        if (!best || std::abs(i - half) < std::abs(*best - half))
            best = i;
    }
    if (!best)
        return false;
    history.remove(0, *best);
    history.prepend(Agent::message(QStringLiteral("developer"), trimNotice()));
    return true;
}

} // namespace zentoro::HistoryUpkeep
