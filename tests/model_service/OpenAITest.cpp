#include "model_service/OpenAI.h"
#include "core/Failure.h"
#include "model_service/ResponseStream.h"
#include "model_service/ServiceOrigin.h"

#include "support/Await.h"
#include "support/FakeResponsesServer.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <atomic>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace zentoro;
using namespace zentoro::test;
using Ending = ScriptedReply::Ending;

namespace {

template <typename Failure>
std::optional<Failure> caught(const std::exception_ptr &error)
{
    try {
        if (error)
            std::rethrow_exception(error);
    } catch (const Failure &failure) {
        return failure;
    } catch (...) {
    }
    return std::nullopt;
}

struct Outcome {
    std::optional<JSON> response;
    std::exception_ptr error;
    QList<JSON> started;

    OpenAI::Failure failure() const
    {
        const std::optional<OpenAI::Failure> failure = caught<OpenAI::Failure>(error);
        EXPECT_TRUE(failure) << "expected an OpenAI::Failure";
        return failure.value_or(OpenAI::Failure(-1, std::nullopt, std::nullopt, QString()));
    }
    std::optional<NetworkError> networkError() const { return caught<NetworkError>(error); }
};

const JSON sampleBody = JSON::object({{"model", "gpt-test"}, {"stream", true}, {"input", JSON::array({"héllo"})}});

// One request; `onStart` runs inside each item's callback, and `cancelFirst` cancels the task
// before it asks.
TaskHandle start(
    Outcome &outcome, std::function<void()> onStart = [] {}, bool cancelFirst = false)
{
    return startTask([&outcome, onStart, cancelFirst](TaskHandle self) -> QCoro::Task<> {
        if (cancelFirst)
            self.cancel();
        const QString bearer = QString::fromUtf8("sk-test");
        const std::function<void(const JSON &)> onItemStarted = [&outcome, onStart](const JSON &item) {
            outcome.started.append(item);
            onStart();
        };
        try {
            outcome.response = co_await OpenAI::respond(self, bearer, sampleBody, onItemStarted);
        } catch (...) {
            outcome.error = std::current_exception();
        }
    });
}

class OpenAITest : public ::testing::Test {
protected:
    void SetUp() override { server.becomeModelService(); }

    Outcome respond(ScriptedReply reply)
    {
        server.enqueue(std::move(reply));
        Outcome outcome;
        TaskHandle task = start(outcome);
        EXPECT_TRUE(spinUntil([&] { return task.isFinished(); }));
        return outcome;
    }

    FakeResponsesServer server;
};

JSON item(const QString &id)
{
    return FakeResponsesServer::message(id, id);
}

// A service on its own thread that answers one request with `body` through blocking writes,
// so it keeps sending while the main thread is busy, and counts what the connection took.
class ThreadedService {
public:
    explicit ThreadedService(QByteArray body) : body_(std::move(body))
    {
        listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (::bind(listener_, reinterpret_cast<sockaddr *>(&address), length) == 0 && ::listen(listener_, 1) == 0 &&
            ::getsockname(listener_, reinterpret_cast<sockaddr *>(&address), &length) == 0)
            port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { serve(); });
    }

    ~ThreadedService()
    {
        ::shutdown(listener_, SHUT_RDWR);
        // A client that never finished would otherwise hold the thread in its last read.
        if (const int connection = connection_; connection >= 0)
            ::shutdown(connection, SHUT_RDWR);
        thread_.join();
        ::close(listener_);
    }

    QString origin() const { return QStringLiteral("http://127.0.0.1:%1").arg(port_); }
    qint64 sent() const { return sent_; }
    qint64 size() const { return body_.size(); }

private:
    void serve()
    {
        const int connection = ::accept(listener_, nullptr, nullptr);
        if (connection < 0)
            return;
        connection_ = connection;
        // A small send buffer, so what the connection holds is mostly what the client let in.
        const int sendBuffer = 64 << 10;
        ::setsockopt(connection, SOL_SOCKET, SO_SNDBUF, &sendBuffer, sizeof sendBuffer);
        QByteArray request;
        char buffer[4096];
        for (ssize_t got = 1; got > 0 && !request.contains("\r\n\r\n");) {
            got = ::read(connection, buffer, sizeof buffer);
            request.append(buffer, std::max<ssize_t>(got, 0));
        }
        const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nContent-Length: " +
                                QByteArray::number(body_.size()) + "\r\n\r\n";
        ::send(connection, head.constData(), size_t(head.size()), MSG_NOSIGNAL);
        for (qsizetype at = 0; at < body_.size();) {
            const ssize_t written = ::send(connection, body_.constData() + at,
                                           size_t(std::min<qsizetype>(body_.size() - at, 16 << 10)), MSG_NOSIGNAL);
            if (written <= 0)
                break;
            at += written;
            sent_ = at;
        }
        ::shutdown(connection, SHUT_WR);
        while (::read(connection, buffer, sizeof buffer) > 0) {
        }
        ::close(connection_.exchange(-1));
    }

    QByteArray body_;
    int listener_ = -1;
    int port_ = 0;
    std::atomic<int> connection_ = -1;
    std::atomic<qint64> sent_ = 0;
    std::thread thread_;
};

} // namespace

TEST_F(OpenAITest, RequestsPostTheBodyWithOurHeadersInOrderAndShareTheServer)
{
    qputenv("ZENTORO_API_BASE", (server.origin() + "/").toUtf8());
    for (int i = 0; i < 3; ++i) {
        const Outcome outcome = respond(FakeResponsesServer::textReply("hi", QStringLiteral("resp_%1").arg(i)));
        ASSERT_TRUE(outcome.response);
        EXPECT_EQ(outcome.response->stringAt("id"), QStringLiteral("resp_%1").arg(i));
    }
    ASSERT_EQ(server.requests().size(), 3);
    const RecordedRequest &request = server.requests().first();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path, "/v1/responses");
    EXPECT_EQ(request.json(), sampleBody);
    const QList<QByteArray> names{"Authorization", "Content-Type", "Accept", "User-Agent"};
    QList<QByteArray> ours;
    for (const auto &[name, value] : request.headers) {
        if (names.contains(name))
            ours.append(name + ": " + value);
    }
    EXPECT_EQ(ours, (QList<QByteArray>{"Authorization: Bearer sk-test", "Content-Type: application/json",
                                       "Accept: text/event-stream", "User-Agent: Zentoro/" ZENTORO_VERSION}));
}

// A server saved in Settings is where requests go, unless `ZENTORO_API_BASE` names another for
// this run; what can't be a server's origin is refused in words.
TEST_F(OpenAITest, ASavedOriginReceivesTheRequestsUnlessTheEnvironmentNamesAnother)
{
    qunsetenv("ZENTORO_API_BASE");
    ServiceOrigin::save(server.origin() + "//");
    EXPECT_TRUE(respond(FakeResponsesServer::textReply("hi", "resp_1")).response);
    ASSERT_EQ(server.requests().size(), 1);
    EXPECT_EQ(server.requests().first().path, "/v1/responses");

    qputenv("ZENTORO_API_BASE", "http://127.0.0.1:1");
    EXPECT_EQ(OpenAI::origin(), "http://127.0.0.1:1");
    qunsetenv("ZENTORO_API_BASE");
    ServiceOrigin::save(" ");
    EXPECT_EQ(OpenAI::origin(), "https://api.openai.com");

    for (const char *refused : {"ftp://example.com", "localhost:8080", "http://", "http://h/?a=1", "http://h:1/v1/"}) {
        try {
            ServiceOrigin::save(QString::fromUtf8(refused));
            ADD_FAILURE() << refused << " was saved";
        } catch (const Failure &failure) {
            EXPECT_FALSE(failure.message.isEmpty());
        }
    }
    EXPECT_FALSE(ServiceOrigin::saved());
}

TEST_F(OpenAITest, ReturnsTheCompletedResponseAndReportsItemsAsTheyStart)
{
    const JSON::Array items{item("a"),
                            FakeResponsesServer::call("read_file", JSON::object({{"path", "AppRoot.swift"}}))};
    const Outcome outcome = respond(FakeResponsesServer::turn(items, "resp_7"));
    ASSERT_TRUE(outcome.response) << describe(outcome.error).toStdString();
    EXPECT_EQ(*outcome.response, FakeResponsesServer::response("resp_7", items));
    ASSERT_EQ(outcome.started.size(), 2);
    EXPECT_EQ(outcome.started[0].stringAt("id"), "a");
    EXPECT_EQ(outcome.started[1].stringAt("name"), "read_file");
}

TEST_F(OpenAITest, AssemblesTheOutputFromFinishedItemsOnlyWhenTheResponseHasNone)
{
    // Empty output: the "done" items in the order they finished.
    Outcome outcome = respond(EventStream()
                                  .added(item("a"))
                                  .added(item("b"))
                                  .done(item("b"))
                                  .done(item("a"))
                                  .completed(FakeResponsesServer::response("r", {}))
                                  .reply());
    ASSERT_TRUE(outcome.response);
    EXPECT_EQ(*outcome.response->find("output"), JSON::array({item("b"), item("a")}));

    outcome = respond(EventStream().done(item("a")).completed(JSON::object({{"id", "r"}})).reply());
    ASSERT_TRUE(outcome.response);
    EXPECT_EQ(*outcome.response, JSON::object({{"id", "r"}, {"output", JSON::array({item("a")})}}));

    outcome = respond(EventStream().done(item("a")).completed(FakeResponsesServer::response("r", {item("z")})).reply());
    ASSERT_TRUE(outcome.response);
    EXPECT_EQ(*outcome.response->find("output"), JSON::array({item("z")}));

    outcome = respond(EventStream().done(item("a")).completed("odd").reply());
    ASSERT_TRUE(outcome.response);
    EXPECT_EQ(*outcome.response, JSON("odd"));

    // An incomplete response is an answer, not a failure.
    outcome = respond(
        EventStream().done(item("a")).incomplete(FakeResponsesServer::response("r", {}, "incomplete")).reply());
    ASSERT_TRUE(outcome.response);
    EXPECT_EQ(outcome.response->stringAt("status"), "incomplete");
    EXPECT_EQ(*outcome.response->find("output"), JSON::array({item("a")}));
}

TEST_F(OpenAITest, ReadsEventsHoweverTheyAreFramedSplitOrSized)
{
    const QByteArray completed = R"({"type":"response.completed","response":{"id":"r","output":[]}})";
    const QByteArray added = R"({"type":"response.output_item.added","item":{"id":"x"}})";
    // No blank after the colon, CR LF and lone CR terminators, comments, and a last line
    // without a terminator.
    const QByteArray body = ": keep-alive\r\nevent: ignored\r\ndata:" + added + "\r\rdata:\t " + completed;
    for (qsizetype piece : {qsizetype(0), qsizetype(1), qsizetype(7)}) {
        SCOPED_TRACE(piece);
        ScriptedReply reply;
        reply.body = body;
        const Outcome outcome = respond(reply.inPieces(piece));
        ASSERT_TRUE(outcome.response) << describe(outcome.error).toStdString();
        EXPECT_EQ(outcome.response->stringAt("id"), "r");
        EXPECT_EQ(outcome.started, QList<JSON>{JSON::object({{"id", "x"}})});
    }

    // An event in many small writes, and one longer than many reads.
    const QString many = QString(5000, u'ä'), longer = QString(400'000, u'é');
    Outcome outcome = respond(FakeResponsesServer::turn({item(many)}).inPieces(13, 0));
    ASSERT_TRUE(outcome.response);
    EXPECT_EQ(*outcome.response->find("output"), JSON::array({item(many)}));
    outcome = respond(FakeResponsesServer::turn({item(longer), item("after")}));
    ASSERT_TRUE(outcome.response);
    EXPECT_EQ(*outcome.response->find("output"), JSON::array({item(longer), item("after")}));
}

TEST_F(OpenAITest, SkipsWhatCannotBeAnEventAndActsOnEventsSpelledAnyWay)
{
    const Outcome outcome = respond(
        EventStream()
            .raw("data: {not json\n\n")
            .raw("data: [\"error\"]\n\n")
            .raw("data: \"response.completed\"\n\n")
            .raw("data: {\"item\":{\"id\":\"failed\"}}\n\n")
            .raw("data: {\"type\":7,\"item\":{\"id\":\"completed\"}}\n\n")
            .raw("data: {\"type\":\"response.output_item.added\",\"item\":\"\xff\xfe\"}\n\n")
            .raw("data: {\"type\":\"error\"\n\n")
            .raw("garbage without a prefix\n")
            .raw("data : {\"type\":\"error\"}\n")
            .raw("DATA: {\"type\":\"error\"}\n")
            .raw(R"(data: {"sequence_number":1,"type":"response.output_item.added","item":{"id":"late"}})"
                 "\n")
            .raw(R"(data: { "type" : "response.output_item.added","item":{"id":"spaced"}})"
                 "\n")
            .raw(R"(data: {"type":"response.output_item.\u0061dded","item":{"id":"escaped"}})"
                 "\n")
            .raw(R"(data: {"type":"response.\u0063ompleted","response":{"id":"escaped"}})"
                 "\n")
            .reply());
    ASSERT_TRUE(outcome.response) << describe(outcome.error).toStdString();
    EXPECT_EQ(outcome.response->stringAt("id"), "escaped");
    QStringList started;
    for (const JSON &item : outcome.started)
        started.append(item.stringAt("id").value_or("?"));
    EXPECT_EQ(started, (QStringList{"late", "spaced", "escaped"}));
}

TEST_F(OpenAITest, AnEndWithoutATerminalEventIsAFailure)
{
    const OpenAI::Failure closed(0, std::nullopt, std::nullopt, "The connection closed before the response finished.");

    // A terminal event without its response is skipped, so the stream ends unfinished.
    Outcome outcome = respond(
        EventStream().added(item("a")).event(JSON::object({{"type", "response.completed"}})).reply());
    EXPECT_EQ(outcome.failure(), closed);
    EXPECT_EQ(outcome.started.size(), 1);

    // "[DONE]" ends the reading, and whatever follows is never looked at.
    outcome = respond(
        EventStream().done(item("a")).doneMarker().completed(FakeResponsesServer::response("r", {})).reply());
    EXPECT_EQ(outcome.failure(), closed);

    outcome = respond(ScriptedReply());
    EXPECT_EQ(outcome.failure(), closed);
    EXPECT_EQ(outcome.failure().errorDescription(), closed.message);
}

TEST_F(OpenAITest, FailedAndErrorEventsCarryTheServicesWords)
{
    const JSON full = JSON::object({{"code", "server_error"}, {"param", "input"}, {"message", "Try again."}});
    const OpenAI::Failure fullFailure(0, "server_error", "input", "Try again.");
    const OpenAI::Failure bare(0, std::nullopt, std::nullopt, "The response failed.");

    EXPECT_EQ(respond(EventStream().failed(full).reply()).failure(), fullFailure);
    EXPECT_EQ(respond(EventStream().failed(JSON::object({{"code", 5}})).reply()).failure(), bare);
    EXPECT_EQ(respond(EventStream().event(JSON::object({{"type", "response.failed"}})).reply()).failure(), bare);
    EXPECT_EQ(respond(EventStream().error(full).reply()).failure(), fullFailure);
    EXPECT_EQ(respond(EventStream().error("overloaded").reply()).failure(), bare);

    // Without an `error` key the event itself holds the fields.
    JSON flat = full;
    flat.set("type", "error");
    EXPECT_EQ(respond(EventStream().event(flat).reply()).failure(), fullFailure);

    // Failures stop the reading: a later completion doesn't count.
    EXPECT_FALSE(respond(EventStream().error(full).completed(FakeResponsesServer::response("r", {})).reply()).response);
}

TEST_F(OpenAITest, HTTPErrorsBecomeFailuresWithTheirStatusAndTheStartOfTheirBody)
{
    Outcome outcome = respond(FakeResponsesServer::httpError(
        400, R"({"error":{"message":"Too long.","code":"context_length_exceeded","param":"input"}})"));
    EXPECT_EQ(outcome.failure(), OpenAI::Failure(400, "context_length_exceeded", "input", "Too long."));
    EXPECT_EQ(outcome.failure().errorDescription(), "OpenAI error 400: Too long.");

    outcome = respond(FakeResponsesServer::httpError(503, "", "text/plain"));
    EXPECT_EQ(outcome.failure(), OpenAI::Failure(503, std::nullopt, std::nullopt, "HTTP 503"));

    const QByteArray html = "<html><body>" + QByteArray(10'000, 'x') + "</body></html>";
    outcome = respond(FakeResponsesServer::httpError(502, html, "text/html").inPieces(1000));
    EXPECT_EQ(outcome.failure(), OpenAI::Failure(502, std::nullopt, std::nullopt, QString::fromLatin1(html.left(400))));
    EXPECT_TRUE(outcome.started.isEmpty());

    // The server never ends this body: the client stops reading after the limit.
    ScriptedReply endless = FakeResponsesServer::httpError(500, QByteArray(300'000, '<'), "text/html");
    QElapsedTimer clock;
    clock.start();
    outcome = respond(endless.inPieces(50'000).endingWith(Ending::Hang));
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_EQ(outcome.failure(), OpenAI::Failure(500, std::nullopt, std::nullopt, QString(400, u'<')));
}

TEST_F(OpenAITest, ACutOrResetStreamIsATransportError)
{
    for (Ending ending : {Ending::Close, Ending::Reset}) {
        ScriptedReply cut = EventStream().added(item("a")).textDelta("par").reply();
        const Outcome outcome = respond(cut.endingWith(ending));
        ASSERT_TRUE(outcome.networkError()) << describe(outcome.error).toStdString();
        EXPECT_FALSE(outcome.networkError()->isCancelled());
        EXPECT_FALSE(outcome.response);
    }
}

TEST_F(OpenAITest, CancellingAbortsASlowStreamAtOnceAndBeforehandSendsNothing)
{
    // The item starts at once; the rest would take half a minute.
    EventStream stream;
    stream.added(item("a"));
    const qsizetype head = stream.bytes().size();
    for (int i = 0; i < 300; ++i)
        stream.textDelta("slow");
    ScriptedReply slow = stream.completed(FakeResponsesServer::response("r", {})).reply();
    server.enqueue(slow.inPieces(head, 100));

    Outcome outcome;
    TaskHandle task = start(outcome);
    ASSERT_TRUE(spinUntil([&] { return !outcome.started.isEmpty(); }));
    QElapsedTimer clock;
    clock.start();
    task.cancel();
    ASSERT_TRUE(spinUntil([&] { return task.isFinished(); }, std::chrono::seconds(2)));
    EXPECT_LT(clock.elapsed(), 100);
    ASSERT_TRUE(outcome.networkError());
    EXPECT_TRUE(outcome.networkError()->isCancelled());
    EXPECT_TRUE(spinUntil([&] { return server.openConnections() == 0; }, std::chrono::seconds(2)));

    Outcome beforehand;
    task = start(
        beforehand, [] {}, true);
    ASSERT_TRUE(spinUntil([&] { return task.isFinished(); }));
    ASSERT_TRUE(beforehand.networkError());
    EXPECT_TRUE(beforehand.networkError()->isCancelled());
    EXPECT_EQ(server.requests().size(), 1);
}

TEST_F(OpenAITest, AStreamAheadOfItsReaderWaitsInTheConnection)
{
    // 32 MB of deltas behind the first item: while the main thread is held up in that item's
    // callback, the client may buffer a little of the rest, not the whole stream.
    EventStream stream, deltas;
    stream.added(item("a"));
    for (int i = 0; i < 2000; ++i)
        deltas.textDelta(QString(64, u'x'));
    while (stream.bytes().size() < 32'000'000)
        stream.raw(deltas.bytes());
    stream.done(item("a")).completed(FakeResponsesServer::response("r", {}));
    ThreadedService service(stream.bytes());
    qputenv("ZENTORO_API_BASE", service.origin().toUtf8());

    qint64 sentWhileBusy = -1;
    Outcome outcome;
    TaskHandle task = start(outcome, [&] {
        // Busy until the service can send no more, or has sent everything.
        QElapsedTimer clock;
        clock.start();
        qint64 last = -1;
        int still = 0;
        while (still < 6 && service.sent() < service.size() && clock.elapsed() < 10'000) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            still = service.sent() == last ? still + 1 : 0;
            last = service.sent();
        }
        sentWhileBusy = service.sent();
    });
    ASSERT_TRUE(spinUntil([&] { return task.isFinished(); }, std::chrono::seconds(60)));
    ASSERT_TRUE(outcome.response) << describe(outcome.error).toStdString();
    EXPECT_EQ(outcome.response->arrayAt("output")->size(), 1u);
    EXPECT_LT(sentWhileBusy, service.size() / 4);
}

TEST(OpenAIFailure, TakesTheMessageCodeAndParamFromTheBody)
{
    using OpenAI::Failure;
    EXPECT_EQ(OpenAI::failure(429, R"({"error":"Slow down."})"),
              Failure(429, std::nullopt, std::nullopt, "Slow down."));
    EXPECT_EQ(OpenAI::failure(403, R"({"detail":{"code":"deactivated","message":"Gone."}})"),
              Failure(403, "deactivated", std::nullopt, "Gone."));
    EXPECT_EQ(OpenAI::failure(401, R"({"detail":"Unauthorized","error":{"param":"x"}})"),
              Failure(401, std::nullopt, "x", "Unauthorized"));
    // `detail` never gives the param, and fields of another case count as absent.
    EXPECT_EQ(OpenAI::failure(400, R"({"detail":{"param":"p","message":"m"},"error":{"code":1}})"),
              Failure(400, std::nullopt, std::nullopt, "m"));
    // JSON that isn't an object gives its text.
    EXPECT_EQ(OpenAI::failure(500, "[1,2]").message, "[1,2]");
    EXPECT_EQ(OpenAI::failure(500, R"({"error":""})").message, "HTTP 500");
    EXPECT_EQ(OpenAI::failure(0, "").errorDescription(), "HTTP 0");
    // "é" is two bytes and the 400th byte is its first half: the cut character is repaired.
    const QByteArray cut = QByteArray(399, 'a') + "é" + QByteArray(100, 'b');
    EXPECT_EQ(OpenAI::failure(502, cut).message, QString(399, u'a') + QChar(QChar::ReplacementCharacter));
}

// A service gone wrong: a line that never ends or items that never stop fail the response
// with words once they pass what Zentoro keeps, while a call with 10 MB of arguments is read.
TEST(ResponseStreamLimits, EndlessLinesAndItemsFailWithWordsWhileLargeArgumentsAreRead)
{
    const OpenAI::Failure tooLarge(0, std::nullopt, std::nullopt, "The response was larger than Zentoro can read.");
    const QByteArray spaces(1 << 20, ' ');

    OpenAI::ResponseStream endlessLine([](const JSON &) {});
    endlessLine.feed("data: {\"type\":\"response.output_text.delta\",\"delta\":\"");
    for (int megabyte = 0; megabyte < 80 && !endlessLine.hasEnded(); ++megabyte)
        endlessLine.feed(spaces);
    ASSERT_TRUE(endlessLine.hasEnded());
    try {
        endlessLine.result();
        ADD_FAILURE() << "an endless line was taken";
    } catch (const OpenAI::Failure &failure) {
        EXPECT_EQ(failure, tooLarge);
    }

    const QByteArray arguments = QByteArray(10 << 20, 'x');
    const QByteArray call = "{\"type\":\"function_call\",\"call_id\":\"c1\",\"name\":\"write_file\",\"arguments\":\"" +
                            arguments + "\"}";
    OpenAI::ResponseStream large([](const JSON &) {});
    large.feed("data: {\"type\":\"response.output_item.done\",\"item\":" + call + "}\n\n");
    large.feed("data: {\"type\":\"response.completed\",\"response\":{\"id\":\"r\",\"output\":[]}}\n\n");
    ASSERT_TRUE(large.hasEnded());
    EXPECT_EQ(large.result().arrayAt(QStringLiteral("output"))->front().stringAt(QStringLiteral("arguments"))->size(),
              arguments.size());

    OpenAI::ResponseStream endlessItems([](const JSON &) {});
    for (int item = 0; item < 40 && !endlessItems.hasEnded(); ++item)
        endlessItems.feed("data: {\"type\":\"response.output_item.done\",\"item\":" + call + "}\n\n");
    ASSERT_TRUE(endlessItems.hasEnded());
    EXPECT_THROW(endlessItems.result(), OpenAI::Failure);
}
