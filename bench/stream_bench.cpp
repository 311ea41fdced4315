// Streams about 50 MB of Responses events (many small text deltas and large finished
// items) from a local server through OpenAI::respond and through curl, and compares
// their wall and CPU times and the client's memory.

#include "core/MainTask.h"
#include "model_service/OpenAI.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <netinet/in.h>
#include <arpa/inet.h>
#include <signal.h>
#include <unistd.h>

extern char **environ;

using namespace zentoro;

namespace {

constexpr qsizetype targetBytes = 50 * 1000 * 1000;
constexpr int items = 20;
constexpr int runs = 3;

struct Stream {
    QByteArray bytes;
    int events = 0;
    qsizetype itemTextBytes = 0;
};

// What the service sends: for each item "added", its text in 32-byte deltas, "done" with
// the whole text; then "response.completed" without output, so the client keeps the items.
Stream buildStream()
{
    Stream stream;
    const qsizetype deltaText = 32;
    // Each delta event is about 6.7 times its text, and each item's text comes once more in "done".
    const qsizetype textPerItem = targetBytes / items * 10 / 77;
    stream.itemTextBytes = textPerItem;
    int sequence = 0;
    auto event = [&](const QByteArray &type, const QByteArray &json) {
        stream.bytes += "event: " + type + "\ndata: " + json + "\n\n";
        ++stream.events;
    };
    for (int i = 0; i < items; ++i) {
        const QByteArray id = "msg_" + QByteArray::number(i);
        QByteArray text;
        text.reserve(textPerItem);
        while (text.size() < textPerItem)
            text += "Lorem ipsum dolor sit amet, consectetur adipiscing elit; ";
        text.truncate(textPerItem);
        event("response.output_item.added",
              R"({"type":"response.output_item.added","sequence_number":)" + QByteArray::number(sequence++) +
                  R"(,"output_index":)" + QByteArray::number(i) + R"(,"item":{"id":")" + id +
                  R"(","type":"message","status":"in_progress","role":"assistant","content":[]}})");
        for (qsizetype at = 0; at < text.size(); at += deltaText) {
            event("response.output_text.delta",
                  R"({"type":"response.output_text.delta","sequence_number":)" + QByteArray::number(sequence++) +
                      R"(,"item_id":")" + id + R"(","output_index":)" + QByteArray::number(i) +
                      R"(,"content_index":0,"delta":")" + text.mid(at, deltaText) + R"(","logprobs":[]})");
        }
        event("response.output_item.done",
              R"({"type":"response.output_item.done","sequence_number":)" + QByteArray::number(sequence++) +
                  R"(,"output_index":)" + QByteArray::number(i) + R"(,"item":{"id":")" + id +
                  R"(","type":"message","status":"completed","role":"assistant","content":[{"type":"output_text","annotations":[],"text":")" +
                  text + R"("}]}})");
    }
    event("response.completed",
          R"({"type":"response.completed","sequence_number":)" + QByteArray::number(sequence++) +
              R"(,"response":{"id":"resp_bench","object":"response","status":"completed","output":[]}})");
    return stream;
}

void writeAll(int descriptor, const char *data, size_t length)
{
    while (length > 0) {
        const ssize_t written = ::write(descriptor, data, length);
        if (written <= 0)
            return;
        data += written;
        length -= size_t(written);
    }
}

// The server process: answers every request on its socket with the whole stream.
[[noreturn]] void serve(int listener, const Stream &stream)
{
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nContent-Length: " +
                            QByteArray::number(stream.bytes.size()) + "\r\nConnection: close\r\n\r\n";
    for (;;) {
        const int connection = ::accept(listener, nullptr, nullptr);
        if (connection < 0)
            continue;
        QByteArray request;
        char buffer[4096];
        qsizetype headEnd = -1;
        while (headEnd < 0) {
            const ssize_t got = ::read(connection, buffer, sizeof buffer);
            if (got <= 0)
                break;
            request.append(buffer, got);
            headEnd = request.indexOf("\r\n\r\n");
        }
        const qsizetype lengthAt = request.toLower().indexOf("content-length:");
        const qsizetype length = lengthAt < 0 ? 0 : request.mid(lengthAt + 15, 12).trimmed().split('\r')[0].toLongLong();
        while (headEnd >= 0 && request.size() < headEnd + 4 + length) {
            const ssize_t got = ::read(connection, buffer, sizeof buffer);
            if (got <= 0)
                break;
            request.append(buffer, got);
        }
        writeAll(connection, head.constData(), size_t(head.size()));
        writeAll(connection, stream.bytes.constData(), size_t(stream.bytes.size()));
        ::shutdown(connection, SHUT_WR);
        while (::read(connection, buffer, sizeof buffer) > 0) {
        }
        ::close(connection);
    }
}

double seconds(const timeval &time)
{
    return double(time.tv_sec) + double(time.tv_usec) / 1e6;
}

double cpuSeconds(const rusage &usage)
{
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct Timing {
    double wall = 0;
    double cpu = 0;
};

Timing median(std::vector<Timing> timings)
{
    auto middle = [&](auto member) {
        std::vector<double> values;
        for (const Timing &timing : timings)
            values.push_back(timing.*member);
        std::sort(values.begin(), values.end());
        return values[values.size() / 2];
    };
    return Timing{middle(&Timing::wall), middle(&Timing::cpu)};
}

Timing runCurl(const QByteArray &url)
{
    std::vector<const char *> arguments{"curl", "-sN", "-o", "/dev/null", "-H", "Content-Type: application/json",
                                        "--data-binary", "{}", url.constData(), nullptr};
    QElapsedTimer clock;
    clock.start();
    pid_t child = 0;
    if (posix_spawnp(&child, "curl", nullptr, nullptr, const_cast<char **>(arguments.data()), environ) != 0) {
        std::fprintf(stderr, "curl can't be started\n");
        std::exit(1);
    }
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    return Timing{clock.nsecsElapsed() / 1e9, cpuSeconds(usage)};
}

Timing runClient(qsizetype expectedItemText)
{
    rusage before{};
    ::getrusage(RUSAGE_SELF, &before);
    QElapsedTimer clock;
    clock.start();
    std::optional<JSON> response;
    int started = 0;
    TaskHandle task = startTask([&](TaskHandle self) -> QCoro::Task<> {
        const QString bearer = QString::fromUtf8("sk-bench");
        const JSON body = JSON::object({{"model", "bench"}, {"stream", true}});
        const std::function<void(const JSON &)> onItemStarted = [&started](const JSON &) { ++started; };
        try {
            response = co_await OpenAI::respond(self, bearer, body, onItemStarted);
        } catch (...) {
            std::fprintf(stderr, "the client failed: %s\n", qPrintable(describe(std::current_exception())));
            std::exit(1);
        }
    });
    while (!task.isFinished())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const double wall = clock.nsecsElapsed() / 1e9;
    rusage after{};
    ::getrusage(RUSAGE_SELF, &after);

    const JSON::Array *output = response ? response->arrayAt("output") : nullptr;
    if (!output || output->size() != size_t(items) || started != items ||
        output->back().arrayAt("content")->front().stringAt("text")->size() != expectedItemText) {
        std::fprintf(stderr, "the client's response is not the stream's\n");
        std::exit(1);
    }
    return Timing{wall, cpuSeconds(after) - cpuSeconds(before)};
}

// The resident set and its peak so far, in bytes.
std::pair<double, double> residentSet()
{
    QFile status(QStringLiteral("/proc/self/status"));
    double now = 0, peak = 0;
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("VmRSS:"))
                now = line.mid(6).trimmed().split(' ')[0].toDouble() * 1024;
            if (line.startsWith("VmHWM:"))
                peak = line.mid(6).trimmed().split(' ')[0].toDouble() * 1024;
        }
    }
    return {now, peak};
}

} // namespace

int main(int argc, char **argv)
{
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(listener, reinterpret_cast<sockaddr *>(&address), length) != 0 || ::listen(listener, 8) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &length) != 0) {
        std::perror("listen");
        return 1;
    }
    const int port = ntohs(address.sin_port);

    // The stream is built in the server process only, so the client's memory holds none of it.
    const pid_t server = ::fork();
    if (server == 0)
        serve(listener, buildStream());
    ::close(listener);

    QCoreApplication application(argc, argv);
    const QByteArray origin = "http://127.0.0.1:" + QByteArray::number(port);
    qputenv("ZENTORO_API_BASE", origin);
    const Stream shape = [] {
        Stream stream;
        stream.itemTextBytes = targetBytes / items * 10 / 77;
        return stream;
    }();

    std::vector<Timing> curlRuns, clientRuns;
    const auto [residentBefore, peakBefore] = residentSet();
    Q_UNUSED(peakBefore);
    for (int run = 0; run < runs; ++run) {
        curlRuns.push_back(runCurl(origin + "/v1/responses"));
        clientRuns.push_back(runClient(shape.itemTextBytes));
    }
    const auto [residentAfter, peakAfter] = residentSet();
    Q_UNUSED(residentAfter);
    ::kill(server, SIGTERM);
    ::waitpid(server, nullptr, 0);

    const Timing curl = median(curlRuns);
    const Timing client = median(clientRuns);
    const double megabyte = 1e6;
    const Stream sample = buildStream();
    std::printf("stream: %.1f MB in %d events, %d items of %.0f kB text\n", sample.bytes.size() / megabyte,
                sample.events, items, sample.itemTextBytes / 1e3);
    std::printf("curl -sN:        wall %.3f s, CPU %.3f s (median of %d)\n", curl.wall, curl.cpu, runs);
    std::printf("OpenAI::respond: wall %.3f s, CPU %.3f s (median of %d)\n", client.wall, client.cpu, runs);
    std::printf("client / curl:   wall %.2fx (goal 1.5x or less), CPU %.2fx\n", client.wall / curl.wall,
                client.cpu / curl.cpu);
    std::printf("client memory:   peak RSS growth %.1f MB; the finished items hold %.1f MB of text\n",
                (peakAfter - residentBefore) / megabyte, items * sample.itemTextBytes / megabyte);
    return 0;
}
