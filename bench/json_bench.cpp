// Round trip (parse, then print) of a 20 MB conversation-like document with our JSON
// value, against Python's json module on the same file.
#include "Measure.h"
#include "core/JSON.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

using zentoro::JSON;
using zentoro::bench::median;

namespace {

JSON conversationItem(int index)
{
    const QString text = QStringLiteral(
                             "Line %1 of the app: let's make the timer ring louder — “quoted” \"text\"\n\tand é😀. ")
                             .arg(index)
                             .repeated(1 + index % 7);
    switch (index % 4) {
    case 0: return JSON::object({{"role", "user"}, {"content", text}});
    case 1:
        return JSON::object(
            {{"type", "function_call"},
             {"call_id", QStringLiteral("call_%1").arg(index)},
             {"name", "edit_file"},
             {"arguments", QString::fromUtf8(JSON::object({{"path", "AppRoot.swift"}, {"old_text", text}}).encode())}});
    case 2:
        return JSON::object({{"type", "function_call_output"},
                             {"call_id", QStringLiteral("call_%1").arg(index - 1)},
                             {"output", text}});
    default:
        return JSON::object({{"type", "message"},
                             {"role", "assistant"},
                             {"content", JSON::array({JSON::object({{"type", "output_text"}, {"text", text}})})},
                             {"usage", JSON::object({{"tokens", index * 3}, {"ratio", JSON::number(index / 7.0)}})}});
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    JSON history = JSON::array();
    int index = 0;
    while (history.encode().size() < 20'000'000) {
        for (int batch = 0; batch < 2000; ++batch)
            history.append(conversationItem(index++));
    }
    const QByteArray document = JSON::object({{"items", history}, {"created", JSON::number(785000000.25)}}).encode();

    QTemporaryDir folder;
    const QString path = folder.filePath("conversation.json");
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(document);
    file.close();

    constexpr int runs = 7;
    std::vector<double> ours;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer clock;
        clock.start();
        QFile input(path);
        input.open(QIODevice::ReadOnly);
        const QByteArray printed = JSON::decode(input.readAll()).encode();
        ours.push_back(clock.nsecsElapsed() / 1e6);
        if (printed.size() < document.size() / 2)
            return 1;
    }

    const QString script =
        QStringLiteral(
            "import json, sys, time, statistics\n"
            "times = []\n"
            "for _ in range(%1):\n"
            "    start = time.perf_counter()\n"
            "    with open(sys.argv[1], 'rb') as f:\n"
            "        out = json.dumps(json.loads(f.read()), ensure_ascii=False, separators=(',', ':')).encode()\n"
            "    times.append((time.perf_counter() - start) * 1000)\n"
            "print(statistics.median(times))\n")
            .arg(runs);
    QProcess python;
    python.start(QStringLiteral("python3"), {QStringLiteral("-c"), script, path});
    python.waitForFinished(-1);
    const double theirs = python.readAllStandardOutput().trimmed().toDouble();

    std::printf("JSON round trip of %.1f MB: Zentoro median %.1f ms, Python json median %.1f ms, "
                "ratio (Python / Zentoro) %.2f (goal >= 1.0)\n",
                document.size() / 1e6, median(ours), theirs, theirs / median(ours));
    return 0;
}
