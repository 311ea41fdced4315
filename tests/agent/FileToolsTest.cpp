#include "agent/Agent.h"
#include "agent/Tools.h"
#include "runtime/Workspace.h"

#include "support/Await.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

QString output(const ToolResult &result)
{
    return result.output.stringValue().value_or(QStringLiteral("(not text)"));
}

void expectFailure(const ToolResult &result, const QString &message, const QString &title)
{
    EXPECT_EQ(output(result), "Error: " + message);
    EXPECT_EQ(result.item.text, title);
    EXPECT_EQ(result.item.detail, message);
    EXPECT_TRUE(result.item.failed);
}

class FileToolsTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    Workspace workspace{QStringLiteral("Tools"), dir.path() + QStringLiteral("/Apps/Tools")};
    Agent agent{AgentOperations{}};
    Tools::RuntimeTools runtime;

    void SetUp() override { QDir().mkpath(workspace.sources()); }

    ToolResult call(const QString &name, const JSON &arguments = JSON::object())
    {
        return test::await(Tools::perform(agent, workspace, runtime, name, arguments));
    }
    ToolResult call(const QString &name, const QString &path, std::initializer_list<std::pair<QString, JSON>> more = {})
    {
        JSON arguments = JSON::object(more);
        arguments.set(QStringLiteral("path"), path);
        return call(name, arguments);
    }

    // A failure whose row is titled "<tool> failed".
    void expectRefused(const QString &name, const QString &path, const QString &message,
                       std::initializer_list<std::pair<QString, JSON>> more = {})
    {
        expectFailure(call(name, path, more), message, name + " failed");
    }

    QString source(const QString &relative) const { return workspace.sources() + u'/' + relative; }
    void put(const QString &relative, const QByteArray &bytes) { test::writeFile(source(relative), bytes); }
    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }
};

} // namespace

// Lines are the pieces between line feeds; details are cut after 6000 characters as people
// count them ("é" as a letter and a combining accent is one).
TEST(ToolText, LinesAndCharactersAreCountedAsPeopleSeeThem)
{
    EXPECT_EQ(Tools::lineCount(""), 1);
    EXPECT_EQ(Tools::lineCount("\n\n"), 3);
    EXPECT_EQ(Tools::lineCount("a\r\nb"), 2);
    const QString exact = QStringLiteral("e\u0301").repeated(6000);
    EXPECT_EQ(Tools::limited(exact), exact);
    EXPECT_EQ(Tools::limited(exact + "x"), exact + "\n…");
}

TEST_F(FileToolsTest, UnknownAndUnsuppliedToolsAnswerWithErrors)
{
    expectFailure(call("format_disk"), "There's no tool called format_disk.", "Unknown tool format_disk");
    expectFailure(call("build"), "build isn't available in this build of Zentoro.", "build failed");

    JSON seen;
    runtime.screenshot = [&](Agent &, const JSON &arguments) -> QCoro::Task<ToolResult> {
        seen = arguments;
        co_return ToolResult{JSON("captured"), ChatItem::make(ChatItem::Kind::Tool, "Took a screenshot")};
    };
    EXPECT_EQ(output(call("screenshot", JSON::object({{"note", 1}}))), "captured");
    EXPECT_EQ(seen, JSON::object({{"note", 1}}));
}

TEST_F(FileToolsTest, MissingOrMistypedPathAsksForARelativePath)
{
    const QString request = QStringLiteral("Use a path relative to the source folder, like \"AppRoot.swift\".");
    expectFailure(call("read_file"), request, "read_file failed");
    expectFailure(call("read_file", JSON::object({{"path", 3}})), request, "read_file failed");
    expectFailure(call("write_file", JSON::array({"AppRoot.swift"})), request, "write_file failed");
    expectRefused("delete_file", "~/x", request);
}

TEST_F(FileToolsTest, ListFilesCountsLinesOfEveryVisibleFile)
{
    ToolResult empty = call("list_files");
    EXPECT_EQ(output(empty), "(no files)");
    EXPECT_EQ(empty.item.text, "Listed the files");
    EXPECT_EQ(agent.activity(), "Looking around…");

    put("AppRoot.swift", QByteArray("line\n").repeated(10));
    put("Views/Empty.swift", "");
    put("Data.bin", "\xff\xfe\x00");
    put(".build/Hidden.swift", "x");
    const QString expected = QStringLiteral(
        "AppRoot.swift (11 lines)\nData.bin (1 lines)\nViews/Empty.swift (1 lines)");
    const ToolResult listed = call("list_files");
    EXPECT_EQ(output(listed), expected);
    EXPECT_EQ(listed.item.detail, expected);
}

TEST_F(FileToolsTest, ReadFileGivesTheWholeTextButNeverShowsIt)
{
    const QByteArray text = "import SwiftUI\n// “quoted” ✓\n" + QByteArray(20000, 'x');
    put("AppRoot.swift", text);
    const ToolResult read = call("read_file", QStringLiteral(" AppRoot.swift\n"));
    EXPECT_EQ(output(read), QString::fromUtf8(text));
    EXPECT_EQ(read.item.text, "Read  AppRoot.swift\n");
    EXPECT_EQ(read.item.detail, std::nullopt);
    EXPECT_EQ(agent.activity(), "Reading  AppRoot.swift\n…");

    put("Empty.swift", "");
    EXPECT_EQ(output(call("read_file", QStringLiteral("Empty.swift"))), "(empty file)");
}

TEST_F(FileToolsTest, ReadFileRefusesWhatIsNoReadableTextFile)
{
    put("Views/Row.swift", "x");
    put("Latin1.swift", "caf\xe9");
    expectRefused("read_file", "Nope.swift", "There's no file at Nope.swift.");
    expectRefused("read_file", "Views", "Views is a folder, not a file.");
    expectRefused("read_file", "Latin1.swift", "Latin1.swift isn't UTF-8 text.");

    // A large source (generated tables, say) is read and edited whole; only a file far beyond
    // any source is refused, and the model hears how large it is.
    const QByteArray table = "let table = [\n" + QByteArray("    1, 2, 3, 4, 5, 6, 7, 8,\n").repeated(100000) + "]\n";
    put("Table.swift", table);
    EXPECT_EQ(output(call("read_file", QStringLiteral("Table.swift"))).size(), table.size());
    const ToolResult edited = call("edit_file", QStringLiteral("Table.swift"),
                                   {{"old_text", "]\n"}, {"new_text", "].map { $0 }\n"}});
    EXPECT_FALSE(edited.item.failed);
    QFile huge(source("Huge.swift"));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly) && huge.resize((qint64(16) << 20) + 1));
    huge.close();
    expectRefused("read_file", "Huge.swift",
                  "Huge.swift is too large to read: 16777217 bytes. Files of up to 16 MB can be read.");
}

TEST_F(FileToolsTest, WriteFileCreatesOrRewritesWholeFiles)
{
    const QString content = QStringLiteral("struct Row {}\n// é\n");
    const ToolResult created = call("write_file", QStringLiteral("Views/Row.swift"), {{"content", content}});
    EXPECT_EQ(output(created), "Wrote Views/Row.swift (3 lines).");
    EXPECT_EQ(created.item.text, "Created Views/Row.swift");
    EXPECT_EQ(created.item.detail, content);
    EXPECT_EQ(agent.activity(), "Writing Views/Row.swift…");
    EXPECT_EQ(contents(source("Views/Row.swift")), content.toUtf8());

    const ToolResult emptied = call("write_file", QStringLiteral("Views/Row.swift"));
    EXPECT_EQ(output(emptied), "Wrote Views/Row.swift (1 lines).");
    EXPECT_EQ(emptied.item.text, "Rewrote Views/Row.swift");
    EXPECT_EQ(contents(source("Views/Row.swift")), "");
    // Nothing of the atomic write is left lying about.
    EXPECT_EQ(QDir(source("Views")).entryList(QDir::Files | QDir::Hidden), QStringList({"Row.swift"}));

    const ToolResult big = call("write_file", QStringLiteral("Big.swift"), {{"content", QString(7000, u'b')}});
    EXPECT_EQ(big.item.detail, QString(6000, u'b') + "\n…");
    EXPECT_EQ(contents(source("Big.swift")).size(), 7000);

    expectRefused("write_file", "Views", "Views is a folder, not a file.", {{"content", "x"}});
    expectRefused("write_file", "Big.swift/Inner.swift", "Couldn't make the folder for Big.swift/Inner.swift.",
                  {{"content", "x"}});
}

TEST_F(FileToolsTest, EditFileReplacesExactlyOneMatch)
{
    put("AppRoot.swift", "Text(\"Hello\")\n.padding()\nText(\"Bye\")\n");
    const ToolResult edited = call("edit_file", QStringLiteral("AppRoot.swift"),
                                   {{"old_text", "Text(\"Hello\")\n.padding()"}, {"new_text", "Text(\"Hi\")"}});
    EXPECT_EQ(output(edited), "Edited AppRoot.swift.");
    EXPECT_EQ(edited.item.text, "Edited AppRoot.swift");
    EXPECT_EQ(edited.item.detail, "- Text(\"Hello\")\n- .padding()\n+ Text(\"Hi\")");
    EXPECT_EQ(agent.activity(), "Editing AppRoot.swift…");
    EXPECT_EQ(contents(source("AppRoot.swift")), "Text(\"Hi\")\nText(\"Bye\")\n");

    // An empty replacement deletes the match; the diff ends in an empty added line.
    const ToolResult removed = call("edit_file", QStringLiteral("AppRoot.swift"), {{"old_text", "Text(\"Bye\")\n"}});
    EXPECT_EQ(removed.item.detail, "- Text(\"Bye\")\n- \n+ ");
    EXPECT_EQ(contents(source("AppRoot.swift")), "Text(\"Hi\")\n");

    // Matches are counted from the front without overlap: "aa" stands once in "aaa".
    put("Run.swift", "aaa");
    EXPECT_FALSE(call("edit_file", QStringLiteral("Run.swift"), {{"old_text", "aa"}, {"new_text", "b"}}).item.failed);
    EXPECT_EQ(contents(source("Run.swift")), "ba");
}

TEST_F(FileToolsTest, EditFileThatDoesNotMatchOnceLeavesTheFileAlone)
{
    const QByteArray original = "let a = 1\nlet a = 1\nLet b = 2\r\n";
    put("Model.swift", original);
    const QString title = QStringLiteral("Couldn't edit Model.swift");
    expectFailure(call("edit_file", QStringLiteral("Model.swift"), {{"old_text", "let a = 1"}, {"new_text", "x"}}),
                  "old_text appears 2 times in Model.swift. Include more surrounding lines so it matches once.", title);
    expectFailure(call("edit_file", QStringLiteral("Model.swift"), {{"old_text", "let b = 2\n"}, {"new_text", "x"}}),
                  "old_text wasn't found in Model.swift. Read the file again and copy the text exactly, including "
                  "whitespace.",
                  title);
    expectFailure(call("edit_file", QStringLiteral("Model.swift"), {{"new_text", "x"}}), "old_text is empty.", title);
    EXPECT_EQ(contents(source("Model.swift")), original);

    // A missing file is a file failure, whatever old_text holds.
    expectRefused("edit_file", "Gone.swift", "There's no file at Gone.swift.");
}

TEST_F(FileToolsTest, DeleteFileRemovesAFileOrAFolderAndLeavesActivityAlone)
{
    put("Views/Old.swift", "x");
    agent.setActivity(QStringLiteral("Thinking…"));
    const ToolResult deleted = call("delete_file", QStringLiteral("Views/Old.swift"));
    EXPECT_EQ(output(deleted), "Deleted Views/Old.swift.");
    EXPECT_EQ(deleted.item.text, "Deleted Views/Old.swift");
    EXPECT_EQ(agent.activity(), "Thinking…");
    EXPECT_FALSE(QFileInfo::exists(source("Views/Old.swift")));
    expectRefused("delete_file", "Views/Old.swift", "There's no file at Views/Old.swift.");

    // A folder goes with what it holds; a link in it goes, what the link leads to stays.
    put("Views/Deep/Row.swift", "x");
    const QString kept = dir.path() + QStringLiteral("/kept.txt");
    test::writeFile(kept, "mine");
    QFile::link(kept, source("Views/Deep/kept.txt"));
    EXPECT_EQ(output(call("delete_file", QStringLiteral("Views"))), "Deleted Views.");
    EXPECT_FALSE(QFileInfo::exists(source("Views")));
    EXPECT_EQ(contents(kept), "mine");
    expectRefused("delete_file", ".", ". is outside the source folder.");
    EXPECT_TRUE(QFileInfo(workspace.sources()).isDir());
}

TEST_F(FileToolsTest, NoToolReachesPastALinkLeadingOut)
{
    const QString outside = dir.path() + QStringLiteral("/home");
    put("../../../home/.bashrc", "secret");
    QFile::link(outside, source("home"));
    QFile::link(outside + "/.bashrc", source("rc.swift"));
    const QString refusal = QStringLiteral(" goes through a symbolic link that leads outside the source folder.");

    expectRefused("read_file", "home/.bashrc", "home/.bashrc" + refusal);
    expectRefused("write_file", "rc.swift", "rc.swift" + refusal, {{"content", "rm -rf ~"}});
    expectRefused("write_file", "home/New.swift", "home/New.swift" + refusal, {{"content", "x"}});
    expectRefused("edit_file", "home/.bashrc", "home/.bashrc" + refusal,
                  {{"old_text", "secret"}, {"new_text", "gone"}});
    expectRefused("delete_file", "home/.bashrc", "home/.bashrc" + refusal);
    expectRefused("write_file", "../home/.bashrc", "../home/.bashrc is outside the source folder.", {{"content", "x"}});

    EXPECT_EQ(contents(outside + "/.bashrc"), "secret");
    EXPECT_EQ(QDir(outside).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList({".bashrc"}));
    EXPECT_TRUE(QFileInfo(source("rc.swift")).isSymLink());
}

// Paths and folders no one meant: a NUL that would cut the path short, a name spelled in the
// other Unicode form than the file on disk, and a folder of thousands of files, which the
// model is shown in part.
TEST_F(FileToolsTest, HostilePathsAndHugeFoldersGetClearAnswers)
{
    put("Café.swift", "let a = 1\n"); // composed é
    expectRefused("write_file", QStringLiteral("AppRoot.swift") + QChar(0) + "/../../x",
                  "A path can't contain a NUL character.", {{"content", "x"}});
    const QString decomposed = QStringLiteral("Cafe\u0301.swift");
    EXPECT_EQ(output(call("read_file", decomposed)), "let a = 1\n");
    EXPECT_FALSE(call("write_file", decomposed, {{"content", "let a = 2\n"}}).item.failed);
    EXPECT_EQ(contents(source("Café.swift")), "let a = 2\n");
    EXPECT_EQ(QDir(workspace.sources()).entryList(QDir::Files).size(), 1);

    for (int file = 0; file < 1200; ++file)
        put(QStringLiteral("Many/F%1.swift").arg(file, 4, 10, QChar(u'0')), "x");
    const QStringList listed = output(call("list_files")).split(u'\n');
    ASSERT_EQ(listed.size(), 1001);
    EXPECT_EQ(listed.last(), "… and 201 more files");
}
