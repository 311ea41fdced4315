#include "chatgpt/CallbackHead.h"
#include "chatgpt/OAuthCallbackServer.h"
#include "model_service/Failures.h"

#include "support/Await.h"

#include <QTcpSocket>

#include <gtest/gtest.h>

using namespace zentoro;
using test::spinUntil;

namespace {

// A client of the listener: sends bytes, and has what came back once the server closed.
struct Client {
    QTcpSocket socket;
    QByteArray received;

    explicit Client(quint16 port)
    {
        QObject::connect(&socket, &QTcpSocket::readyRead, [this] { received += socket.readAll(); });
        socket.connectToHost(QHostAddress::LocalHost, port);
        EXPECT_TRUE(socket.waitForConnected(5000));
    }
    void send(const QByteArray &bytes)
    {
        socket.write(bytes);
        socket.flush();
    }
    bool closed()
    {
        return spinUntil([this] { return socket.state() == QAbstractSocket::UnconnectedState; });
    }
};

QByteArray get(const QByteArray &target)
{
    return "GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";
}

} // namespace

TEST(CallbackServer, StrayAndHostileRequestsLeaveTheSignInWaitingAndTheFirstRedirectStands)
{
    const std::unique_ptr<OAuthCallbackServer> server = OAuthCallbackServer::start(0);
    const quint16 port = server->port();
    ASSERT_GT(port, 0);
    std::optional<OAuthCallbackServer::Parameters> result;
    startTask([&](TaskHandle task) -> QCoro::Task<> { result = co_await server->callback(task); });

    Client post(port);
    post.send("POST /auth/callback?code=x&state=y HTTP/1.1\r\n\r\n");
    Client slash(port);
    slash.send(get("/auth/callback/?code=x"));
    ASSERT_TRUE(post.closed() && slash.closed());
    EXPECT_TRUE(post.received.startsWith("HTTP/1.1 404 Not Found\r\n"));
    EXPECT_TRUE(slash.received.contains("<title>Not found</title>"));

    // A head that never ends is cut off at its limit, without an answer.
    Client flood(port);
    flood.send("GET /auth/callback?" + QByteArray(OAuthCallbackServer::headLimit + 10, 'a'));
    ASSERT_TRUE(flood.closed());
    EXPECT_TRUE(flood.received.isEmpty());
    // One that trickles in holds nothing up.
    Client slow(port);
    slow.send("GET /auth/callback?code=slow");
    EXPECT_FALSE(result);

    // The redirect arrives in pieces; the percent-encoded blank is a blank in the map.
    Client browser(port);
    browser.send("GET /auth/callback?code=a%20b&state=s&flag&state=t HTTP/1.1\r\n");
    browser.send("Host: 127.0.0.1\r\n\r\n");
    ASSERT_TRUE(spinUntil([&] { return result.has_value(); }));
    EXPECT_EQ(*result, (OAuthCallbackServer::Parameters{{"code", "a b"}, {"state", "t"}, {"flag", ""}}));
    ASSERT_TRUE(browser.closed());
    const QByteArray page = CallbackHead::page("Back to Zentoro", "You can close this tab and return to Zentoro.");
    EXPECT_EQ(browser.received, CallbackHead::response("200 OK", page));
    EXPECT_TRUE(page.startsWith("<!doctype html><html><head><meta charset=\"utf-8\"><title>Back to Zentoro</title>\n"));

    Client second(port);
    second.send(get("/auth/callback?error=access_denied"));
    ASSERT_TRUE(second.closed());
    EXPECT_TRUE(second.received.contains("<h1>Sign-in canceled</h1><p>You can close this tab.</p>"));
    EXPECT_EQ(test::await(server->callback(TaskHandle())).value("code"), "a b");
    server->stop();
    server->stop();
    EXPECT_EQ(test::await(server->callback(TaskHandle())).value("code"), "a b");
}

TEST(CallbackServer, AStopOrACancelEndsTheWaitAndAnotherPortIsTakenWhenThePreferredOneIsHeld)
{
    const std::unique_ptr<OAuthCallbackServer> first = OAuthCallbackServer::start(0);
    const std::unique_ptr<OAuthCallbackServer> second = OAuthCallbackServer::start(first->port());
    EXPECT_NE(second->port(), first->port());
    EXPECT_GT(second->port(), 0);

    bool cancelled = false;
    const TaskHandle waiting = startTask([&](TaskHandle task) -> QCoro::Task<> {
        try {
            co_await first->callback(task);
        } catch (const NetworkError &error) {
            cancelled = error.isCancelled();
        }
    });
    waiting.cancel();
    ASSERT_TRUE(spinUntil([&] { return waiting.isFinished(); }));
    EXPECT_TRUE(cancelled);

    cancelled = false;
    startTask([&](TaskHandle task) -> QCoro::Task<> {
        try {
            co_await second->callback(task);
        } catch (const NetworkError &error) {
            cancelled = error.isCancelled();
        }
    });
    second->stop();
    EXPECT_TRUE(spinUntil([&] { return cancelled; }));
    QTcpSocket late;
    late.connectToHost(QHostAddress::LocalHost, second->port());
    EXPECT_FALSE(late.waitForConnected(1000));
}

TEST(CallbackServer, TheContentLengthCountsBytes)
{
    const QByteArray body = CallbackHead::page(QString::fromUtf8("Zurück"), QString());
    const QByteArray response = CallbackHead::response("200 OK", body);
    EXPECT_TRUE(response.contains("Content-Length: " + QByteArray::number(body.size()) + "\r\n"));
    EXPECT_NE(body.size(), QString::fromUtf8(body).size());
}
