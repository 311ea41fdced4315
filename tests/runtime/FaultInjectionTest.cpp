#include "agent/HistoryUpkeep.h"
#include "agent/ModelRequest.h"
#include "agent/SavedConversation.h"
#include "core/AtomicFile.h"
#include "core/Defaults.h"
#include "runtime/Runtime.h"
#include "runtime/Workspace.h"

#include "RealProgram.h"

#include "support/Await.h"
#include "support/FakeResponsesServer.h"
#include "support/Files.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>

#include <signal.h>

using namespace zentoro;
using namespace zentoro::test;
using namespace std::chrono_literals;

namespace {

const QString copyName = QStringLiteral("Fault Harness");
const QUuid conversationID(QStringLiteral("{5D1C7E2A-0B7F-4E55-9A1D-3C2B8F6E4A10}"));
const QString request = QStringLiteral("Make the greeting smaller, build it, look at it, and restart to see it stays.");
const QString finalAnswer = QStringLiteral("The greeting is smaller, and it came back after the restart.");

// Call ids of the scripted turn: the restart the turn goes on from, the first step's tools,
// the second step's read and restart.
const QString firstRestart = QStringLiteral("call_restart_0");
const QStringList firstStep = {QStringLiteral("call_write"), QStringLiteral("call_read"), QStringLiteral("call_build"),
                               QStringLiteral("call_shot")};
const QString themeRead = QStringLiteral("call_theme");
const QString secondRestart = QStringLiteral("call_restart_1");

template <typename Items>
QStringList outputCallIDs(const Items &input)
{
    QStringList ids;
    for (const JSON &item : input) {
        if (item.stringAt(QStringLiteral("type")) == u"function_call_output")
            ids.append(item.stringAt(QStringLiteral("call_id")).value_or(QString()));
    }
    return ids;
}

JSON::Array inputOf(const RecordedRequest &recorded)
{
    try {
        const JSON body = recorded.json();
        if (const JSON::Array *input = body.arrayAt(QStringLiteral("input")))
            return *input;
    } catch (const JSON::Error &) {
    }
    return {};
}

// What each input item stands for, whatever form a request gives its content.
template <typename Items>
QStringList identities(const Items &items)
{
    QStringList list;
    for (const JSON &item : items) {
        const QString type = item.stringAt(QStringLiteral("type")).value_or(QString());
        const JSON *content = item.find(QStringLiteral("content"));
        if (type == u"function_call_output" || type == u"function_call")
            list.append(type + u' ' + item.stringAt(QStringLiteral("call_id")).value_or(QString()));
        else if (auto role = item.stringAt(QStringLiteral("role")))
            list.append(*role + QStringLiteral(": ") + QString::fromUtf8(content ? content->encode() : QByteArray()));
        else
            list.append(QString::fromUtf8(item.encode()));
    }
    return list;
}

// The model's side of the conversation: every call that reached `history` has exactly one
// output among those `history` already holds and those the next request carries.
QStringList callsNotAnsweredOnce(const QList<JSON> &history, const JSON::Array &next, bool chained)
{
    QStringList outputs = outputCallIDs(next);
    if (chained)
        outputs += outputCallIDs(history);
    QStringList problems;
    for (const JSON &item : history) {
        const QString id = item.stringAt(QStringLiteral("call_id")).value_or(QString());
        if (item.stringAt(QStringLiteral("type")) == u"function_call" && outputs.count(id) != 1)
            problems.append(QStringLiteral("call %1 has %2 outputs").arg(id).arg(outputs.count(id)));
    }
    return problems;
}

// A row as the transcript shows it, with the figures that change from run to run (a build's
// seconds, a version's number) left out.
QString rowKey(const ChatItem &item)
{
    static const QRegularExpression figures(QStringLiteral("[0-9.]+"));
    return ChatItem::kindText(item.kind) + u'|' + item.symbol.value_or(QString()) + u'|' +
           QString(item.text).replace(figures, QStringLiteral("#"));
}

// The rows of a transcript, counted, without the runtime's notes: a kill within a version's
// proving time is taken for a crash of the app, and the next start tells of it.
QMap<QString, int> rowCounts(const QList<ChatItem> &items)
{
    QMap<QString, int> counts;
    for (const ChatItem &item : items) {
        if (item.symbol != u"info.circle")
            ++counts[rowKey(item)];
    }
    return counts;
}

bool endsWithTheAnswer(const SavedConversation &saved)
{
    return !saved.items.isEmpty() && saved.items.last().kind == ChatItem::Kind::Assistant &&
           saved.items.last().text == finalAnswer;
}

// How a run is cut short: after a given save (ZENTORO_KILL_AFTER_SAVES), or from outside at
// a moment counted from the start.
struct Kill {
    QByteArray afterSaves;
    std::optional<qint64> atMilliseconds;
    QString label;
};

// What one run from the starting file came to.
struct Trial {
    bool killed = false;
    QByteArray fileAtKill;
    std::optional<SavedConversation> atKill;
    // The requests sent by a process started after the kill.
    QList<RecordedRequest> afterKill;
    // Restarts the program made through its waiting script.
    int relaunches = 0;
    std::optional<SavedConversation> settled;
    QList<RecordedRequest> requests;
    QStringList problems;
    qint64 milliseconds = 0;
    // Each process the trial followed, with its command line then, so a stalled trial says whom
    // it waited on.
    QStringList followed;
};

// The real program in a copy of its own, against the fake model service, always starting
// from the same conversation: the turn right after a `restart_app`, whose answer is owed.
class Harness {
public:
    Harness() : program_(copyName), workspace_(program_.workspace)
    {
        program_.environment.insert(QStringLiteral("ZENTORO_API_BASE"), server_.origin());
        program_.environment.insert(QStringLiteral("OPENAI_API_KEY"), QStringLiteral("sk-fault-harness"));
        server_.respondWith([this](const RecordedRequest &recorded) {
            // Asked while the sender waits for its answer, so it is still there to be found.
            senders_.append(ProcessTable::holdingConnection(recorded.peerPort, server_.port(),
                                                            ProcessTable::mentioning(program_.link)));
            return answer(recorded);
        });
    }

    const Workspace &workspace() const { return workspace_; }
    // Every run starts on the version the copy holds now, proven, so no run starts a build of
    // its own at launch and the agent's build makes the next version.
    void keepStartingVersion()
    {
        startingState_ = RuntimeState::read(workspace_.stateFile());
        startingState_.loading.reset();
        startingState_.lastGood = startingState_.current;
    }

    Trial run(const Kill &kill, std::chrono::milliseconds limit = 120s);

private:
    // The model: each step's answer is chosen by the outputs its request carries, so that a
    // request sent again after a kill gets the same answer as the first time.
    std::optional<ScriptedReply> answer(const RecordedRequest &recorded) const;
    void awaitCompilerLookup() const;
    void resetCopy() const;
    void start(const QByteArray &afterSaves);
    QString conversationPath() const { return workspace_.conversation(conversationID); }

    FakeResponsesServer server_;
    // The process that sent each request of `server_`; 0 for one that had ended by then.
    QList<pid_t> senders_;
    Program program_;
    const Workspace &workspace_;
    RuntimeState startingState_;
};

std::optional<ScriptedReply> Harness::answer(const RecordedRequest &recorded) const
{
    using F = FakeResponsesServer;
    const QStringList answered = outputCallIDs(inputOf(recorded));
    if (answered.contains(secondRestart))
        return F::turn({F::message(finalAnswer, QStringLiteral("msg_final"))}, QStringLiteral("resp_C"));
    if (answered.contains(firstStep.last()) || answered.contains(themeRead))
        return F::turn({F::call(QStringLiteral("read_file"), JSON::object({{"path", "Theme.swift"}}), themeRead),
                        F::call(QStringLiteral("restart_app"), JSON::object(), secondRestart)},
                       QStringLiteral("resp_B"));
    if (!answered.contains(firstRestart))
        return std::nullopt;
    awaitCompilerLookup();
    QString source = readText(workspace_.sources() + QStringLiteral("/AppRoot.swift"));
    source.replace(QStringLiteral(".font(.largeTitle)"), QStringLiteral(".font(.title)"));
    return F::turn({F::message(QStringLiteral("I'll make the greeting smaller."), QStringLiteral("msg_plan")),
                    F::call(QStringLiteral("write_file"),
                            JSON::object({{"path", "AppRoot.swift"}, {"content", source}}), firstStep[0]),
                    F::call(QStringLiteral("read_file"), JSON::object({{"path", "AppRoot.swift"}}), firstStep[1]),
                    F::call(QStringLiteral("build"), JSON::object(), firstStep[2]),
                    F::call(QStringLiteral("screenshot"), JSON::object(), firstStep[3])},
                   QStringLiteral("resp_A"));
}

// The program looks for its compiler as it starts, through a child process, and a build asked
// for before the look ends fails. A fresh start has no other child, so the step that builds
// goes out once no process of the copy has one.
void Harness::awaitCompilerLookup() const
{
    QElapsedTimer waited;
    waited.start();
    const auto looking = [this] {
        const QList<pid_t> programs = ProcessTable::mentioning(program_.link);
        return std::any_of(programs.begin(), programs.end(),
                           [](pid_t pid) { return !ProcessTable::childrenOf(pid).isEmpty(); });
    };
    // The program is another process, so holding this one up costs it nothing.
    while (looking() && waited.elapsed() < 10000)
        QThread::msleep(20);
}

// The copy as the program leaves it right after the agent asked for a restart: the request
// and the restart call recorded, the call unanswered, the starting version loaded. The
// compiler's module cache stays.
void Harness::resetCopy() const
{
    for (const QString &name : {QStringLiteral("Sources"), QStringLiteral("Conversations"), QStringLiteral("Data"),
                                QStringLiteral("Build/Screenshots")})
        QDir(workspace_.root + u'/' + name).removeRecursively();
    const QStringList versions = QDir(workspace_.versions()).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &version : versions) {
        if (version.toInt() != startingState_.current)
            QDir(workspace_.versions() + u'/' + version).removeRecursively();
    }
    startingState_.write(workspace_.stateFile());
    workspace_.prepare();

    SavedConversation saved;
    saved.id = conversationID;
    saved.created = QDateTime::currentDateTimeUtc();
    saved.updated = saved.created;
    saved.items = {ChatItem::make(ChatItem::Kind::User, request),
                   ChatItem::make(ChatItem::Kind::Tool, QStringLiteral("Restarting %1…").arg(copyName),
                                  QStringLiteral("arrow.clockwise"))};
    const JSON said = JSON::object({{"role", "user"}, {"content", request}});
    const JSON restart = FakeResponsesServer::call(QStringLiteral("restart_app"), JSON::object(), firstRestart);
    for (const JSON &item : {said, restart}) {
        if (auto kept = HistoryUpkeep::forHistory(item))
            saved.history.append(*kept);
    }
    saved.previousResponseID = QStringLiteral("resp_0");
    saved.restartCallID = firstRestart;
    saved.unansweredCalls = {firstRestart};
    saved.currentRequest = request;
    QDir().mkpath(workspace_.root + QStringLiteral("/Conversations"));
    AtomicFile::write(conversationPath(), saved.encode());
    Defaults::setSuiteValue(workspace_.defaultsSuite(), QStringLiteral("currentConversation"),
                            uuidText(conversationID));
}

void Harness::start(const QByteArray &afterSaves)
{
    program_.environment.remove(QStringLiteral("ZENTORO_KILL_AFTER_SAVES"));
    if (!afterSaves.isEmpty())
        program_.environment.insert(QStringLiteral("ZENTORO_KILL_AFTER_SAVES"), QString::fromLatin1(afterSaves));
    program_.start();
}

Trial Harness::run(const Kill &kill, std::chrono::milliseconds limit)
{
    resetCopy();
    const qsizetype firstRequest = server_.requests().size();
    Trial trial;
    QElapsedTimer clock;
    clock.start();

    const QProcess &child = program_.process;
    start(kill.afterSaves);
    pid_t current = pid_t(child.processId());
    bool currentIsChild = true;
    const auto follow = [&](pid_t pid) {
        QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(pid));
        const QByteArray words = commandLine.open(QIODevice::ReadOnly) ? commandLine.readAll().replace('\0', ' ')
                                                                       : QByteArray();
        trial.followed.append(QStringLiteral("%1 (%2)").arg(pid).arg(QString::fromLocal8Bit(words.trimmed())));
        current = pid;
    };
    follow(current);
    // Which requests came after the kill is told by their senders, not by when this process
    // got round to reading them: under load a successor may have asked before the death was seen.
    QSet<pid_t> startedBeforeKill{current};
    std::optional<qint64> calmSince;
    qsizetype requestsWhenCalm = 0;
    QElapsedTimer sinceExit;

    // Follows the program from process to process until the turn has come to rest.
    const bool settled = spinUntil(
        [&] {
            const bool dead = currentIsChild ? child.state() == QProcess::NotRunning : !ProcessTable::isAlive(current);
            if (!dead && kill.atMilliseconds && !trial.killed && clock.elapsed() >= *kill.atMilliseconds) {
                ::kill(current, SIGKILL);
                return false;
            }
            if (dead) {
                calmSince.reset();
                const QList<pid_t> successors = ProcessTable::mentioning(program_.link);
                if (currentIsChild && child.exitStatus() == QProcess::NormalExit) {
                    // An orderly end is a restart: its waiting script becomes the program anew.
                    if (!sinceExit.isValid())
                        sinceExit.start();
                    if (successors.isEmpty()) {
                        if (sinceExit.elapsed() > 5000) {
                            trial.problems.append(QStringLiteral("the program ended without a restart"));
                            return true;
                        }
                        return false;
                    }
                    sinceExit.invalidate();
                    follow(successors.first());
                    currentIsChild = false;
                    if (!trial.killed)
                        startedBeforeKill.insert(current);
                    ++trial.relaunches;
                    return false;
                }
                if (trial.killed) {
                    trial.problems.append(QStringLiteral("a process ended again after the kill"));
                    return true;
                }
                trial.killed = true;
                trial.fileAtKill = readText(conversationPath()).toUtf8();
                try {
                    trial.atKill = SavedConversation::fromJSON(JSON::decode(trial.fileAtKill));
                } catch (const JSON::Error &) {
                }
                if (!successors.isEmpty()) {
                    // Killed after its restart had begun: the waiting script carries on.
                    follow(successors.first());
                    currentIsChild = false;
                } else {
                    start({});
                    follow(pid_t(child.processId()));
                    currentIsChild = true;
                }
                return false;
            }

            const auto now = SavedConversation::read(conversationPath());
            const bool atRest = now && now->unansweredCalls.isEmpty() && !now->restartCallID &&
                                (endsWithTheAnswer(*now) || (trial.atKill && !trial.atKill->restartCallID &&
                                                             now->updated != trial.atKill->updated));
            if (!atRest) {
                calmSince.reset();
                return false;
            }
            // At rest once it stays so for a while: no process ends and no request goes out.
            const qsizetype requests = server_.requests().size();
            if (!calmSince || requests != requestsWhenCalm) {
                calmSince = clock.elapsed();
                requestsWhenCalm = requests;
                return false;
            }
            return clock.elapsed() - *calmSince >= 1000;
        },
        limit);

    trial.milliseconds = clock.elapsed();
    if (!settled)
        trial.problems.append(QStringLiteral("the turn didn't come to rest within %1 s, following %2")
                                  .arg(limit.count() / 1000)
                                  .arg(trial.followed.join(QStringLiteral(" → "))));
    trial.settled = SavedConversation::read(conversationPath());
    trial.requests = server_.requests().mid(firstRequest);
    for (qsizetype index = firstRequest; index < server_.requests().size(); ++index) {
        if (trial.killed && senders_.value(index) != 0 && !startedBeforeKill.contains(senders_.value(index)))
            trial.afterKill.append(server_.requests()[index]);
    }
    if (!ProcessTable::killAll({program_.link, workspace_.root}))
        trial.problems.append(QStringLiteral("a process of the copy couldn't be ended"));
    program_.process.waitForFinished(2000);
    return trial;
}

// Everything a kill must not break. `reference` is the run that nothing cut short.
QStringList judge(const Trial &trial, const Trial &reference)
{
    QStringList problems = trial.problems;
    const auto check = [&](bool holds, const QString &problem) {
        if (!holds)
            problems.append(problem);
        return holds;
    };
    const auto addAll = [&](const QString &where, const QStringList &found) {
        for (const QString &problem : found)
            problems.append(where + problem);
    };
    if (!check(trial.settled.has_value(), QStringLiteral("the conversation file doesn't read after the run")) ||
        !check(trial.killed, QStringLiteral("nothing was killed")) ||
        !check(trial.atKill.has_value(), QStringLiteral("the conversation file doesn't read after the kill")))
        return problems;
    const SavedConversation &settled = *trial.settled;
    const SavedConversation &atKill = *trial.atKill;
    const QList<RecordedRequest> &after = trial.afterKill;

    // No row lost or rewritten; none doubled.
    check(settled.items.mid(0, atKill.items.size()) == atKill.items,
          QStringLiteral("rows saved before the kill changed or went missing"));
    const QMap<QString, int> counts = rowCounts(settled.items);
    const QMap<QString, int> expected = rowCounts(reference.settled->items);
    for (auto row = counts.begin(); row != counts.end(); ++row)
        check(row.value() <= expected.value(row.key()),
              QStringLiteral("row %1 shows %2 times").arg(row.key()).arg(row.value()));

    // Every call in the conversation has exactly one output, in the file as it ends.
    addAll(QStringLiteral("at the end, "),
           callsNotAnsweredOnce(settled.history, JSON::Array(settled.pendingInput.begin(), settled.pendingInput.end()),
                                true));

    const QStringList waiting = identities(atKill.pendingInput);
    if (atKill.restartCallID) {
        // The agent's own restart goes on by itself, and the next request answers each call
        // of the conversation once, behind everything that was waiting.
        check(endsWithTheAnswer(settled), QStringLiteral("the restart didn't carry the turn to its end"));
        check(counts == expected, QStringLiteral("the rows differ from an uncut run's"));
        if (!check(!after.isEmpty(), QStringLiteral("no request followed the restart")))
            return problems;
        const JSON body = after.first().json();
        const JSON::Array input = inputOf(after.first());
        const bool chained = body.find(QStringLiteral("previous_response_id")) != nullptr;
        check(!chained || body.stringAt(QStringLiteral("previous_response_id")) == atKill.previousResponseID,
              QStringLiteral("the next request doesn't follow the last recorded response"));
        addAll(QStringLiteral("in the next request, "), callsNotAnsweredOnce(atKill.history, input, chained));
        const QStringList sent = identities(input);
        check(!chained || sent.mid(0, waiting.size()) == waiting,
              QStringLiteral("the next request lost or reordered waiting input"));
        check(QSet<QString>(sent.begin(), sent.end()).size() == sent.size(),
              QStringLiteral("the next request carries an item twice"));
        check(std::any_of(input.begin(), input.end(),
                          [&](const JSON &item) {
                              return item.stringAt(QStringLiteral("call_id")) == atKill.restartCallID &&
                                     item.stringAt(QStringLiteral("output"))
                                         .value_or(QString())
                                         .startsWith(QStringLiteral("Zentoro restarted; it is now running "));
                          }),
              QStringLiteral("the restart call got no restart answer"));
    } else {
        // Cut off without a restart in progress: the turn stays ended, and what the next
        // request will carry answers each call once, behind what was waiting.
        check(after.isEmpty(), QStringLiteral("a request went out after the kill with no restart in progress"));
        check(identities(settled.pendingInput).mid(0, waiting.size()) == waiting,
              QStringLiteral("waiting input was lost or reordered"));
        const JSON next = ModelRequest::body(QString(), Provider::APIKey, settled.history, settled.pendingInput,
                                             settled.previousResponseID, conversationID);
        const JSON::Array *input = next.arrayAt(QStringLiteral("input"));
        const bool chained = next.find(QStringLiteral("previous_response_id")) != nullptr;
        addAll(QStringLiteral("in the next request, "),
               callsNotAnsweredOnce(settled.history, input ? *input : JSON::Array(), chained));
    }
    return problems;
}

} // namespace

// The real program, killed with SIGKILL right after each save of a two-step turn with a
// build and a restart, and at random moments between; after each kill it starts again, and
// the conversation must read, each call must get one output, the restart must go on by
// itself, and no row or input may be lost or doubled.
TEST(FaultInjection, EveryKillPointOfATurnIsSurvived)
{
    ZENTORO_REQUIRE_PROGRAM();
    Harness harness;
    // Version 1 is the starter app, built here once; every run starts on it.
    ASSERT_TRUE(buildVersions(harness.workspace()));
    harness.keepStartingVersion();
    QElapsedTimer clock;
    clock.start();

    // A run that nothing cuts short: both steps, the build, and a real restart through the
    // waiting script, after which the turn ends by itself.
    const Trial reference = harness.run({});
    ASSERT_TRUE(reference.problems.isEmpty()) << reference.problems.join(u'\n').toStdString();
    ASSERT_TRUE(reference.settled && endsWithTheAnswer(*reference.settled));
    EXPECT_EQ(reference.relaunches, 1);
    EXPECT_EQ(reference.requests.size(), 3);
    EXPECT_TRUE(callsNotAnsweredOnce(reference.settled->history, {}, true).isEmpty());
    const QMap<QString, int> rows = rowCounts(reference.settled->items);
    EXPECT_EQ(rows.value(QStringLiteral("tool|hammer|Built version # in #s")), 1)
        << QStringList(rows.keys()).join(u'\n').toStdString();
    EXPECT_EQ(rows.value(QStringLiteral("event|arrow.clockwise|Restarted")), 2);
    EXPECT_TRUE(readText(harness.workspace().sources() + QStringLiteral("/AppRoot.swift")).contains(u".font(.title)"));

    int tried = 0;
    int survived = 0;
    // Runs one kill; false when nothing was killed, which is no kill point.
    auto attempt = [&](const Kill &kill) {
        const Trial trial = harness.run(kill);
        if (!trial.killed && trial.problems.isEmpty())
            return false;
        ++tried;
        const QStringList problems = judge(trial, reference);
        if (problems.isEmpty())
            ++survived;
        else
            ADD_FAILURE() << kill.label.toStdString() << ":\n  " << problems.join(QStringLiteral("\n  ")).toStdString()
                          << "\n  file at the kill: " << trial.fileAtKill.toStdString();
        return true;
    };

    // After each save of the first process, then of the one its restart starts. A count
    // past the last save lets the process run whole, which ends that series.
    for (const QByteArray &prefix : {QByteArray(), QByteArray("0,")}) {
        const QString which = prefix.isEmpty() ? QStringLiteral("first") : QStringLiteral("restarted");
        for (int save = 1; save <= 40; ++save) {
            const QString label = QStringLiteral("killed after save %1 of the %2 process").arg(save).arg(which);
            if (!attempt({prefix + QByteArray::number(save), std::nullopt, label}))
                break;
        }
    }
    const int afterSaves = tried;

    // At random moments of an uncut run's length.
    const quint32 seed = QRandomGenerator::global()->generate();
    QRandomGenerator random(seed);
    for (int n = 0; n < 4; ++n) {
        const qint64 at = random.bounded(qint64(reference.milliseconds - 1000));
        attempt({{}, at, QStringLiteral("killed %1 ms after the start (seed %2)").arg(at).arg(seed)});
    }

    std::cout << "Fault injection: " << tried << " kill points tried (" << afterSaves << " right after a save, "
              << tried - afterSaves << " at random moments), " << survived << " survived, in " << clock.elapsed() / 1000
              << " s." << std::endl;
    EXPECT_GE(afterSaves, 10);
}
