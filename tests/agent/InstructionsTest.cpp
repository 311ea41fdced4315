#include "agent/Instructions.h"
#include "agent/Agent.h"
#include "agent/FileTools.h"
#include "runtime/Workspace.h"

#include "RunHarness.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace zentoro;
using namespace zentoro::Instructions;

namespace {

const QDateTime now(QDate(2026, 11, 22), QTime(15, 0), QTimeZone::utc());
const QLocale english(QLocale::English, QLocale::UnitedStates);

Workspace copyNamed(const QString &name)
{
    Workspace workspace = Workspace::forName(name);
    QDir(workspace.root).removeRecursively();
    QDir().mkpath(workspace.sources());
    return workspace;
}

void put(const Workspace &workspace, const QString &path, const QByteArray &bytes)
{
    test::writeFile(workspace.sources() + "/" + path, bytes);
}

} // namespace

TEST(Instructions, ThePromptNamesTheCopyAndItsOwnDataFolder)
{
    const QString kitchen = instructions("Kitchen Timer", "/home/u/.local/share/Zentoro/Apps/Kitchen Timer/Data");
    EXPECT_EQ(kitchen.count("\"Kitchen Timer\""), 2);
    EXPECT_TRUE(kitchen.contains("files under /home/u/.local/share/Zentoro/Apps/Kitchen Timer/Data. Both are"));

    EXPECT_TRUE(kitchen.startsWith("You are the engineer inside Zentoro, a Linux desktop app that rewrites itself."));
    EXPECT_FALSE(kitchen.contains("macOS"));
    // The kit's list follows the notes whenever the build carries it.
    const QString kit = kitList();
    if (!kit.isEmpty())
        EXPECT_TRUE(kitchen.endsWith("\n\n# What Zentoro's SwiftUI supports\n" + kit));
}

TEST(Instructions, TheStateNoteTellsTheRunningVersionAndTheFiles)
{
    const Workspace workspace = copyNamed("Note");
    EXPECT_EQ(context(RuntimeState(), std::nullopt, "Swift 6.3.1 at /opt/swift", workspace, now, english),
              "Zentoro right now:\n"
              "- Running: nothing (the window shows Zentoro's setup screen).\n"
              "- Versions built so far: 0.\n"
              "- Compiler: Swift 6.3.1 at /opt/swift.\n"
              "- Files in the source folder: none.\n"
              "- Today is Sunday, November 22, 2026.");

    put(workspace, "AppRoot.swift", "import SwiftUI\nstruct AppRoot: View {}\n");
    put(workspace, "Model/Empty.swift", "");
    put(workspace, "Model/Latin1.swift", "let caf\xe9 = 1\n");
    RuntimeState state;
    state.versions = {VersionRecord{1, now.addDays(-3), "First", false},
                      VersionRecord{2, now.addSecs(-2 * 3600), "A blue timer", false}};
    const QStringList note = context(state, 2, "Swift 6.3.1 at /opt/swift", workspace, now, english).split(u'\n');
    EXPECT_EQ(note[1], "- Running: version 2, built 2 hours ago for \"A blue timer\".");
    EXPECT_EQ(note[2], "- Versions built so far: 2.");
    EXPECT_EQ(note[4], "- Files in the source folder: AppRoot.swift (3 lines), Model/Empty.swift (1 lines), "
                       "Model/Latin1.swift (0 lines).");

    // A name that looks like a placeholder stands as it is, and a source of any size is counted
    // as list_files counts it.
    QDir(workspace.sources()).removeRecursively();
    put(workspace, "Tally %1.swift", QByteArray("let x = 1\n").repeated(200000));
    Agent agent{AgentOperations{}};
    EXPECT_EQ(FileTools::listFiles(agent, workspace).output, JSON("Tally %1.swift (200001 lines)"));
    EXPECT_EQ(context(state, 2, "x", workspace, now, english).split(u'\n')[4],
              "- Files in the source folder: Tally %1.swift (200001 lines).");

    // A loaded version without a record is as good as nothing.
    EXPECT_EQ(context(state, 7, "x", workspace, now, english).split(u'\n')[1],
              "- Running: nothing (the window shows Zentoro's setup screen).");
    QDir(workspace.root).removeRecursively();
}

TEST(Instructions, AgesReadAsPeopleSayThem)
{
    struct Case {
        qint64 secondsAgo;
        const char *text;
    };
    for (const Case &c :
         {Case{0, "now"}, Case{1, "1 second ago"}, Case{45, "45 seconds ago"}, Case{60, "1 minute ago"},
          Case{59 * 60, "59 minutes ago"}, Case{3600, "1 hour ago"}, Case{2 * 3600 + 59, "2 hours ago"},
          Case{86400, "yesterday"}, Case{2 * 86400, "2 days ago"}, Case{7 * 86400, "last week"},
          Case{15 * 86400, "2 weeks ago"}, Case{31 * 86400, "last month"}, Case{200 * 86400, "6 months ago"},
          Case{365 * 86400, "last year"}, Case{3 * 365 * 86400, "3 years ago"}, Case{-5 * 60, "in 5 minutes"},
          Case{-86400, "tomorrow"}})
        EXPECT_EQ(relativeAge(now.addSecs(-c.secondsAgo), now), c.text) << c.secondsAgo;
    EXPECT_EQ(fullDate(QDate(2026, 11, 22), QLocale(QLocale::English, QLocale::UnitedKingdom)),
              "Sunday, 22 November 2026");
}

// How the waiting notes reach the model with the next message is the agent loop's to show.
TEST(Instructions, NotesShowAtOnceAndWaitForTheNextMessage)
{
    test::RunHarness harness;
    Agent &agent = harness.agent;
    agent.note("Version 3 crashed; back to version 2.", "Version 3 crashed while starting.");
    agent.note("You went back to version 1.", "The user went back to version 1.");
    EXPECT_EQ(harness.saves, 2);
    EXPECT_EQ(test::rowTexts(agent),
              (QStringList{"event: Version 3 crashed; back to version 2.", "event: You went back to version 1."}));
    EXPECT_EQ(agent.notes(), (QStringList{"Version 3 crashed while starting.", "The user went back to version 1."}));
}
