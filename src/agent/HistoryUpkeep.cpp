#include "agent/HistoryUpkeep.h"

#include "agent/Agent.h"

#include <QFile>
#include <QSet>
#include <QUrl>

#include <cstdlib>

namespace zentoro::HistoryUpkeep {

namespace {

// Kinds compared in place: a whole-history request looks at every item's kind, and a copy
// of each would cost more than the look.
const JSON functionCall("function_call");
const JSON functionCallOutput("function_call_output");
const JSON reasoning("reasoning");
const JSON inputImage("input_image");

const JSON *typeOf(const JSON &item)
{
    static const QString key = QStringLiteral("type");
    return item.find(key);
}

bool isType(const JSON &item, const JSON &type)
{
    const JSON *value = typeOf(item);
    return value && *value == type;
}

// Calls and outputs without a string `call_id` are filed under the empty one.
QString callID(const JSON &item)
{
    return item.stringAt(QStringLiteral("call_id")).value_or(QString());
}

// A stored screenshot: its file, or none for any other part (a data URL, text).
std::optional<QString> screenshotFile(const JSON &part)
{
    if (!isType(part, inputImage))
        return std::nullopt;
    const auto address = part.stringAt(QStringLiteral("image_url"));
    if (!address)
        return std::nullopt;
    const QUrl url(*address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != u"file")
        return std::nullopt;
    return url.toLocalFile();
}

std::optional<QByteArray> contents(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
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

JSON::Array consistent(const JSON::Array &items)
{
    // One look at each item: a whole-history request holds thousands of them.
    enum class Role { Other, Call, Output };
    std::vector<std::pair<Role, QString>> roles;
    roles.reserve(items.size());
    QSet<QString> calls;
    QSet<QString> outputs;
    for (const JSON &item : items) {
        const JSON *type = typeOf(item);
        if (type && *type == functionCall) {
            roles.emplace_back(Role::Call, callID(item));
            calls.insert(roles.back().second);
        } else if (type && *type == functionCallOutput) {
            roles.emplace_back(Role::Output, callID(item));
            outputs.insert(roles.back().second);
        } else {
            roles.emplace_back(Role::Other, QString());
        }
    }
    JSON::Array kept;
    kept.reserve(items.size());
    for (std::size_t index = 0; index < items.size(); ++index) {
        const auto &[role, id] = roles[index];
        if ((role == Role::Call && !outputs.contains(id)) || (role == Role::Output && !calls.contains(id)))
            continue;
        kept.push_back(items[index]);
    }
    return kept;
}

JSON::Array attachingScreenshots(JSON::Array items, qsizetype keep)
{
    const QString outputKey = QStringLiteral("output");
    for (auto item = items.rbegin(); item != items.rend(); ++item) {
        if (!isType(*item, functionCallOutput))
            continue;
        const JSON::Array *stored = item->arrayAt(outputKey);
        if (!stored || stored->empty())
            continue;
        JSON::Array parts = *stored;
        bool changed = false;
        for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
            const auto file = screenshotFile(*part);
            if (!file)
                continue;
            changed = true;
            const auto bytes = keep >= 1 ? contents(*file) : std::nullopt;
            if (bytes) {
                --keep;
                part->set(QStringLiteral("image_url"),
                          QStringLiteral("data:image/png;base64,") + QString::fromLatin1(bytes->toBase64()));
            } else {
                *part = JSON::object({{"type", "input_text"}, {"text", screenshotNotice()}});
            }
        }
        if (changed)
            item->set(outputKey, JSON(std::move(parts)));
    }
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
