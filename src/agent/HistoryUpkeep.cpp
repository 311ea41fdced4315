#include "agent/HistoryUpkeep.h"

#include "agent/Agent.h"

#include <QFile>
#include <QHash>
#include <QSet>
#include <QUrl>

#include <algorithm>
#include <cstdlib>

namespace zentoro::HistoryUpkeep {

namespace {

// Kinds and keys compared in place: a whole-history request looks at every item's kind, and a
// copy of each would cost more than the look. Their text is the JSON value's shared copy, so
// the usual item compares by address.
const JSON functionCall("function_call");
const JSON functionCallOutput("function_call_output");
const JSON reasoning("reasoning");
const JSON inputImage("input_image");
const JSON typeKey("type");
const JSON callIDKey("call_id");
const JSON outputKey("output");
const JSON imageURLKey("image_url");

bool sameText(const QString &a, const QString &b)
{
    return a.size() == b.size() && (a.constData() == b.constData() || a == b);
}

bool isType(const JSON &item, const JSON &type)
{
    const JSON *value = item.find(*typeKey.stringRef());
    const QString *text = value ? value->stringRef() : nullptr;
    return text && sameText(*text, *type.stringRef());
}

enum class Role { Other, Call, Output };

// What the passes over a request need of one item, read in one look at its members.
struct Look {
    Role role = Role::Other;
    // Calls and outputs without a string `call_id` are filed under the empty one.
    QStringView callID;
    // An output whose `output` is an array of parts, where screenshots may be. Its length
    // waits for the few that `attach` visits: reading it here would cost a fetch per output.
    bool hasParts = false;
};

const QString *textAt(const JSON &item, const JSON &key)
{
    const JSON *value = item.find(*key.stringRef());
    return value ? value->stringRef() : nullptr;
}

Look lookAt(const JSON &item)
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

// Asks for the members of the item a few places ahead while this one is looked at: the items
// lie scattered in memory, and waiting for each in turn costs more than the look itself.
template <typename List>
void fetchAhead(const List &items, qsizetype index)
{
    if (index + 16 < items.size())
        __builtin_prefetch(items[index + 16].objectValue());
    if (index + 8 < items.size()) {
        if (const JSON::Object *ahead = items[index + 8].objectValue(); ahead && !ahead->empty())
            __builtin_prefetch(&*ahead->begin());
    }
}

std::vector<Look> lookAt(const JSON::Array &items)
{
    std::vector<Look> looks;
    looks.reserve(items.size());
    for (qsizetype index = 0; index < qsizetype(items.size()); ++index) {
        fetchAhead(items, index);
        looks.push_back(lookAt(items[index]));
    }
    return looks;
}

// Appends `list` to `items`, and the look at each to `looks`.
void gather(const QList<JSON> &list, JSON::Array &items, std::vector<Look> &looks)
{
    for (qsizetype index = 0; index < list.size(); ++index) {
        fetchAhead(list, index);
        items.push_back(list[index]);
        looks.push_back(lookAt(list[index]));
    }
}

// Takes out the calls without an output and the outputs without a call, from `items` and
// from `looks` alike.
void dropHalfPairs(JSON::Array &items, std::vector<Look> &looks)
{
    // Each call_id is hashed once; what was seen under it is kept by its first place.
    enum Seen : unsigned char { call = 1, output = 2, both = 3 };
    QHash<QStringView, qsizetype> places;
    places.reserve(items.size() / 4);
    std::vector<unsigned char> seen;
    std::vector<qsizetype> placeOf(items.size(), -1);
    for (std::size_t index = 0; index < items.size(); ++index) {
        const Look &look = looks[index];
        if (look.role == Role::Other)
            continue;
        qsizetype &place = places[look.callID];
        if (place == 0) {
            seen.push_back(0);
            place = qsizetype(seen.size());
        }
        seen[place - 1] |= look.role == Role::Call ? call : output;
        placeOf[index] = place - 1;
    }
    std::size_t kept = 0;
    for (std::size_t index = 0; index < items.size(); ++index) {
        if (placeOf[index] >= 0 && seen[placeOf[index]] != both)
            continue;
        if (kept != index) {
            items[kept] = std::move(items[index]);
            looks[kept] = looks[index];
        }
        ++kept;
    }
    items.resize(kept);
    looks.resize(kept);
}

std::optional<QString> fileOfURL(const QString &address)
{
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != u"file")
        return std::nullopt;
    return url.toLocalFile();
}

// The file a short address names, remembered: a long conversation holds hundreds of screenshot
// references and every whole request looks at each of them, which parsing afresh would make
// the costliest part of the request. Data URLs are long and never name a file.
std::optional<QString> fileOf(const QString &address)
{
    static constexpr qsizetype longestRemembered = 1024;
    static constexpr qsizetype remembered = 4096;
    static QHash<QString, std::optional<QString>> known;
    if (address.size() > longestRemembered)
        return fileOfURL(address);
    if (const auto found = known.constFind(address); found != known.cend())
        return *found;
    if (known.size() >= remembered)
        known.clear();
    return *known.insert(address, fileOfURL(address));
}

// A stored screenshot: its file, or none for any other part (a data URL, text).
std::optional<QString> screenshotFile(const JSON &part)
{
    if (!isType(part, inputImage))
        return std::nullopt;
    const JSON *value = part.find(*imageURLKey.stringRef());
    const QString *address = value ? value->stringRef() : nullptr;
    return address ? fileOf(*address) : std::nullopt;
}

std::optional<QByteArray> contents(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

// The picture's bytes as a data URL, made afresh for each request: image data never outlives
// the request that carries it.
std::optional<QString> dataURL(const QString &path)
{
    const std::optional<QByteArray> bytes = contents(path);
    if (!bytes)
        return std::nullopt;
    return QStringLiteral("data:image/png;base64,") + QLatin1StringView(bytes->toBase64());
}

const JSON &noticePart()
{
    static const JSON part = JSON::object({{"type", "input_text"}, {"text", screenshotNotice()}});
    return part;
}

// Attaches the newest `keep` screenshots of the outputs in `items`, as `looks` found them,
// and puts the notice in place of every other one.
void attach(JSON::Array &items, const std::vector<Look> &looks, qsizetype keep)
{
    for (std::size_t index = items.size(); index-- > 0;) {
        if (!looks[index].hasParts)
            continue;
        JSON &item = items[index];
        const JSON::Array *stored = item.arrayAt(*outputKey.stringRef());
        std::optional<JSON::Array> parts;
        for (std::size_t at = stored->size(); at-- > 0;) {
            const auto file = screenshotFile((*stored)[at]);
            if (!file)
                continue;
            if (!parts)
                parts = *stored;
            JSON &part = (*parts)[at];
            const auto url = keep >= 1 ? dataURL(*file) : std::nullopt;
            if (url) {
                --keep;
                part.set(*imageURLKey.stringRef(), *url);
            } else {
                part = noticePart();
            }
        }
        if (parts)
            item.set(*outputKey.stringRef(), JSON(std::move(*parts)));
    }
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
    std::vector<Look> looks = lookAt(items);
    dropHalfPairs(items, looks);
    return items;
}

JSON::Array attachingScreenshots(JSON::Array items, qsizetype keep)
{
    attach(items, lookAt(items), keep);
    return items;
}

JSON::Array sendable(const QList<JSON> &history, const QList<JSON> &pendingInput, qsizetype keep)
{
    JSON::Array items;
    std::vector<Look> looks;
    items.reserve(history.size() + pendingInput.size());
    looks.reserve(items.capacity());
    gather(history, items, looks);
    gather(pendingInput, items, looks);
    dropHalfPairs(items, looks);
    attach(items, looks, keep);
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
