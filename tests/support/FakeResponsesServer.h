#pragma once

#include "core/JSON.h"

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QTcpServer>

#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace zentoro::test {

// One answer of the fake service, played out over a real connection.
struct ScriptedReply {
    enum class Ending {
        Complete, // the body ends properly
        Close,    // the connection closes where the body stops, without its end
        Reset,    // the connection is reset there
        Hang,     // the connection stays open, sending nothing more
    };

    int status = 200;
    QByteArray contentType = "text/event-stream";
    QByteArray body;
    // The body goes out in writes of this many bytes; 0 writes it at once.
    qsizetype pieceSize = 0;
    // A pause before each write after the first.
    int pauseMilliseconds = 0;
    Ending ending = Ending::Complete;

    ScriptedReply &inPieces(qsizetype size, int pause = 0);
    ScriptedReply &endingWith(Ending how);
};

// A server-sent event stream in the service's format, built event by event.
class EventStream {
public:
    // `event: <type>` then `data: <the event>` and a blank line, as the service writes them.
    EventStream &event(const JSON &event);
    // Raw text, line breaks included.
    EventStream &raw(const QByteArray &text);
    EventStream &added(const JSON &item);
    EventStream &done(const JSON &item);
    EventStream &textDelta(const QString &text);
    // An item as the service streams it: started, its text in deltas, finished.
    EventStream &item(const JSON &item);
    // "response.completed" with the response object whole (output set by the caller).
    EventStream &completed(const JSON &response);
    EventStream &incomplete(const JSON &response);
    EventStream &failed(const JSON &error);
    EventStream &error(const JSON &error);
    EventStream &doneMarker();

    QByteArray bytes() const { return bytes_; }
    ScriptedReply reply() const;

private:
    QByteArray bytes_;
};

// What the fake service received.
struct RecordedRequest {
    QByteArray method;
    QByteArray path;
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;
    // The sender's end of the connection.
    quint16 peerPort = 0;

    std::optional<QByteArray> header(const QByteArray &name) const;
    JSON json() const;
};

// A fake of the Responses interface: a real HTTP server on 127.0.0.1 at a free port.
// Each request is recorded and answered with the next scripted reply, in order; a
// request with nothing scripted gets a 500.
class FakeResponsesServer {
public:
    FakeResponsesServer();
    ~FakeResponsesServer();
    FakeResponsesServer(const FakeResponsesServer &) = delete;
    FakeResponsesServer &operator=(const FakeResponsesServer &) = delete;

    QString origin() const;
    quint16 port() const { return server_.serverPort(); }
    // Points the program's model service at this server (ZENTORO_API_BASE) until destroyed.
    void becomeModelService();

    void enqueue(ScriptedReply reply);
    // Answers each request by what it carries rather than from the queue; a request the
    // responder has no answer for gets a 500.
    using Responder = std::function<std::optional<ScriptedReply>(const RecordedRequest &)>;
    void respondWith(Responder responder) { responder_ = std::move(responder); }
    qsizetype scriptedLeft() const { return qsizetype(script_.size()); }
    const QList<RecordedRequest> &requests() const { return requests_; }
    // Open connections: a cancelled request closes its own.
    int openConnections() const;

    // Output items in the service's form.
    static JSON message(const QString &text, const QString &id = QStringLiteral("msg_1"));
    static JSON call(const QString &name, const JSON &arguments, const QString &callID = QStringLiteral("call_1"));
    static JSON response(const QString &id, const JSON::Array &output,
                         const QString &status = QStringLiteral("completed"));

    // A whole turn: each item streamed, then "response.completed" with all of them.
    static ScriptedReply turn(const JSON::Array &items, const QString &responseID = QStringLiteral("resp_1"));
    static ScriptedReply textReply(const QString &text, const QString &responseID = QStringLiteral("resp_1"));
    static ScriptedReply functionCall(const QString &name, const JSON &arguments,
                                      const QString &callID = QStringLiteral("call_1"),
                                      const QString &responseID = QStringLiteral("resp_1"));
    static ScriptedReply httpError(int status, const QByteArray &body,
                                   const QByteArray &contentType = "application/json");

private:
    struct Connection;
    void accept();
    void serve(const std::shared_ptr<Connection> &connection);
    void play(const std::shared_ptr<Connection> &connection, ScriptedReply reply);

    QTcpServer server_;
    std::deque<ScriptedReply> script_;
    Responder responder_;
    QList<RecordedRequest> requests_;
    std::optional<QByteArray> previousBase_;
    bool replacedBase_ = false;
};

} // namespace zentoro::test
