// Saving a long conversation against writing the same bytes plainly, and building the
// whole-history request for it.
#include "Measure.h"
#include "agent/Agent.h"
#include "agent/HistoryUpkeep.h"
#include "agent/ModelRequest.h"
#include "runtime/Workspace.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

using namespace zentoro;
using namespace zentoro::bench;

namespace {

constexpr int historyItems = 10'000;
constexpr int rows = 2'000;
constexpr int runs = 9;
constexpr int pictureBytes = 300'000;

QString filler(int index, int length)
{
    QString text = QStringLiteral("Item %1: ").arg(index);
    while (text.size() < length)
        text += QStringLiteral("let value = compute(\"line\", %1) // keeps the app tidy\n").arg(text.size());
    return text.left(length);
}

// A run of the kinds a long working session leaves: messages, calls and their outputs,
// reasoning, and now and then a screenshot reference.
JSON historyItem(int index)
{
    const QString callID = QStringLiteral("call_%1").arg(index / 5);
    switch (index % 5) {
    case 0: return Agent::message(QStringLiteral("user"), filler(index, 120));
    case 1:
        return JSON::object(
            {{"type", "reasoning"}, {"encrypted_content", filler(index, 900)}, {"summary", JSON::array()}});
    case 2:
        return JSON::object(
            {{"type", "function_call"},
             {"call_id", callID},
             {"name", "edit_file"},
             {"arguments", QString::fromUtf8(
                               JSON::object({{"path", "AppRoot.swift"}, {"new_text", filler(index, 300)}}).encode())}});
    case 3:
        if (index % 50 == 3)
            return Agent::output(callID,
                                 JSON::array({JSON::object(
                                     {{"type", "input_image"}, {"image_url", "file:///tmp/zentoro-bench-shot.png"}})}));
        return Agent::output(callID, filler(index, 400));
    default:
        return JSON::object(
            {{"type", "message"},
             {"role", "assistant"},
             {"content", JSON::array({JSON::object({{"type", "output_text"}, {"text", filler(index, 200)}})})}});
    }
}

ChatItem row(int index)
{
    ChatItem item = ChatItem::make(index % 4 == 0 ? ChatItem::Kind::User : ChatItem::Kind::Tool, filler(index, 80),
                                   QStringLiteral("hammer"));
    if (index % 4 != 0)
        item.detail = filler(index, 600);
    return item;
}

// The median time of `work`, each run after an untimed `prepare`.
template <typename Work, typename Prepare>
double timed(Work work, Prepare prepare)
{
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        prepare();
        QElapsedTimer clock;
        clock.start();
        work();
        times.push_back(clock.nsecsElapsed() / 1e6);
    }
    return median(times);
}

template <typename Work>
double timed(Work work)
{
    return timed(work, [] {});
}

void plainWrite(const QString &path, const QByteArray &bytes, bool sync)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        std::exit(1);
    if (sync)
        ::fsync(file.handle());
}

} // namespace

int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("XDG_DATA_HOME", (home.path() + "/data").toUtf8());
    qputenv("XDG_CONFIG_HOME", (home.path() + "/config").toUtf8());
    QCoreApplication application(argc, argv);
    // The screenshots that the newest outputs refer to are on disk, as after a real session.
    QFile screenshot(QStringLiteral("/tmp/zentoro-bench-shot.png"));
    if (!screenshot.open(QIODevice::WriteOnly) || screenshot.write(QByteArray(pictureBytes, 'p')) != pictureBytes)
        return 1;
    screenshot.close();

    AgentOperations operations;
    operations.forHistory = HistoryUpkeep::forHistory;
    Agent agent(operations, Workspace::forName(QStringLiteral("Bench")));
    Agent::Saved conversation;
    for (int index = 0; index < rows; ++index)
        conversation.items.append(row(index));
    for (int index = 0; index < historyItems; ++index)
        conversation.history.append(historyItem(index));
    conversation.pendingInput.append(Agent::message(QStringLiteral("user"), QStringLiteral("One more thing")));
    agent.load(conversation);
    // Each later step records one more output item, as a response does.
    const auto recordOneMore = [&](int index) {
        agent.record(JSON::object({{"output", JSON::array({historyItem(index)})}}), Provider::ChatGPT);
    };

    const QByteArray bytes = agent.saved().encode();
    const QString plainPath = home.filePath(QStringLiteral("plain.json"));
    // The first save encodes everything; each later one follows a step that added an
    // item and a row, as saves do during a turn.
    QElapsedTimer firstClock;
    firstClock.start();
    agent.writeConversation();
    const double firstSave = firstClock.nsecsElapsed() / 1e6;
    int added = historyItems;
    const double save = timed([&] {
        recordOneMore(added);
        agent.appendItem(row(added++));
        agent.writeConversation();
    });
    const double plain = timed([&] { plainWrite(plainPath, bytes, false); });
    const double plainSynced = timed([&] { plainWrite(plainPath, bytes, true); });
    // The first request after a conversation opens looks at every item; later ones only at
    // what was added since.
    QElapsedTimer firstRequestClock;
    firstRequestClock.start();
    const qsizetype inputSize =
        ModelRequest::request(agent, Provider::ChatGPT).arrayAt(QStringLiteral("input"))->size();
    const double firstRequest = firstRequestClock.nsecsElapsed() / 1e6;
    const double request = timed([&] { ModelRequest::request(agent, Provider::ChatGPT); },
                                 [&] { recordOneMore(added++); });
    if (!QFile::exists(agent.workspace().conversation(agent.conversationID())) || inputSize == 0)
        return 1;

    std::printf("conversation: %d history items, %d rows, %.1f MB on disk\n", historyItems, rows, bytes.size() / 1e6);
    std::printf("first save():             %8.2f ms (everything encoded afresh)\n", firstSave);
    std::printf("save():                   %8.2f ms (median of %d, one item and one row added before each)\n", save,
                runs);
    std::printf("plain write, same bytes:  %8.2f ms  -> save() is %.2fx (goal: within 2x)\n", plain, save / plain);
    std::printf("plain write with fsync:   %8.2f ms  -> save() is %.2fx\n", plainSynced, save / plainSynced);
    std::printf("first request():          %8.2f ms (every item looked at)\n", firstRequest);
    std::printf("request(), whole history: %8.2f ms  -> %.1f%% of save() (goal: under 10%%; one item added before "
                "each, the newest %d of the %d screenshots, %d kB each, read and encoded afresh)\n",
                request, 100 * request / save, 3, historyItems / 50, pictureBytes / 1000);
    return 0;
}
