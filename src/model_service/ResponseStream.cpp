#include "model_service/ResponseStream.h"

#include "model_service/Failures.h"

#include <cstring>
#include <string_view>
#include <utility>

namespace zentoro::OpenAI {

namespace {

const QString closedEarly = QStringLiteral("The connection closed before the response finished.");
const QString responseFailed = QStringLiteral("The response failed.");
const QString tooLarge = QStringLiteral("The response was larger than Zentoro can read.");

// The position of the first line terminator (CR or LF) at or after `from`, or -1. The
// service ends its lines with LF alone, so a text without CR is searched for LF only.
qsizetype findTerminator(QByteArrayView text, qsizetype from, bool hasCarriageReturn)
{
    const char *base = text.data() + from;
    const size_t length = size_t(text.size() - from);
    const auto *lineFeed = static_cast<const char *>(std::memchr(base, '\n', length));
    const size_t limit = lineFeed ? size_t(lineFeed - base) : length;
    if (hasCarriageReturn) {
        if (const auto *carriageReturn = static_cast<const char *>(std::memchr(base, '\r', limit)))
            return from + (carriageReturn - base);
    }
    return lineFeed ? from + qsizetype(limit) : -1;
}

QByteArrayView trimBlanks(QByteArrayView text)
{
    while (!text.isEmpty() && (text.front() == ' ' || text.front() == '\t'))
        text = text.sliced(1);
    while (!text.isEmpty() && (text.back() == ' ' || text.back() == '\t'))
        text.chop(1);
    return text;
}

bool isActedOn(std::string_view type)
{
    return type == "response.output_item.added" || type == "response.output_item.done" ||
           type == "response.completed" || type == "response.incomplete" || type == "response.failed" ||
           type == "error";
}

// Whether a data line could be one of the events acted on. Most of a stream is text
// deltas, and decoding each of them would cost more than the rest of the reading. The
// service writes the type first, so that is read directly; any other shape is searched for
// the markers, and a type hidden behind \u escapes still reaches the decoder, so nothing
// acted on is passed over.
bool mayBeActedOn(QByteArrayView payload)
{
    const std::string_view text(payload.data(), size_t(payload.size()));
    constexpr std::string_view leadingType = R"({"type":")";
    if (text.starts_with(leadingType)) {
        const size_t end = text.find('"', leadingType.size());
        const std::string_view type = text.substr(leadingType.size(), end - leadingType.size());
        if (end != std::string_view::npos && type.find('\\') == std::string_view::npos)
            return isActedOn(type);
    }
    // One pass over the line: a marker can only start where its first byte is.
    for (size_t at = 0; at < text.size(); ++at) {
        std::string_view marker;
        switch (text[at]) {
        case 'o': marker = "output_item."; break;
        case 'c': marker = "completed"; break;
        case 'i': marker = "incomplete"; break;
        case 'f': marker = "failed"; break;
        case 'e': marker = "error"; break;
        case '\\': marker = "\\u"; break;
        default: continue;
        }
        if (text.substr(at, marker.size()) == marker)
            return true;
    }
    return false;
}

Failure failureIn(const JSON *error)
{
    const QString message = error ? error->stringAt(QStringLiteral("message")).value_or(QString()) : QString();
    return Failure(0, error ? error->stringAt(QStringLiteral("code")) : std::nullopt,
                   error ? error->stringAt(QStringLiteral("param")) : std::nullopt,
                   message.isEmpty() ? responseFailed : message);
}

} // namespace

ResponseStream::ResponseStream(std::function<void(const JSON &item)> onItemStarted)
    : onItemStarted_(std::move(onItemStarted))
{
}

void ResponseStream::feed(QByteArrayView bytes)
{
    const bool hasCarriageReturn = !bytes.isEmpty() && std::memchr(bytes.data(), '\r', size_t(bytes.size()));
    qsizetype at = 0;
    while (!ended_ && at < bytes.size()) {
        if (skipLineFeed_) {
            skipLineFeed_ = false;
            if (bytes[at] == '\n') {
                ++at;
                continue;
            }
        }
        // The blank line after each event carries nothing to act on.
        if (bytes[at] == '\n' && pending_.isEmpty()) {
            ++at;
            continue;
        }
        const qsizetype end = findTerminator(bytes, at, hasCarriageReturn);
        if (end < 0) {
            if (pending_.size() + (bytes.size() - at) > longestLine) {
                fail(std::make_exception_ptr(Failure(0, std::nullopt, std::nullopt, tooLarge)));
                break;
            }
            pending_.append(bytes.sliced(at));
            return;
        }
        if (pending_.size() + (end - at) > longestLine) {
            fail(std::make_exception_ptr(Failure(0, std::nullopt, std::nullopt, tooLarge)));
            break;
        }
        if (pending_.isEmpty()) {
            handleLine(bytes.sliced(at, end - at));
        } else {
            // Emptied with its capacity kept, for the next line that spans two reads.
            pending_.append(bytes.sliced(at, end - at));
            handleLine(pending_);
            pending_.resize(0);
        }
        skipLineFeed_ = bytes[end] == '\r';
        at = end + 1;
    }
    if (ended_)
        pending_ = QByteArray();
}

void ResponseStream::finish()
{
    if (!ended_ && !pending_.isEmpty())
        handleLine(pending_);
    pending_ = QByteArray();
    if (!ended_)
        fail(std::make_exception_ptr(Failure(0, std::nullopt, std::nullopt, closedEarly)));
}

JSON ResponseStream::result() const
{
    if (failure_)
        std::rethrow_exception(failure_);
    return response_;
}

void ResponseStream::handleLine(QByteArrayView line)
{
    if (!line.startsWith("data:"))
        return;
    const QByteArrayView payload = trimBlanks(line.sliced(5));
    if (payload == "[DONE]") {
        fail(std::make_exception_ptr(Failure(0, std::nullopt, std::nullopt, closedEarly)));
        return;
    }
    if (!mayBeActedOn(payload))
        return;
    JSON event;
    lineBytes_ = payload.size();
    try {
        event = JSON::decode(payload);
    } catch (const JSON::Error &) {
        return;
    }
    handleEvent(event);
}

void ResponseStream::handleEvent(const JSON &event)
{
    const std::optional<QString> type = event.stringAt(QStringLiteral("type"));
    if (!type)
        return;
    if (*type == u"response.output_item.added") {
        if (const JSON *item = event.find(QStringLiteral("item")))
            onItemStarted_(*item);
    } else if (*type == u"response.output_item.done") {
        if (const JSON *item = event.find(QStringLiteral("item"))) {
            finishedItems_.push_back(*item);
            keptBytes_ += lineBytes_;
            if (keptBytes_ > mostKept)
                fail(std::make_exception_ptr(Failure(0, std::nullopt, std::nullopt, tooLarge)));
        }
    } else if (*type == u"response.completed" || *type == u"response.incomplete") {
        if (const JSON *response = event.find(QStringLiteral("response")))
            complete(*response);
    } else if (*type == u"response.failed") {
        const JSON *response = event.find(QStringLiteral("response"));
        fail(std::make_exception_ptr(failureIn(response ? response->find(QStringLiteral("error")) : nullptr)));
    } else if (*type == u"error") {
        const JSON *error = event.find(QStringLiteral("error"));
        if (!error)
            fail(std::make_exception_ptr(failureIn(&event)));
        else
            fail(std::make_exception_ptr(failureIn(error->objectValue() ? error : nullptr)));
    }
}

void ResponseStream::complete(JSON response)
{
    const JSON::Array *output = response.arrayAt(QStringLiteral("output"));
    if (response.objectValue() && (!output || output->empty()))
        response.set(QStringLiteral("output"), JSON(std::move(finishedItems_)));
    finishedItems_.clear();
    response_ = std::move(response);
    ended_ = true;
}

void ResponseStream::fail(std::exception_ptr failure)
{
    failure_ = std::move(failure);
    finishedItems_.clear();
    ended_ = true;
}

} // namespace zentoro::OpenAI
