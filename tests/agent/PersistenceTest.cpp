#include "agent/Agent.h"
#include "agent/AgentWiring.h"
#include "core/Defaults.h"
#include "runtime/Runtime.h"
#include "runtime/Workspace.h"

#include "support/Await.h"
#include "support/DiskFaults.h"
#include "support/FakeAgent.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <gtest/gtest.h>

using namespace zentoro;
using namespace std::chrono_literals;

namespace {

const QString currentKey = QStringLiteral("currentConversation");

// Made at first use, after the test program has pointed the data folders at its own
// private ones: a copy made before that would be shared by test programs running at once.
const Workspace &persistingCopy()
{
    static const Workspace copy = Workspace::forName(QStringLiteral("Persisting"));
    return copy;
}

// An agent of the copy, opened as the program opens it, whose every save is the real one.
struct OpenedAgent : Agent {
    explicit OpenedAgent(AgentOperations operations = test::fakeOperations())
        : Agent(std::move(operations), persistingCopy())
    {
        this->operations().save = [this] { writeConversation(); };
        restore();
    }
};

// Every test starts from a copy with no conversations.
class Persistence : public ::testing::Test {
protected:
    void SetUp() override
    {
        QDir(persistingCopy().root).removeRecursively();
        QFile::remove(Defaults::path(persistingCopy().defaultsSuite()));
    }
    void TearDown() override { running.reset(); }

    static QString folder() { return persistingCopy().root + "/Conversations"; }
    static QString fileOf(const QUuid &id) { return persistingCopy().conversation(id); }
    static QVariant current() { return Defaults::suiteValue(persistingCopy().defaultsSuite(), currentKey); }
    static void setCurrent(const QString &text)
    {
        Defaults::setSuiteValue(persistingCopy().defaultsSuite(), currentKey, text);
    }

    static void put(const QString &name, const QByteArray &bytes)
    {
        QDir().mkpath(folder());
        QFile file(folder() + "/" + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    static JSON stored(const QUuid &id)
    {
        QFile file(fileOf(id));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return JSON::decode(file.readAll());
    }

    // An opened agent whose model never answers until stopped.
    Agent &hangingAgent()
    {
        AgentOperations ops = test::fakeOperations();
        ops.respond = test::respondOnlyToAStop;
        running = std::make_unique<OpenedAgent>(ops);
        return *running;
    }
    std::unique_ptr<Agent> running;
};

ChatItem userRow(const QString &text)
{
    return ChatItem::make(ChatItem::Kind::User, text);
}

// The least a readable file holds.
QByteArray minimalFile(const QString &firstMessage, std::optional<double> updated = std::nullopt,
                       const QString &id = QString())
{
    JSON json = JSON::object({{"items", JSON::array({userRow(firstMessage).toJSON()})},
                              {"pendingInput", JSON::array()},
                              {"notes", JSON::array()}});
    if (updated)
        json.set("updated", JSON::number(*updated));
    if (!id.isEmpty())
        json.set("id", id);
    return json.encode();
}

QStringList titles(const Agent &agent)
{
    QStringList result;
    for (const ConversationSummary &summary : agent.conversations())
        result.append(summary.title);
    return result;
}

const QString stoppedText = QStringLiteral("Zentoro stopped (it crashed or was quit) before this finished.");

} // namespace

TEST_F(Persistence, AConversationComesBackWholeInTheNextProcess)
{
    Agent::Saved written;
    {
        OpenedAgent agent;
        ChatItem tool = ChatItem::make(ChatItem::Kind::Tool, "Built version 3", "hammer");
        tool.detail = "warnings: none";
        tool.imagePath = "/tmp/shot.png";
        agent.load({.created = QDateTime(QDate(2001, 1, 1), QTime(0, 0, 1, 250), QTimeZone::utc()),
                    .items = {userRow("Make a timer"), tool},
                    .previousResponseID = "resp_9",
                    .pendingInput = {Agent::output("call_2", "ran")},
                    .notes = {"Version 2 crashed"},
                    .restartCallID = "call_3",
                    .unansweredCalls = {"call_3"},
                    .currentRequest = "Make a timer",
                    .history = {Agent::message("user", "Make a timer"),
                                JSON::object({{"type", "function_call"}, {"call_id", "call_2"}, {"name", "build"}})}});
        agent.writeConversation();
        written = agent.saved();
    }
    EXPECT_EQ(current().toString(), uuidText(*written.id));
    const JSON json = stored(*written.id);
    EXPECT_EQ(json.numberAt("created"), 1.25);
    EXPECT_GT(*json.numberAt("updated"), 7e8); // seconds since 2001, not since 1970
    EXPECT_LT(*json.numberAt("updated"), 2e9);

    OpenedAgent restored;
    Agent::Saved read = restored.saved();
    read.updated = written.updated;
    EXPECT_EQ(read, written);
    EXPECT_EQ(titles(restored), QStringList{"Make a timer"});
}

TEST_F(Persistence, SavesPatchTheListInPlaceAndOnlyConversationsWithRowsAreListed)
{
    put("96E41A52-2E41-4B0C-8E8A-8F3C0A5F7B11.json",
        minimalFile("Older one", 100, "96E41A52-2E41-4B0C-8E8A-8F3C0A5F7B11"));
    OpenedAgent agent;
    ASSERT_EQ(titles(agent), QStringList{"Older one"});

    // Queued input alone makes a file but no entry, and the settings name it from the first save.
    agent.load({.pendingInput = {Agent::message("user", "queued")}});
    agent.writeConversation();
    EXPECT_TRUE(QFile::exists(fileOf(agent.conversationID())));
    EXPECT_EQ(titles(agent), QStringList{"Older one"});

    agent.setItems({userRow("Newer one")});
    agent.writeConversation();
    EXPECT_EQ(titles(agent), (QStringList{"Newer one", "Older one"}));
    // A rewrite leaves no temporary file about, and the file holds every key but those without a value.
    EXPECT_EQ(QDir(folder()).entryList(QDir::Files | QDir::Hidden).size(), 2);
    const JSON json = stored(agent.conversationID());
    for (const char *key :
         {"id", "created", "updated", "items", "pendingInput", "notes", "unansweredCalls", "currentRequest", "history"})
        EXPECT_TRUE(json.find(key)) << key;
    EXPECT_FALSE(json.find("previousResponseID") || json.find("restartCallID"));

    // Opening the older one moves neither entry, though it is now the latest written.
    agent.openConversation(QUuid::fromString(QStringLiteral("96E41A52-2E41-4B0C-8E8A-8F3C0A5F7B11")));
    EXPECT_EQ(titles(agent), (QStringList{"Newer one", "Older one"}));
    EXPECT_GT(agent.conversations()[1].updated, QDateTime::currentDateTimeUtc().addSecs(-60));

    // A conversation emptied of everything loses its file and its entry.
    agent.load({.id = agent.conversationID()});
    agent.writeConversation();
    EXPECT_FALSE(QFile::exists(fileOf(agent.conversationID())));
    EXPECT_EQ(titles(agent), QStringList{"Newer one"});
    EXPECT_EQ(current().toString(), uuidText(agent.conversationID()));
}

TEST_F(Persistence, TheListSkipsWhatItCantReadAndLeavesItOnDisk)
{
    const QByteArray good = minimalFile("Readable");
    put("5A0D9C7E-1F6B-4B7A-9E54-1C2D3E4F5A6B.json", good.left(good.size() / 2));          // truncated
    put("8D302FA1-4C9E-4EAD-8187-4F5A6B7C8D9E.json", R"({"items":[],"pendingInput":[]})"); // notes missing
    put("9E4130B2-5DAF-4FBE-9298-5A6B7C8D9EAF.json",
        R"({"items":[{"id":"0B3A4C2D-1E5F-4A6B-8C7D-9E0F1A2B3C4D","kind":"robot","text":"x","failed":false}],)"
        R"("pendingInput":[],"notes":[]})");                                   // a row of an unknown kind
    put("AF5241C3-6EB0-40CF-A3A9-6B7C8D9EAFB0.json", QByteArray(200000, '[')); // nested beyond reason
    put("B06352D4-7FC1-41D0-B4BA-7C8D9EAFB0C1.JSON", good);                    // capitals aren't "json"
    put("D28574F6-91E3-43F2-96DC-9EAFB0C1D2E3.json", minimalFile("Readable"));
    put("E39685A7-A2F4-4403-87ED-AFB0C1D2E3F4.json", good + QByteArray(4096, '\0')); // garbage behind the end

    OpenedAgent agent;
    EXPECT_EQ(titles(agent), QStringList{"Readable"});
    EXPECT_EQ(QDir(folder()).entryList(QDir::Files).size(), 7);
}

// A conversation grows without bound on the API-key path, where the history is never trimmed:
// what was written is read back at the next start, the owed restart answer included.
TEST_F(Persistence, AConversationOfAnySizeComesBack)
{
    const QString page(1 << 20, u'x');
    Agent::Saved written;
    {
        OpenedAgent agent;
        QList<JSON> history;
        for (int i = 0; i < 130; ++i)
            history.append(Agent::message("developer", page));
        agent.load({.items = {userRow("Keep going")},
                    .restartCallID = "call_restart",
                    .unansweredCalls = {"call_restart"},
                    .history = history});
        agent.writeConversation();
        written = agent.saved();
    }
    ASSERT_GT(QFileInfo(fileOf(*written.id)).size(), qint64(130) << 20);
    OpenedAgent restored;
    EXPECT_EQ(restored.conversationID(), *written.id);
    EXPECT_EQ(restored.restartCallID(), "call_restart");
    ASSERT_EQ(restored.history().size(), 130);
    EXPECT_EQ(restored.history().last(), Agent::message("developer", page));
}

TEST_F(Persistence, ReadingFollowsTheKeysRules)
{
    auto read = [](const QByteArray &bytes) -> std::optional<SavedConversation> {
        try {
            return SavedConversation::fromJSON(JSON::decode(bytes));
        } catch (const JSON::Error &) {
            return std::nullopt;
        }
    };
    const auto minimal = read(R"({"items":[],"pendingInput":[1,"two",null],"notes":["a"],"somethingNew":{"x":1}})");
    ASSERT_TRUE(minimal);
    EXPECT_FALSE(minimal->id);
    EXPECT_FALSE(minimal->created);
    EXPECT_TRUE(minimal->unansweredCalls.isEmpty());
    EXPECT_EQ(minimal->pendingInput.size(), 3);

    // Optional keys may be null; they read as absent.
    const auto nulls = read(R"({"id":null,"created":null,"previousResponseID":null,"restartCallID":null,)"
                            R"("unansweredCalls":null,"currentRequest":null,"history":null,)"
                            R"("items":[],"pendingInput":[],"notes":[]})");
    ASSERT_TRUE(nulls);
    EXPECT_FALSE(nulls->previousResponseID);

    // A lower-case UUID is still one; a date keeps its fraction.
    const auto dated = read(R"({"id":"0b3a4c2d-1e5f-4a6b-8c7d-9e0f1a2b3c4d","created":-0.5,"updated":1e9,)"
                            R"("items":[],"pendingInput":[],"notes":[]})");
    ASSERT_TRUE(dated);
    EXPECT_EQ(uuidText(*dated->id), "0B3A4C2D-1E5F-4A6B-8C7D-9E0F1A2B3C4D");
    EXPECT_EQ(*dated->created, QDateTime(QDate(2000, 12, 31), QTime(23, 59, 59, 500), QTimeZone::utc()));

    for (const char *bad : {
             R"([])",
             R"({"pendingInput":[],"notes":[]})",
             R"({"items":[],"notes":[]})",
             R"({"items":[],"pendingInput":[],"notes":[3]})",
             R"({"items":[],"pendingInput":{},"notes":[]})",
             R"({"id":"conversation-1","items":[],"pendingInput":[],"notes":[]})",
             R"({"id":"{0B3A4C2D-1E5F-4A6B-8C7D-9E0F1A2B3C4D}","items":[],"pendingInput":[],"notes":[]})",
             R"({"id":42,"items":[],"pendingInput":[],"notes":[]})",
             R"({"created":"2024-01-01","items":[],"pendingInput":[],"notes":[]})",
             R"({"updated":1e300,"items":[],"pendingInput":[],"notes":[]})",
             R"({"unansweredCalls":"call_1","items":[],"pendingInput":[],"notes":[]})",
             R"({"unansweredCalls":[1],"items":[],"pendingInput":[],"notes":[]})",
             R"({"currentRequest":false,"items":[],"pendingInput":[],"notes":[]})",
             R"({"history":{},"items":[],"pendingInput":[],"notes":[]})",
             R"({"items":[null],"pendingInput":[],"notes":[]})",
             R"({"items":{},"pendingInput":[],"notes":[]})",
         })
        EXPECT_FALSE(read(bad)) << bad;
}

TEST_F(Persistence, AFileWithoutIdIsListedUnderItsNameAndContinuesUnderAFreshId)
{
    const QString name = QStringLiteral("1A2B3C4D-5E6F-4071-8293-A4B5C6D7E8F9");
    put(name + ".json", minimalFile("No id inside"));
    put("notes.json", minimalFile("Oddly named"));
    put(".hidden.json", minimalFile("Hidden"));
    put("later.json", minimalFile("Dated", 5000));

    OpenedAgent agent;
    // Newest first; the undated sort last in the order of the listing.
    EXPECT_EQ(titles(agent), (QStringList{"Dated", "Hidden", "No id inside", "Oddly named"}));
    EXPECT_EQ(uuidText(agent.conversations()[2].id), name);
    EXPECT_EQ(agent.conversations()[3].updated, ConversationSummary::distantPast());
    const QUuid oddID = agent.conversations()[3].id;
    agent.refreshConversations();
    EXPECT_NE(agent.conversations()[3].id, oddID);

    // An entry under a made-up id names no file: opening it only refreshes the list.
    const QUuid before = agent.conversationID();
    agent.openConversation(agent.conversations()[3].id);
    EXPECT_EQ(agent.conversationID(), before);

    // Restoring the file without an id continues it under a new one; the old file stays.
    setCurrent(name);
    OpenedAgent restored;
    EXPECT_NE(uuidText(restored.conversationID()), name);
    ASSERT_EQ(restored.items().size(), 1);
    restored.writeConversation();
    EXPECT_TRUE(QFile::exists(folder() + "/" + name + ".json"));
    EXPECT_TRUE(QFile::exists(fileOf(restored.conversationID())));
    EXPECT_EQ(restored.conversations().size(), 5);
}

TEST_F(Persistence, AStaleOrUnreadableCurrentConversationGivesAFreshOne)
{
    const QString damaged = QStringLiteral("3F2504E0-4F89-41D3-9A0C-0305E82C3301");
    put(damaged + ".json", "{\"items\":[");
    for (const QString &named :
         {QStringLiteral("4A3615F1-5A9A-42E4-AB1D-1416F93D4412"), damaged, QStringLiteral("not an id"), QString()}) {
        setCurrent(named);
        OpenedAgent agent;
        EXPECT_TRUE(agent.items().isEmpty()) << named.toStdString();
        EXPECT_NE(uuidText(agent.conversationID()), named);
    }
    // Restoring writes nothing: the damaged file is as it was.
    QFile file(folder() + "/" + damaged + ".json");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "{\"items\":[");
}

TEST_F(Persistence, ANewConversationLeavesNoFileAndTheSettingsNameIt)
{
    OpenedAgent agent;
    agent.load({.items = {userRow("First")}, .notes = {"pending note"}});
    agent.writeConversation();
    const QUuid first = agent.conversationID();
    // Opening the open conversation touches nothing, not even the date in its file.
    const JSON before = stored(first);
    QThread::msleep(5);
    agent.openConversation(first);
    EXPECT_EQ(stored(first), before);

    agent.newConversation();
    EXPECT_NE(agent.conversationID(), first);
    EXPECT_TRUE(agent.items().isEmpty());
    EXPECT_TRUE(agent.notes().isEmpty());
    EXPECT_FALSE(QFile::exists(fileOf(agent.conversationID())));
    EXPECT_EQ(current().toString(), uuidText(agent.conversationID()));
    EXPECT_EQ(titles(agent), QStringList{"First"});

    // And the old one opens again, with what it held.
    agent.openConversation(first);
    EXPECT_EQ(agent.conversationID(), first);
    EXPECT_EQ(agent.notes(), QStringList{"pending note"});
    EXPECT_EQ(current().toString(), uuidText(first));
}

TEST_F(Persistence, SwitchingDuringARunWaitsSoTheRunsLastSaveGoesToItsOwnFile)
{
    put("2B3C4D5E-6F70-4182-93A4-B5C6D7E8F9A0.json", minimalFile("Other"));
    Agent &agent = hangingAgent();
    agent.send("long job");
    ASSERT_TRUE(agent.isRunning());
    const QUuid first = agent.conversationID();

    agent.openConversation(QUuid::fromString(QStringLiteral("2B3C4D5E-6F70-4182-93A4-B5C6D7E8F9A0")));
    ASSERT_TRUE(test::spinUntil([&] { return agent.conversationID() != first; }));
    EXPECT_FALSE(agent.isRunning());
    ASSERT_EQ(agent.items().size(), 1);
    EXPECT_EQ(agent.items()[0].text, "Other");

    const JSON old = stored(first);
    const JSON::Array rows = *old.arrayAt("items");
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1].stringAt("text"), "Stopped");
    EXPECT_EQ(old.arrayAt("pendingInput")->size(), 2u);
}

// After a crash during tools the calls get the stopped text and the turn stays ended; a
// restart the agent asked for is answered and the turn goes on.
TEST_F(Persistence, AfterALaunchOpenCallsAreAnsweredAndOnlyAnAskedForRestartGoesOn)
{
    Agent &crashed = hangingAgent();
    crashed.load({.items = {userRow("build it"), ChatItem::make(ChatItem::Kind::Tool, "Edited AppRoot.swift")},
                  .pendingInput = {Agent::output("c1", "edited")},
                  .unansweredCalls = {"c2", "c3"}});
    crashed.resumeAfterLaunch(std::nullopt);
    EXPECT_FALSE(crashed.isRunning());
    EXPECT_EQ(crashed.items().size(), 2);
    EXPECT_EQ(crashed.pendingInput(), (QList<JSON>{Agent::output("c1", "edited"), Agent::output("c2", stoppedText),
                                                   Agent::output("c3", stoppedText)}));
    EXPECT_TRUE(crashed.unansweredCalls().isEmpty());
    EXPECT_TRUE(stored(crashed.conversationID()).arrayAt("unansweredCalls")->empty());

    Agent &asked = hangingAgent();
    asked.load({.items = {userRow("restart please")},
                .notes = {"Version 4 crashed while starting; back to version 3.", "Second note"},
                .restartCallID = "restart",
                .unansweredCalls = {"c1", "restart"}});
    asked.resumeAfterLaunch(std::nullopt);

    EXPECT_TRUE(asked.isRunning());
    ASSERT_EQ(asked.pendingInput().size(), 2);
    EXPECT_EQ(asked.pendingInput()[0], Agent::output("c1", stoppedText));
    EXPECT_EQ(asked.pendingInput()[1],
              Agent::output("restart", "Zentoro restarted; it is now running no version (the window is empty).\n"
                                       "Version 4 crashed while starting; back to version 3.\nSecond note"));
    EXPECT_FALSE(asked.restartCallID());
    EXPECT_TRUE(asked.notes().isEmpty());
    EXPECT_EQ(asked.items().last().text, "Restarted");
    EXPECT_EQ(asked.items().last().symbol, "arrow.clockwise");

    // Saved before the run went on: a second crash now would not answer the restart twice.
    const JSON onDisk = stored(asked.conversationID());
    EXPECT_FALSE(onDisk.find("restartCallID"));
    EXPECT_EQ(onDisk.arrayAt("pendingInput")->size(), 2u);
    asked.task().cancel();
    ASSERT_TRUE(test::spinUntil([&] { return !asked.isRunning(); }));
}

TEST_F(Persistence, AFullDiskIsShownInTheWindowAndForgottenOnceASaveSucceeds)
{
    Runtime runtime(persistingCopy());
    OpenedAgent agent;
    agent.setOperations(programOperations(agent, runtime));
    agent.setItems({userRow("Make a timer")});
    agent.writeConversation();
    const QString path = fileOf(agent.saved().id.value());
    const QString before = test::readText(path);

    agent.setItems({userRow("Make a timer"), userRow("Louder")});
    {
        test::DiskFaults full(ENOSPC);
        agent.writeConversation();
    }
    ASSERT_TRUE(runtime.banner().has_value());
    EXPECT_EQ(runtime.banner()->title, "The disk is full: Zentoro couldn't save this conversation.");
    EXPECT_EQ(test::readText(path), before);

    agent.writeConversation();
    EXPECT_FALSE(runtime.banner().has_value());
    EXPECT_NE(test::readText(path), before);
}
