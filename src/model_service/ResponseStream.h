#pragma once

#include "core/JSON.h"

#include <QByteArray>
#include <QByteArrayView>

#include <exception>
#include <functional>
#include <optional>

namespace zentoro::OpenAI {

// Reads the server-sent events of one Responses stream as its bytes arrive, line by
// line, and keeps nothing but the unfinished line and the finished output items, so a
// long stream of deltas costs no memory.
class ResponseStream {
public:
    // A service that sends a line without end, or items without end, fails the response
    // with words instead of taking all memory. Both leave room for tool arguments of tens
    // of megabytes.
    static constexpr qsizetype longestLine = qsizetype(64) << 20;
    static constexpr qsizetype mostKept = qsizetype(256) << 20;

    explicit ResponseStream(std::function<void(const JSON &item)> onItemStarted);

    // Takes the next bytes of the body; does nothing once the stream has ended.
    void feed(QByteArrayView bytes);
    // The body has ended: reads a last line without terminator, and fails when no
    // terminal event came.
    void finish();

    bool hasEnded() const { return ended_; }
    // The finished response object; raises the stream's Failure instead when it failed.
    // Only valid once `hasEnded()`.
    JSON result() const;

private:
    void scanLines(QByteArrayView text, qsizetype &consumed);
    void handleLine(QByteArrayView line);
    void handleEvent(const JSON &event);
    void complete(JSON response);
    void fail(std::exception_ptr failure);

    std::function<void(const JSON &item)> onItemStarted_;
    QByteArray pending_;
    bool skipLineFeed_ = false;
    JSON::Array finishedItems_;
    qsizetype lineBytes_ = 0;
    qsizetype keptBytes_ = 0;
    bool ended_ = false;
    JSON response_;
    std::exception_ptr failure_;
};

} // namespace zentoro::OpenAI
