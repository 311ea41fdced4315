#include "support/FakeResponsesServer.h"

#include <QTcpSocket>
#include <QTimer>

#include <sys/socket.h>

namespace zentoro::test {

// MARK: - Scripted replies and streams

ScriptedReply &ScriptedReply::inPieces(qsizetype size, int pause)
{
    pieceSize = size;
    pauseMilliseconds = pause;
    return *this;
}

ScriptedReply &ScriptedReply::endingWith(Ending how)
{
    ending = how;
    return *this;
}

EventStream &EventStream::event(const JSON &event)
{
    if (auto type = event.stringAt(QStringLiteral("type")))
        bytes_ += "event: " + type->toUtf8() + "\n";
    bytes_ += "data: " + event.encode() + "\n\n";
    return *this;
}

EventStream &EventStream::raw(const QByteArray &text)
{
    bytes_ += text;
    return *this;
}

EventStream &EventStream::added(const JSON &item)
{
    return event(
        JSON::object({{QStringLiteral("type"), "response.output_item.added"}, {QStringLiteral("item"), item}}));
}

EventStream &EventStream::done(const JSON &item)
{
    return event(JSON::object({{QStringLiteral("type"), "response.output_item.done"}, {QStringLiteral("item"), item}}));
}

EventStream &EventStream::textDelta(const QString &text)
{
    return event(
        JSON::object({{QStringLiteral("type"), "response.output_text.delta"}, {QStringLiteral("delta"), text}}));
}

EventStream &EventStream::item(const JSON &item)
{
    JSON started = item;
    if (item.stringAt(QStringLiteral("type")) == u"message")
        started.set(QStringLiteral("content"), JSON::array());
    if (item.find(QStringLiteral("arguments")))
        started.set(QStringLiteral("arguments"), "");
    added(started);
    if (const JSON::Array *content = item.arrayAt(QStringLiteral("content"))) {
        for (const JSON &part : *content) {
            const QString text = part.stringAt(QStringLiteral("text")).value_or(QString());
            for (qsizetype at = 0; at < text.size(); at += 8)
                textDelta(text.mid(at, 8));
        }
    }
    return done(item);
}

EventStream &EventStream::completed(const JSON &response)
{
    return event(
        JSON::object({{QStringLiteral("type"), "response.completed"}, {QStringLiteral("response"), response}}));
}

EventStream &EventStream::incomplete(const JSON &response)
{
    return event(
        JSON::object({{QStringLiteral("type"), "response.incomplete"}, {QStringLiteral("response"), response}}));
}

EventStream &EventStream::failed(const JSON &error)
{
    return event(JSON::object({{QStringLiteral("type"), "response.failed"},
                               {QStringLiteral("response"), JSON::object({{QStringLiteral("error"), error}})}}));
}

EventStream &EventStream::error(const JSON &error)
{
    return event(JSON::object({{QStringLiteral("type"), "error"}, {QStringLiteral("error"), error}}));
}

EventStream &EventStream::doneMarker()
{
    return raw("data: [DONE]\n\n");
}

ScriptedReply EventStream::reply() const
{
    ScriptedReply reply;
    reply.body = bytes_;
    return reply;
}

// MARK: - Recorded requests

std::optional<QByteArray> RecordedRequest::header(const QByteArray &name) const
{
    for (const auto &[key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return std::nullopt;
}

JSON RecordedRequest::json() const
{
    return JSON::decode(body);
}

// MARK: - The server

struct FakeResponsesServer::Connection {
    QTcpSocket *socket = nullptr;
    QByteArray received;
    bool busy = false;
};

FakeResponsesServer::FakeResponsesServer()
{
    if (!server_.listen(QHostAddress::LocalHost, 0))
        qFatal("The fake model service can't listen: %s", qPrintable(server_.errorString()));
    QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] { accept(); });
}

FakeResponsesServer::~FakeResponsesServer()
{
    if (!replacedBase_)
        return;
    if (previousBase_)
        qputenv("ZENTORO_API_BASE", *previousBase_);
    else
        qunsetenv("ZENTORO_API_BASE");
}

QString FakeResponsesServer::origin() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(server_.serverPort());
}

void FakeResponsesServer::becomeModelService()
{
    if (!replacedBase_ && qEnvironmentVariableIsSet("ZENTORO_API_BASE"))
        previousBase_ = qgetenv("ZENTORO_API_BASE");
    replacedBase_ = true;
    qputenv("ZENTORO_API_BASE", origin().toUtf8());
}

void FakeResponsesServer::enqueue(ScriptedReply reply)
{
    script_.push_back(std::move(reply));
}

int FakeResponsesServer::openConnections() const
{
    int open = 0;
    for (QTcpSocket *socket : server_.findChildren<QTcpSocket *>()) {
        if (socket->state() == QAbstractSocket::ConnectedState)
            ++open;
    }
    return open;
}

void FakeResponsesServer::accept()
{
    while (QTcpSocket *socket = server_.nextPendingConnection()) {
        auto connection = std::make_shared<Connection>();
        connection->socket = socket;
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, connection] {
            connection->received += connection->socket->readAll();
            serve(connection);
        });
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

// Takes the next whole request off the connection, records it and answers it.
void FakeResponsesServer::serve(const std::shared_ptr<Connection> &connection)
{
    if (connection->busy)
        return;
    const qsizetype headEnd = connection->received.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return;
    const QList<QByteArray> lines = connection->received.left(headEnd).split('\n');
    RecordedRequest request;
    const QList<QByteArray> requestLine = lines.value(0).trimmed().split(' ');
    request.peerPort = connection->socket->peerPort();
    request.method = requestLine.value(0);
    request.path = requestLine.value(1);
    qsizetype contentLength = 0;
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const qsizetype colon = lines[i].indexOf(':');
        if (colon < 0)
            continue;
        const QByteArray name = lines[i].left(colon).trimmed();
        const QByteArray value = lines[i].mid(colon + 1).trimmed();
        request.headers.append({name, value});
        if (name.compare("Content-Length", Qt::CaseInsensitive) == 0)
            contentLength = value.toLongLong();
    }
    if (connection->received.size() < headEnd + 4 + contentLength)
        return;
    request.body = connection->received.mid(headEnd + 4, contentLength);
    connection->received.remove(0, headEnd + 4 + contentLength);
    requests_.append(request);

    std::optional<ScriptedReply> reply;
    if (responder_) {
        reply = responder_(request);
    } else if (!script_.empty()) {
        reply = std::move(script_.front());
        script_.pop_front();
    }
    if (!reply) {
        play(connection, httpError(500, R"({"error":{"message":"Nothing was scripted for this request."}})"));
        return;
    }
    play(connection, std::move(*reply));
}

void FakeResponsesServer::play(const std::shared_ptr<Connection> &connection, ScriptedReply reply)
{
    QTcpSocket *socket = connection->socket;
    connection->busy = true;
    socket->write("HTTP/1.1 " + QByteArray::number(reply.status) + " Scripted\r\nContent-Type: " + reply.contentType +
                  "\r\nTransfer-Encoding: chunked\r\n\r\n");

    QList<QByteArray> pieces;
    const qsizetype size = reply.pieceSize > 0 ? reply.pieceSize : std::max<qsizetype>(reply.body.size(), 1);
    for (qsizetype at = 0; at < reply.body.size(); at += size)
        pieces.append(reply.body.mid(at, size));

    auto finish = [this, connection, ending = reply.ending] {
        QTcpSocket *socket = connection->socket;
        switch (ending) {
        case ScriptedReply::Ending::Complete:
            socket->write("0\r\n\r\n");
            connection->busy = false;
            serve(connection);
            break;
        case ScriptedReply::Ending::Close: socket->disconnectFromHost(); break;
        case ScriptedReply::Ending::Reset: {
            socket->flush();
            const linger immediately{1, 0};
            ::setsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &immediately, sizeof immediately);
            socket->abort();
            break;
        }
        case ScriptedReply::Ending::Hang: break;
        }
    };

    auto writePiece = std::make_shared<std::function<void(qsizetype)>>();
    *writePiece = [socket, pieces, pause = reply.pauseMilliseconds, finish, writePiece](qsizetype index) {
        if (index == pieces.size()) {
            finish();
            *writePiece = nullptr;
            return;
        }
        const QByteArray &piece = pieces[index];
        socket->write(QByteArray::number(piece.size(), 16) + "\r\n" + piece + "\r\n");
        socket->flush();
        if (pause > 0)
            QTimer::singleShot(pause, socket, [writePiece, index] {
                if (*writePiece)
                    (*writePiece)(index + 1);
            });
        else
            (*writePiece)(index + 1);
    };
    (*writePiece)(0);
}

// MARK: - Items and whole turns

JSON FakeResponsesServer::message(const QString &text, const QString &id)
{
    return JSON::object({
        {QStringLiteral("type"), "message"},
        {QStringLiteral("id"), id},
        {QStringLiteral("role"), "assistant"},
        {QStringLiteral("status"), "completed"},
        {QStringLiteral("content"), JSON::array({JSON::object({{QStringLiteral("type"), "output_text"},
                                                               {QStringLiteral("text"), text},
                                                               {QStringLiteral("annotations"), JSON::array()}})})},
    });
}

JSON FakeResponsesServer::call(const QString &name, const JSON &arguments, const QString &callID)
{
    return JSON::object({
        {QStringLiteral("type"), "function_call"},
        {QStringLiteral("id"), QStringLiteral("fc_") + callID},
        {QStringLiteral("call_id"), callID},
        {QStringLiteral("name"), name},
        {QStringLiteral("namespace"), "zentoro"},
        {QStringLiteral("arguments"), QString::fromUtf8(arguments.encode())},
        {QStringLiteral("status"), "completed"},
    });
}

JSON FakeResponsesServer::response(const QString &id, const JSON::Array &output, const QString &status)
{
    return JSON::object({
        {QStringLiteral("id"), id},
        {QStringLiteral("object"), "response"},
        {QStringLiteral("status"), status},
        {QStringLiteral("output"), JSON(output)},
    });
}

ScriptedReply FakeResponsesServer::turn(const JSON::Array &items, const QString &responseID)
{
    EventStream stream;
    stream.event(JSON::object({{QStringLiteral("type"), "response.created"},
                               {QStringLiteral("response"), response(responseID, {}, QStringLiteral("in_progress"))}}));
    for (const JSON &item : items)
        stream.item(item);
    return stream.completed(response(responseID, items)).reply();
}

ScriptedReply FakeResponsesServer::textReply(const QString &text, const QString &responseID)
{
    return turn({message(text)}, responseID);
}

ScriptedReply FakeResponsesServer::functionCall(const QString &name, const JSON &arguments, const QString &callID,
                                                const QString &responseID)
{
    return turn({call(name, arguments, callID)}, responseID);
}

ScriptedReply FakeResponsesServer::httpError(int status, const QByteArray &body, const QByteArray &contentType)
{
    ScriptedReply reply;
    reply.status = status;
    reply.contentType = contentType;
    reply.body = body;
    return reply;
}

} // namespace zentoro::test
