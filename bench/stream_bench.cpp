// Streams Responses events (many small text deltas and large finished items) from a local
// server through OpenAI::respond and through curl, and compares their wall and CPU times. It
// does so for two stream lengths that carry the same finished items, the longer one with more
// deltas, so the client's memory shows whether it follows the items or the stream's length.
// Each client run is a process of its own, so one run's freed memory can't hide the next one's.

#include "Measure.h"
#include "core/MainTask.h"
#include "model_service/OpenAI.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <arpa/inet.h>
#include <cstdio>
#include <cstring>
#include <netinet/in.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

using namespace zentoro;

namespace {

constexpr int items = 20;
constexpr qsizetype textPerItem = 325'000;
constexpr int runs = 9;
constexpr double megabyte = 1e6;

struct Stream {
    QByteArray bytes;
    int events = 0;
};

// What the service sends: for each item "added", 32-byte deltas of its text until the item's
// share of `targetBytes` is reached, and "done" with the whole text; then "response.completed"
// without output, so the client keeps the items.
Stream buildStream(qsizetype targetBytes)
{
    Stream stream;
    const qsizetype deltaText = 32;
    int sequence = 0;
    auto event = [&](const QByteArray &type, const QByteArray &json) {
        stream.bytes += "event: " + type + "\ndata: " + json + "\n\n";
        ++stream.events;
    };
    QByteArray text;
    text.reserve(textPerItem);
    while (text.size() < textPerItem)
        text += "Lorem ipsum dolor sit amet, consectetur adipiscing elit; ";
    text.truncate(textPerItem);
    for (int i = 0; i < items; ++i) {
        const QByteArray id = "msg_" + QByteArray::number(i);
        const qsizetype itemEnd = targetBytes / items * (i + 1) - qsizetype(text.size() * 1.05);
        event("response.output_item.added",
              R"({"type":"response.output_item.added","sequence_number":)" + QByteArray::number(sequence++) +
                  R"(,"output_index":)" + QByteArray::number(i) + R"(,"item":{"id":")" + id +
                  R"(","type":"message","status":"in_progress","role":"assistant","content":[]}})");
        for (qsizetype at = 0; stream.bytes.size() < itemEnd; at = (at + deltaText) % text.size()) {
            event("response.output_text.delta",
                  R"({"type":"response.output_text.delta","sequence_number":)" + QByteArray::number(sequence++) +
                      R"(,"item_id":")" + id + R"(","output_index":)" + QByteArray::number(i) +
                      R"(,"content_index":0,"delta":")" + text.mid(at, deltaText) + R"(","logprobs":[]})");
        }
        event(
            "response.output_item.done",
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
        const qsizetype length = lengthAt < 0 ? 0
                                              : request.mid(lengthAt + 15, 12).trimmed().split('\r')[0].toLongLong();
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

struct Run {
    double wall = 0;
    double cpu = 0;
    double growth = 0;
};

Run runCurl(const QByteArray &url)
{
    std::vector<const char *> arguments{"curl",          "-sN", "-o",
                                        "/dev/null",     "-H",  "Content-Type: application/json",
                                        "--data-binary", "{}",  url.constData(),
                                        nullptr};
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
    return Run{clock.nsecsElapsed() / 1e9, cpuSeconds(usage), 0};
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

// One request through the client: its wall and CPU seconds.
Run respondOnce()
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
        output->back().arrayAt("content")->front().stringAt("text")->size() != textPerItem) {
        std::fprintf(stderr, "the client's response is not the stream's\n");
        std::exit(1);
    }
    return Run{wall, cpuSeconds(after) - cpuSeconds(before), 0};
}

// The client in a process of its own (`stream_bench client <origin>`): the first request
// shows the peak resident growth, from a fresh process; the second, on the connection and
// threads the first left, as in the program's later turns, gives the times. Prints wall and
// CPU seconds and the growth in bytes.
int clientRun(int argc, char **argv, const QByteArray &origin)
{
    QCoreApplication application(argc, argv);
    qputenv("ZENTORO_API_BASE", origin);
    const double residentBefore = residentSet().first;
    respondOnce();
    const double growth = residentSet().second - residentBefore;
    const Run run = respondOnce();
    std::printf("%f %f %f\n", run.wall, run.cpu, growth);
    return 0;
}

Run runClient(const QByteArray &origin)
{
    const QByteArray command = QFile::encodeName(QCoreApplication::applicationFilePath()) + " client " + origin;
    FILE *child = ::popen(command.constData(), "r");
    Run run;
    const bool read = child && std::fscanf(child, "%lf %lf %lf", &run.wall, &run.cpu, &run.growth) == 3;
    if (!child || ::pclose(child) != 0 || !read) {
        std::fprintf(stderr, "a client run failed\n");
        std::exit(1);
    }
    return run;
}

struct Figures {
    qsizetype streamBytes = 0;
    int events = 0;
    Run curl;
    Run client;
};

// Serves a stream of about `targetBytes` from a process of its own and measures curl and the
// client against it, turn about.
Figures measure(qsizetype targetBytes)
{
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(listener, reinterpret_cast<sockaddr *>(&address), length) != 0 || ::listen(listener, 8) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &length) != 0) {
        std::perror("listen");
        std::exit(1);
    }
    const QByteArray origin = "http://127.0.0.1:" + QByteArray::number(ntohs(address.sin_port));
    const Stream stream = buildStream(targetBytes);
    const pid_t server = ::fork();
    if (server == 0)
        serve(listener, stream);
    ::close(listener);

    std::vector<double> curlWall, curlCpu, clientWall, clientCpu;
    double growth = 0;
    for (int run = 0; run < runs; ++run) {
        const Run curl = runCurl(origin + "/v1/responses");
        const Run client = runClient(origin);
        curlWall.push_back(curl.wall);
        curlCpu.push_back(curl.cpu);
        clientWall.push_back(client.wall);
        clientCpu.push_back(client.cpu);
        growth = std::max(growth, client.growth);
    }
    ::kill(server, SIGTERM);
    ::waitpid(server, nullptr, 0);

    return Figures{stream.bytes.size(), stream.events, Run{bench::median(curlWall), bench::median(curlCpu), 0},
                   Run{bench::median(clientWall), bench::median(clientCpu), growth}};
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && std::strcmp(argv[1], "client") == 0)
        return clientRun(argc, argv, argv[2]);

    QCoreApplication application(argc, argv);
    std::vector<Figures> all;
    for (const qsizetype target : {qsizetype(50'000'000), qsizetype(200'000'000)}) {
        const Figures figures = measure(target);
        std::printf("stream: %.1f MB in %d events, %d items of %.0f kB text\n", figures.streamBytes / megabyte,
                    figures.events, items, textPerItem / 1e3);
        std::printf("  curl -sN:        wall %.3f s, CPU %.3f s (median of %d)\n", figures.curl.wall, figures.curl.cpu,
                    runs);
        std::printf("  OpenAI::respond: wall %.3f s, CPU %.3f s (median of %d)\n", figures.client.wall,
                    figures.client.cpu, runs);
        std::printf("  client / curl:   wall %.2fx (goal 1.5x or less), CPU %.2fx\n",
                    figures.client.wall / figures.curl.wall, figures.client.cpu / figures.curl.cpu);
        std::printf("  client memory:   peak RSS growth %.1f MB (largest of %d)\n", figures.client.growth / megabyte,
                    runs);
        all.push_back(figures);
    }
    // The items' texts are held as QString, two bytes a character.
    std::printf("client memory, long stream / short: %.2fx (goal: about 1x); the finished items hold %.1f MB of "
                "text, %.1f MB as strings\n",
                all.back().client.growth / all.front().client.growth, items * textPerItem / megabyte,
                2 * items * textPerItem / megabyte);
    return 0;
}
