#include "RealProgram.h"

#include "agent/ChatItem.h"
#include "agent/SavedConversation.h"
#include "core/Defaults.h"
#include "runtime/RuntimeState.h"

#include "support/Await.h"
#include "support/FakeResponsesServer.h"
#include "support/Files.h"

#include <QProcess>

#include <signal.h>

using namespace zentoro;
using namespace zentoro::test;
using namespace std::chrono_literals;

namespace {

// Reads what the last run left in its settings, then stores the copy's own name (the program
// file it was started as) under the same key in every copy: through @AppStorage, and straight
// into `UserDefaults.app`. It declares an `AppInfo` of its own, as any app may.
const QByteArray keepingApp = R"swift(import SwiftUI

enum AppInfo { static let key = "owner" }

func say(_ line: String) {
    print(line)
    fflush(stdout)
}

struct AppRoot: View {
    @AppStorage(AppInfo.key) private var owner = ""

    var body: some View {
        Text("Owner: \(owner)")
            .onAppear {
                say("read owner=\(owner) direct=\(UserDefaults.app.string(forKey: "direct") ?? "")")
                let copy = URL(fileURLWithPath: CommandLine.arguments[0]).lastPathComponent
                if owner.isEmpty { owner = copy }
                UserDefaults.app.set(copy, forKey: "direct")
                say("stored")
            }
    }
}
)swift";

// The program of one copy whose current version is the app above.
struct Copy : Program {
    explicit Copy(const QString &name) : Program(name) {}

    QString log() const { return readText(workspace.logs() + QStringLiteral("/current.log")); }
    // A line of the running process's log: until the header names it, the file is the run before.
    bool logShows(const QString &text, qint64 pid)
    {
        const QString header = QStringLiteral(", pid %1\n").arg(pid);
        return spinUntil([&] { return log().contains(header) && log().contains(text); }, 30s);
    }
    bool logShows(const QString &text) { return logShows(text, process.processId()); }
    // The process that wrote the log now.
    qint64 logger() const
    {
        const QString header = log().section(u'\n', 0, 0);
        return header.section(QStringLiteral(", pid "), 1).toLongLong();
    }
};

// The version last built has proved itself, so the next start runs it.
void proveCurrent(const Workspace &workspace)
{
    RuntimeState state = RuntimeState::read(workspace.stateFile());
    state.loading.reset();
    state.lastGood = state.current;
    state.write(workspace.stateFile());
}

// A conversation whose last turn the agent ended with a restart of its own, so the next start
// goes on with it and asks the model.
void leaveARestartOwed(const Workspace &workspace)
{
    SavedConversation saved;
    saved.id = QUuid::createUuid();
    saved.items = {ChatItem::make(ChatItem::Kind::User, QStringLiteral("Restart the app, please"))};
    saved.restartCallID = QStringLiteral("call_1");
    saved.unansweredCalls = {QStringLiteral("call_1")};
    writeFile(workspace.conversation(*saved.id), saved.encode());
    Defaults::setSuiteValue(workspace.defaultsSuite(), QStringLiteral("currentConversation"), uuidText(*saved.id));
}

} // namespace

// What an app stores outlives a quit and a restart the agent asks for, and two copies that
// store under the same key each keep their own; with the real program, compiler and kit.
TEST(StoredSettingsEndToEnd, AnAppsSettingsOutliveQuitAndRestartAndStayWithTheirCopy)
{
    ZENTORO_REQUIRE_PROGRAM();
    Copy kitchen(QStringLiteral("Kitchen Timer"));
    Copy cafe(QStringLiteral("Café Ölçer"));
    for (const Copy *copy : {&kitchen, &cafe}) {
        ASSERT_TRUE(buildVersions(copy->workspace, {{QStringLiteral("AppRoot.swift"), keepingApp}}));
        proveCurrent(copy->workspace);
    }

    // Stored, then an orderly quit at once.
    kitchen.start();
    ASSERT_TRUE(kitchen.logShows(QStringLiteral("read owner= direct=\n")));
    ASSERT_TRUE(kitchen.logShows(QStringLiteral("stored")));
    ::kill(pid_t(kitchen.process.processId()), SIGTERM);
    ASSERT_TRUE(spinUntil([&] { return kitchen.process.state() == QProcess::NotRunning; }, 20s));
    kitchen.start();
    EXPECT_TRUE(kitchen.logShows(QStringLiteral("read owner=Kitchen Timer direct=Kitchen Timer\n")));
    ::kill(pid_t(kitchen.process.processId()), SIGTERM);

    // The other copy stores under the same key, then the agent restarts it: the model's answer
    // to the owed restart asks for another, and the next process reads what this one stored.
    FakeResponsesServer model;
    ScriptedReply restart = FakeResponsesServer::functionCall(QStringLiteral("restart_app"), JSON::object(),
                                                              QStringLiteral("call_2"), QStringLiteral("resp_1"));
    // The answer ends only once the app has had time to appear and store.
    restart.inPieces(restart.body.size() - 8, 4000);
    model.enqueue(restart);
    model.enqueue(FakeResponsesServer::textReply(QStringLiteral("Restarted."), QStringLiteral("resp_2")));
    cafe.environment.insert(QStringLiteral("ZENTORO_API_BASE"), model.origin());
    cafe.environment.insert(QStringLiteral("OPENAI_API_KEY"), QStringLiteral("sk-settings"));
    leaveARestartOwed(cafe.workspace);
    cafe.start();
    ASSERT_TRUE(cafe.logShows(QStringLiteral("read owner= direct=\n")));
    ASSERT_TRUE(cafe.logShows(QStringLiteral("stored")));
    ASSERT_TRUE(spinUntil([&] { return model.requests().size() == 2; }, 60s)) << "the restarted copy never went on";
    const qint64 restarted = cafe.logger();
    EXPECT_NE(restarted, cafe.process.processId());
    EXPECT_TRUE(cafe.logShows(QStringLiteral("read owner=Café Ölçer direct=Café Ölçer\n"), restarted));
}
