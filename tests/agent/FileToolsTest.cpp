#include "agent/Agent.h"
#include "agent/Tools.h"
#include "runtime/Workspace.h"

#include "support/Await.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

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

    QString source(const QString &relative) const { return workspace.sources() + u'/' + relative; }
    void put(const QString &relative, const QByteArray &bytes)
    {
        QDir().mkpath(QFileInfo(source(relative)).path());
        QFile file(source(relative));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }
};

QString output(const ToolResult &result)
{
    return result.output.stringValue().value_or(QStringLiteral("(not text)"));
}

void expectFailure(const ToolResult &result, const QString &message, const QString &title)
{
    EXPECT_EQ(output(result), "Error: " + message);
    EXPECT_EQ(result.item.kind, ChatItem::Kind::Tool);
    EXPECT_EQ(result.item.text, title);
    EXPECT_EQ(result.item.detail, message);
    EXPECT_EQ(result.item.symbol, "exclamationmark.triangle");
    EXPECT_TRUE(result.item.failed);
}

} // namespace

TEST(ToolText, LineCountCountsPiecesBetweenLineFeeds)
{
    EXPECT_EQ(Tools::lineCount(""), 1);
    EXPECT_EQ(Tools::lineCount("a\n"), 2);
    EXPECT_EQ(Tools::lineCount("\n\n"), 3);
    EXPECT_EQ(Tools::lineCount("a\r\nb"), 2);
}

TEST(ToolText, DetailIsCutAfterSixThousandCharactersAsPeopleCountThem)
{
    // "é" as a letter and a combining accent: two code units, one character.
    const QString accented = QStringLiteral("e\u0301");
    const QString exact = accented.repeated(6000);
    EXPECT_EQ(Tools::limited(exact), exact);
    EXPECT_EQ(Tools::limited(exact + "x"), exact + "\n…");
    EXPECT_EQ(Tools::limited(QString(6001, u'a')), QString(6000, u'a') + "\n…");
}

TEST_F(FileToolsTest, UnknownAndUnsuppliedToolsAnswerWithErrors)
{
    expectFailure(call(QStringLiteral("format_disk")), "There's no tool called format_disk.", "Unknown tool format_disk");
    expectFailure(call(QStringLiteral("build")), "build isn't available in this build of Zentoro.", "build failed");

    JSON seen;
    runtime.screenshot = [&](Agent &, const JSON &arguments) -> QCoro::Task<ToolResult> {
        seen = arguments;
        co_return ToolResult{JSON("captured"), ChatItem::make(ChatItem::Kind::Tool, "Took a screenshot")};
    };
    const ToolResult result = call(QStringLiteral("screenshot"), JSON::object({{"note", 1}}));
    EXPECT_EQ(output(result), "captured");
    EXPECT_EQ(seen, JSON::object({{"note", 1}}));
    expectFailure(call(QStringLiteral("read_log")), "read_log isn't available in this build of Zentoro.",
                  "read_log failed");
}

TEST_F(FileToolsTest, MissingOrMistypedPathAsksForARelativePath)
{
    const QString request = QStringLiteral("Use a path relative to the source folder, like \"AppRoot.swift\".");
    expectFailure(call(QStringLiteral("read_file")), request, "read_file failed");
    expectFailure(call(QStringLiteral("read_file"), JSON::object({{"path", 3}})), request, "read_file failed");
    expectFailure(call(QStringLiteral("write_file"), JSON::array({"AppRoot.swift"})), request, "write_file failed");
    expectFailure(call(QStringLiteral("delete_file"), QStringLiteral("~/x")), request, "delete_file failed");
}

TEST_F(FileToolsTest, ListFilesCountsLinesOfEveryVisibleFile)
{
    ToolResult empty = call(QStringLiteral("list_files"));
    EXPECT_EQ(output(empty), "(no files)");
    EXPECT_EQ(empty.item.text, "Listed the files");
    EXPECT_EQ(empty.item.detail, "");
    EXPECT_EQ(empty.item.symbol, "folder");
    EXPECT_EQ(agent.activity(), "Looking around…");

    put(QStringLiteral("AppRoot.swift"), QByteArray("line\n").repeated(10));
    put(QStringLiteral("Views/Empty.swift"), "");
    put(QStringLiteral("Data.bin"), "\xff\xfe\x00");
    put(QStringLiteral(".build/Hidden.swift"), "x");
    const QString expected =
        QStringLiteral("AppRoot.swift (11 lines)\nData.bin (1 lines)\nViews/Empty.swift (1 lines)");
    const ToolResult listed = call(QStringLiteral("list_files"));
    EXPECT_EQ(output(listed), expected);
    EXPECT_EQ(listed.item.detail, expected);
    EXPECT_FALSE(listed.item.failed);
}

TEST_F(FileToolsTest, ReadFileGivesTheWholeTextButNeverShowsIt)
{
    const QByteArray text = "import SwiftUI\n// “quoted” ✓\n" + QByteArray(20000, 'x');
    put(QStringLiteral("AppRoot.swift"), text);
    const ToolResult read = call(QStringLiteral("read_file"), QStringLiteral(" AppRoot.swift\n"));
    EXPECT_EQ(output(read), QString::fromUtf8(text));
    EXPECT_EQ(read.item.text, "Read  AppRoot.swift\n");
    EXPECT_EQ(read.item.symbol, "doc.text");
    EXPECT_EQ(read.item.detail, std::nullopt);
    EXPECT_EQ(agent.activity(), "Reading  AppRoot.swift\n…");

    put(QStringLiteral("Empty.swift"), "");
    EXPECT_EQ(output(call(QStringLiteral("read_file"), QStringLiteral("Empty.swift"))), "(empty file)");
}

TEST_F(FileToolsTest, ReadFileRefusesWhatIsNoReadableTextFile)
{
    expectFailure(call(QStringLiteral("read_file"), QStringLiteral("Nope.swift")), "There's no file at Nope.swift.",
                  "read_file failed");
    put(QStringLiteral("Views/Row.swift"), "x");
    expectFailure(call(QStringLiteral("read_file"), QStringLiteral("Views")), "Views is a folder, not a file.",
                  "read_file failed");
    put(QStringLiteral("Latin1.swift"), "caf\xe9");
    expectFailure(call(QStringLiteral("read_file"), QStringLiteral("Latin1.swift")), "Latin1.swift isn't UTF-8 text.",
                  "read_file failed");
    put(QStringLiteral("Broken.swift"), "a\xff\xfe b");
    expectFailure(call(QStringLiteral("read_file"), QStringLiteral("Broken.swift")), "Broken.swift isn't UTF-8 text.",
                  "read_file failed");
    put(QStringLiteral("Huge.swift"), QByteArray(1024 * 1024 + 1, 'a'));
    const ToolResult huge = call(QStringLiteral("read_file"), QStringLiteral("Huge.swift"));
    EXPECT_TRUE(huge.item.failed);
    EXPECT_TRUE(output(huge).startsWith("Error: Huge.swift is too large to read")) << output(huge).toStdString();
    put(QStringLiteral("Limit.swift"), QByteArray(1024 * 1024, 'a'));
    EXPECT_FALSE(call(QStringLiteral("read_file"), QStringLiteral("Limit.swift")).item.failed);
}

TEST_F(FileToolsTest, WriteFileCreatesOrRewritesWholeFiles)
{
    const QString content = QStringLiteral("struct Row {}\n// é\n");
    const ToolResult created = call(QStringLiteral("write_file"), QStringLiteral("Views/Row.swift"), {{"content", content}});
    EXPECT_EQ(output(created), "Wrote Views/Row.swift (3 lines).");
    EXPECT_EQ(created.item.text, "Created Views/Row.swift");
    EXPECT_EQ(created.item.detail, content);
    EXPECT_EQ(created.item.symbol, "square.and.pencil");
    EXPECT_EQ(agent.activity(), "Writing Views/Row.swift…");
    EXPECT_EQ(contents(source(QStringLiteral("Views/Row.swift"))), content.toUtf8());

    const ToolResult emptied = call(QStringLiteral("write_file"), QStringLiteral("Views/Row.swift"));
    EXPECT_EQ(output(emptied), "Wrote Views/Row.swift (1 lines).");
    EXPECT_EQ(emptied.item.text, "Rewrote Views/Row.swift");
    EXPECT_EQ(contents(source(QStringLiteral("Views/Row.swift"))), "");
    // Nothing of the atomic write is left lying about.
    EXPECT_EQ(QDir(source(QStringLiteral("Views"))).entryList(QDir::Files | QDir::Hidden), QStringList({"Row.swift"}));

    const ToolResult big =
        call(QStringLiteral("write_file"), QStringLiteral("Big.swift"), {{"content", QString(7000, u'b')}});
    EXPECT_EQ(big.item.detail, QString(6000, u'b') + "\n…");
    EXPECT_EQ(contents(source(QStringLiteral("Big.swift"))).size(), 7000);

    expectFailure(call(QStringLiteral("write_file"), QStringLiteral("Views"), {{"content", "x"}}),
                  "Views is a folder, not a file.", "write_file failed");
    expectFailure(call(QStringLiteral("write_file"), QStringLiteral("Big.swift/Inner.swift"), {{"content", "x"}}),
                  "Couldn't make the folder for Big.swift/Inner.swift.", "write_file failed");
}

TEST_F(FileToolsTest, EditFileReplacesExactlyOneMatch)
{
    put(QStringLiteral("AppRoot.swift"), "Text(\"Hello\")\n.padding()\nText(\"Bye\")\n");
    const ToolResult edited = call(QStringLiteral("edit_file"), QStringLiteral("AppRoot.swift"),
                                   {{"old_text", "Text(\"Hello\")\n.padding()"}, {"new_text", "Text(\"Hi\")"}});
    EXPECT_EQ(output(edited), "Edited AppRoot.swift.");
    EXPECT_EQ(edited.item.text, "Edited AppRoot.swift");
    EXPECT_EQ(edited.item.symbol, "pencil");
    EXPECT_EQ(edited.item.detail, "- Text(\"Hello\")\n- .padding()\n+ Text(\"Hi\")");
    EXPECT_EQ(agent.activity(), "Editing AppRoot.swift…");
    EXPECT_EQ(contents(source(QStringLiteral("AppRoot.swift"))), "Text(\"Hi\")\nText(\"Bye\")\n");

    // An empty replacement deletes the match; the diff ends in an empty added line.
    const ToolResult removed = call(QStringLiteral("edit_file"), QStringLiteral("AppRoot.swift"),
                                    {{"old_text", "Text(\"Bye\")\n"}});
    EXPECT_EQ(removed.item.detail, "- Text(\"Bye\")\n- \n+ ");
    EXPECT_EQ(contents(source(QStringLiteral("AppRoot.swift"))), "Text(\"Hi\")\n");

    // Matches are counted from the front without overlap: "aa" stands once in "aaa".
    put(QStringLiteral("Run.swift"), "aaa");
    EXPECT_FALSE(call(QStringLiteral("edit_file"), QStringLiteral("Run.swift"), {{"old_text", "aa"}, {"new_text", "b"}})
                     .item.failed);
    EXPECT_EQ(contents(source(QStringLiteral("Run.swift"))), "ba");
}

TEST_F(FileToolsTest, EditFileThatDoesNotMatchOnceLeavesTheFileAlone)
{
    const QByteArray original = "let a = 1\nlet a = 1\nLet b = 2\r\n";
    put(QStringLiteral("Model.swift"), original);
    const QString title = QStringLiteral("Couldn't edit Model.swift");
    expectFailure(call(QStringLiteral("edit_file"), QStringLiteral("Model.swift"),
                       {{"old_text", "let a = 1"}, {"new_text", "x"}}),
                  "old_text appears 2 times in Model.swift. Include more surrounding lines so it matches once.", title);
    expectFailure(call(QStringLiteral("edit_file"), QStringLiteral("Model.swift"),
                       {{"old_text", "let b = 2\n"}, {"new_text", "x"}}),
                  "old_text wasn't found in Model.swift. Read the file again and copy the text exactly, including "
                  "whitespace.",
                  title);
    expectFailure(call(QStringLiteral("edit_file"), QStringLiteral("Model.swift"), {{"new_text", "x"}}),
                  "old_text is empty.", title);
    EXPECT_EQ(contents(source(QStringLiteral("Model.swift"))), original);

    // A missing file is a file failure, whatever old_text holds.
    expectFailure(call(QStringLiteral("edit_file"), QStringLiteral("Gone.swift")), "There's no file at Gone.swift.",
                  "edit_file failed");
}

TEST_F(FileToolsTest, DeleteFileRemovesOneFileAndLeavesActivityAlone)
{
    put(QStringLiteral("Views/Old.swift"), "x");
    agent.setActivity(QStringLiteral("Thinking…"));
    const ToolResult deleted = call(QStringLiteral("delete_file"), QStringLiteral("Views/Old.swift"));
    EXPECT_EQ(output(deleted), "Deleted Views/Old.swift.");
    EXPECT_EQ(deleted.item.text, "Deleted Views/Old.swift");
    EXPECT_EQ(deleted.item.symbol, "trash");
    EXPECT_EQ(deleted.item.detail, std::nullopt);
    EXPECT_EQ(agent.activity(), "Thinking…");
    EXPECT_FALSE(QFileInfo::exists(source(QStringLiteral("Views/Old.swift"))));

    expectFailure(call(QStringLiteral("delete_file"), QStringLiteral("Views/Old.swift")),
                  "There's no file at Views/Old.swift.", "delete_file failed");
    expectFailure(call(QStringLiteral("delete_file"), QStringLiteral("Views")), "Views is a folder, not a file.",
                  "delete_file failed");
    EXPECT_TRUE(QFileInfo(source(QStringLiteral("Views"))).isDir());
}

TEST_F(FileToolsTest, NoToolReachesPastALinkLeadingOut)
{
    const QString outside = dir.path() + QStringLiteral("/home");
    QDir().mkpath(outside);
    {
        QFile bashrc(outside + "/.bashrc");
        ASSERT_TRUE(bashrc.open(QIODevice::WriteOnly));
        bashrc.write("secret");
    }
    QFile::link(outside, source(QStringLiteral("home")));
    QFile::link(outside + "/.bashrc", source(QStringLiteral("rc.swift")));
    const QString refusal = QStringLiteral(" goes through a symbolic link that leads outside the source folder.");

    expectFailure(call(QStringLiteral("read_file"), QStringLiteral("home/.bashrc")), "home/.bashrc" + refusal,
                  "read_file failed");
    expectFailure(call(QStringLiteral("write_file"), QStringLiteral("rc.swift"), {{"content", "rm -rf ~"}}),
                  "rc.swift" + refusal, "write_file failed");
    expectFailure(call(QStringLiteral("write_file"), QStringLiteral("home/New.swift"), {{"content", "x"}}),
                  "home/New.swift" + refusal, "write_file failed");
    expectFailure(call(QStringLiteral("edit_file"), QStringLiteral("home/.bashrc"),
                       {{"old_text", "secret"}, {"new_text", "gone"}}),
                  "home/.bashrc" + refusal, "edit_file failed");
    expectFailure(call(QStringLiteral("delete_file"), QStringLiteral("home/.bashrc")), "home/.bashrc" + refusal,
                  "delete_file failed");
    expectFailure(call(QStringLiteral("write_file"), QStringLiteral("../home/.bashrc"), {{"content", "x"}}),
                  "../home/.bashrc is outside the source folder.", "write_file failed");

    EXPECT_EQ(contents(outside + "/.bashrc"), "secret");
    EXPECT_EQ(QDir(outside).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList({".bashrc"}));
    EXPECT_TRUE(QFileInfo(source(QStringLiteral("rc.swift"))).isSymLink());
}
