#include "agent/BuildTools.h"
#include "agent/Agent.h"
#include "agent/HistoryUpkeep.h"
#include "agent/ModelRequest.h"
#include "runtime/CrashLog.h"
#include "runtime/Runtime.h"

#include "support/Await.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

class BuildToolsTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    Workspace workspace{QStringLiteral("Tools"), dir.path() + QStringLiteral("/Apps/Tools")};
    Runtime runtime{workspace};
    Agent agent{AgentOperations{}, workspace};

    void SetUp() override { QDir().mkpath(workspace.logs()); }

    ToolResult call(const QString &name, const JSON &arguments = JSON::object())
    {
        return test::await(Tools::perform(agent, workspace, BuildTools::runtimeTools(runtime), name, arguments));
    }
    ToolResult readLog(const QString &which) { return call("read_log", JSON::object({{"which", which}})); }
    void writeLog(CrashLog::Which which, const QByteArray &bytes)
    {
        QFile file(CrashLog::url(which, workspace.logs()));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
};

BuildOutcome succeeded(int version, double seconds, QString warnings)
{
    return BuildOutcome{BuildOutcome::Success{version, seconds, std::move(warnings)}};
}

ToolResult failed(QString text)
{
    return BuildTools::buildResult(BuildOutcome{BuildOutcome::Failure{std::move(text)}});
}

} // namespace

TEST(BuildResult, ASuccessTellsTheVersionAndWarningsAndAFailureCountsTheErrors)
{
    const ToolResult quiet = BuildTools::buildResult(succeeded(3, 12.25, QString()));
    EXPECT_EQ(quiet.output, JSON("Build succeeded. Version 3 is now running in the window."));
    EXPECT_EQ(quiet.item.text, "Built version 3 in 12.2s");
    EXPECT_EQ(quiet.item.detail, std::nullopt);
    const QString warning = QStringLiteral("AppRoot.swift:3:9: warning: unused variable");
    const ToolResult warned = BuildTools::buildResult(succeeded(4, 0.96, warning));
    EXPECT_EQ(warned.output,
              JSON("Build succeeded. Version 4 is now running in the window.\nCompiler warnings:\n" + warning));
    EXPECT_EQ(warned.item.text, "Built version 4 in 1.0s");
    EXPECT_EQ(warned.item.detail, warning);
    EXPECT_FALSE(warned.item.failed);

    // The whole compiler output goes to the model and the row, however long.
    const QString two = QStringLiteral("a.swift:1:1: error: x\na.swift:2:1: warning: y\nb.swift:9:4: error: z\n") +
                        QString(7000, u'.');
    const ToolResult result = failed(two);
    EXPECT_EQ(result.output, JSON("Build failed. The running app is unchanged.\n" + two));
    EXPECT_EQ(result.item.text, "Build failed (2 errors)");
    EXPECT_EQ(result.item.detail, two);
    EXPECT_TRUE(result.item.failed);
    EXPECT_EQ(failed("a.swift:1:1: error: x").item.text, "Build failed (1 error)");
    EXPECT_EQ(failed("A build is already running.").item.text, "Build failed");
}

TEST_F(BuildToolsTest, ReadLogShowsTheEndOfTheNamedLog)
{
    QByteArray lines;
    for (int i = 0; i < 500; ++i)
        lines += "line " + QByteArray::number(i) + '\n';
    writeLog(CrashLog::Which::Current, lines);
    writeLog(CrashLog::Which::Previous, "the run before\n");

    const ToolResult current = readLog("latest");
    EXPECT_TRUE(current.output.stringValue()->startsWith("line 301\n"));
    EXPECT_EQ(current.item.text, "Read the log");
    EXPECT_EQ(current.item.detail, current.output.stringValue());

    EXPECT_EQ(readLog("previous").output, JSON("the run before\n"));
    const ToolResult crash = readLog("crash");
    EXPECT_EQ(crash.output, JSON("(no such log)"));
    EXPECT_EQ(crash.item.text, "Read the crash log");
}

TEST_F(BuildToolsTest, AScreenshotWithNothingShowingIsAnError)
{
    const ToolResult result = call("screenshot");
    EXPECT_EQ(agent.activity(), "Looking at the app…");
    EXPECT_EQ(result.output, JSON("Error: Nothing to capture: no version is showing in a window."));
    EXPECT_EQ(result.item.text, "Couldn't take a screenshot");
    EXPECT_TRUE(result.item.failed);
}

// The conversation keeps a reference to a stored picture; one that can't be stored travels inline.
TEST_F(BuildToolsTest, AScreenshotIsHandedOverByReferenceOrElseInline)
{
    const QByteArray png("\x89PNG picture bytes");
    const QString folder = workspace.build() + "/Screenshots";
    const ToolResult result = BuildTools::screenshotResult(png, folder);
    ASSERT_TRUE(result.item.imagePath);
    EXPECT_EQ(QFileInfo(*result.item.imagePath).path(), folder);
    QFile stored(*result.item.imagePath);
    ASSERT_TRUE(stored.open(QIODevice::ReadOnly));
    EXPECT_EQ(stored.readAll(), png);
    const QString url = QUrl::fromLocalFile(*result.item.imagePath).toString();
    const JSON caption = JSON::object({{"type", "input_text"}, {"text", "Screenshot of the app as it looks now:"}});
    EXPECT_EQ(result.output, JSON::array({caption, JSON::object({{"type", "input_image"}, {"image_url", url}})}));

    // A file where the folder should be: nothing can be written under it.
    QDir(workspace.build()).removeRecursively();
    QFile blocker(workspace.build());
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    const ToolResult inlined = BuildTools::screenshotResult("png", folder);
    EXPECT_EQ(inlined.item.imagePath, std::nullopt);
    EXPECT_EQ(inlined.output, JSON::array({caption, JSON::object({{"type", "input_image"},
                                                                  {"image_url", "data:image/png;base64,cG5n"}})}));
}

// A copy may be named anything its file can be: its pictures still reach the model as data,
// both when the whole conversation goes out and when only the new input does.
TEST(ScreenshotReference, APictureOfACopyNamedAnyWayReachesTheModelAsData)
{
    QTemporaryDir dir;
    const QByteArray png("\x89PNG of a named copy");
    const QString data = "data:image/png;base64," + QString::fromLatin1(png.toBase64());
    const JSON call = JSON::object(
        {{"type", "function_call"}, {"call_id", "c1"}, {"name", "screenshot"}, {"arguments", "{}"}});
    for (const QString name : {"Kitchen Timer", "Tea #2", "100% Juice", "Done?", "Café Ölçer", "a%20b"}) {
        const Workspace workspace{name, dir.path() + "/Apps/" + name};
        const ToolResult result = BuildTools::screenshotResult(png, workspace.build() + "/Screenshots");
        ASSERT_TRUE(result.item.imagePath) << name.toStdString();
        const QList<JSON> pending{Agent::output("c1", result.output)};
        const QUuid id = QUuid::createUuid();
        for (const JSON &body :
             {ModelRequest::body(QString(), Provider::ChatGPT, {call}, pending, std::nullopt, id),
              ModelRequest::body(QString(), Provider::APIKey, {call}, pending, QStringLiteral("resp_1"), id)}) {
            const QString sent = QString::fromUtf8(body.find("input")->encode());
            EXPECT_TRUE(sent.contains(data)) << name.toStdString() << ": " << sent.toStdString();
            EXPECT_FALSE(sent.contains("file:")) << name.toStdString();
        }
        // Conversations saved by earlier versions hold the address with blanks and letters
        // unencoded; it still names the picture.
        const JSON earlier = JSON::array({JSON::object(
            {{"type", "input_image"}, {"image_url", QUrl::fromLocalFile(*result.item.imagePath).toString()}})});
        const JSON::Array attached = HistoryUpkeep::attachingScreenshots({Agent::output("c1", earlier)}, 1);
        EXPECT_EQ((*attached[0].arrayAt("output"))[0].stringAt("image_url"), data) << name.toStdString();
    }
}
