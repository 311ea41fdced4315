// A person's first minutes with a new copy named "Kitchen Timer", through the real window, the
// program's own agent against a fake of the model service, and the real Swift compiler and UI
// kit: a request typed and sent with Return, an app written, built and screenshot, then a version
// back, a reset from the Develop menu, and a restart. The restart is played in this process:
// everything is made again from the same copy on disk, in the start-up order a new process follows.
#include "PanelHarness.h"

#include "core/Defaults.h"
#include "model_service/AgentConfig.h"
#include "runtime/PluginContainerView.h"
#include "support/Alert.h"
#include "support/FakeResponsesServer.h"
#include "support/Files.h"
#include "ui/Composer.h"
#include "ui/ZentoroApp.h"
#include "ui/ZentoroCommands.h"

#include <QFile>
#include <QMenu>
#include <QPushButton>
#include <QStandardPaths>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

using namespace zentoro;
using namespace zentoro::test;

namespace {

using namespace std::chrono_literals;

// The app the fake model writes: a counter on a pale blue ground, a colour the starter app
// doesn't have, so the pixels tell which app is on screen.
const QString tallyApp = QStringLiteral(R"swift(import SwiftUI

struct AppRoot: View {
    @State private var count = 0

    var body: some View {
        VStack(spacing: 24) {
            Text("Tally \(count)").font(.largeTitle)
            Button("+") { count += 1 }
        }
        .frame(maxWidth: .infinity, maxHeight: .infinity)
        .background(Color(red: 0.80, green: 0.90, blue: 1.0))
    }
}
)swift");
const QColor tallyGround(204, 230, 255);

const QString request = QStringLiteral("Make it a tally counter");
const QString reply = QStringLiteral("Done: it counts now.");

bool hasCompiler()
{
    return !QStandardPaths::findExecutable(QStringLiteral("swiftc")).isEmpty() ||
           QFile::exists(QStringLiteral("/opt/swift/usr/bin/swiftc"));
}

bool near(const QColor &a, const QColor &b)
{
    return std::abs(a.red() - b.red()) <= 3 && std::abs(a.green() - b.green()) <= 3 &&
           std::abs(a.blue() - b.blue()) <= 3;
}

// Whether the hosted view shows the counter's ground near its top left corner.
bool showsTally(const MainWindow &window)
{
    QWidget *content = window.host()->content();
    return content && near(content->grab().toImage().pixelColor(8, 8), tallyGround);
}

class FirstSession : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!hasCompiler())
            GTEST_SKIP() << "No Swift compiler found (swiftc on PATH or in /opt/swift/usr/bin); skipped.";
        QDir(copy.root).removeRecursively();
        Defaults::setValue(QStringLiteral("ZentoroNoLogRedirect"), true);
        Defaults::remove(QStringLiteral("showAgent"));
        AgentConfig::saveAPIKey(std::nullopt);
        qputenv("OPENAI_API_KEY", "sk-first-session");
        server.becomeModelService();
    }

    void TearDown() override
    {
        session.reset();
        qunsetenv("OPENAI_API_KEY");
    }

    // Starts as the process does once it holds the copy's lock, and shows the window.
    MainWindow &start()
    {
        session = std::make_unique<ZentoroApp::Session>(copy);
        session->window->show();
        return *session->window;
    }

    Runtime &runtime() { return session->runtime; }
    Agent &agent() { return session->agent; }
    MainWindow &window() { return *session->window; }
    QString versionTitle() { return window().versionButton()->text(); }

    // Waits for a build to end in version `number` shown in the window.
    bool shows(int number, std::chrono::milliseconds timeout = 180s)
    {
        return spinUntil(
            [&] {
                return !runtime().isBuilding() && runtime().loadedVersion() == number && window().host()->content() &&
                       window().host()->shownGeneration() == runtime().generation();
            },
            timeout);
    }

    QWidget *row(qsizetype index)
    {
        LazyColumn *transcript = window().agentPanel()->transcript();
        transcript->layoutNow();
        return transcript->rowWidget(index);
    }

    FakeResponsesServer server;
    const Workspace copy = Workspace::forName(QStringLiteral("Kitchen Timer"));
    std::unique_ptr<ZentoroApp::Session> session;
};

TEST_F(FirstSession, AskForAnAppGoBackResetAndRestart)
{
    server.enqueue(FakeResponsesServer::turn(
        {FakeResponsesServer::message(QStringLiteral("I'll turn it into a counter."), QStringLiteral("msg_1")),
         FakeResponsesServer::call(QStringLiteral("write_file"),
                                   JSON::object({{QStringLiteral("path"), "AppRoot.swift"},
                                                 {QStringLiteral("content"), JSON(tallyApp)}}),
                                   QStringLiteral("call_1"))},
        QStringLiteral("resp_1")));
    server.enqueue(FakeResponsesServer::functionCall(QStringLiteral("build"), JSON::object(), QStringLiteral("call_2"),
                                                     QStringLiteral("resp_2")));
    server.enqueue(FakeResponsesServer::functionCall(QStringLiteral("screenshot"), JSON::object(),
                                                     QStringLiteral("call_3"), QStringLiteral("resp_3")));
    server.enqueue(FakeResponsesServer::textReply(reply, QStringLiteral("resp_4")));

    // A new copy builds the starter app as its first version, with no one asking.
    start();
    EXPECT_EQ(window().windowTitle(), QStringLiteral("Kitchen Timer"));
    // The first build of a test folder compiles the UI kit too, which takes minutes on a busy machine.
    ASSERT_TRUE(shows(1, 1200s)) << "The starter app never showed; banner: "
                                 << (runtime().banner() ? runtime().banner()->detail.value_or(QString()).toStdString()
                                                        : "");
    EXPECT_EQ(versionTitle(), QStringLiteral("Version 1"));
    EXPECT_FALSE(showsTally(window()));

    // The person types a request and presses Return.
    ComposerField *field = window().agentPanel()->composer()->field();
    ASSERT_TRUE(spinUntil([&] { return field->hasFocus(); })) << "The composer doesn't take the focus";
    QTest::keyClicks(field, request);
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(field->toPlainText().isEmpty());
    EXPECT_TRUE(agent().isRunning());
    EXPECT_TRUE(window().agentPanel()->composer()->stopButton()->isVisible());
    ASSERT_TRUE(spinUntil([&] { return !agent().isRunning(); }, 180s));
    EXPECT_EQ(server.scriptedLeft(), 0);

    // The window shows the new app as version 2.
    ASSERT_TRUE(shows(2, 5s));
    EXPECT_EQ(versionTitle(), QStringLiteral("Version 2"));
    EXPECT_TRUE(showsTally(window()));

    // The transcript: the request, the model's words, a row per tool, the reply.
    const QList<ChatItem> items = agent().items();
    ASSERT_EQ(items.size(), 6) << rowTexts(agent()).join(u" | ").toStdString();
    EXPECT_EQ(items[0].text, request);
    EXPECT_EQ(items[2].text, QStringLiteral("Rewrote AppRoot.swift"));
    EXPECT_TRUE(items[3].text.startsWith(QStringLiteral("Built version 2 in "))) << items[3].text.toStdString();
    EXPECT_EQ(items[4].text, QStringLiteral("Took a screenshot"));
    EXPECT_EQ(items[5].text, reply);

    // What is on screen for each row.
    EXPECT_TRUE(labelTexts(row(0)).contains(request));
    auto *written = qobject_cast<ToolRow *>(row(2));
    ASSERT_TRUE(written && written->head()->hasChevron());
    QTest::mouseClick(written->head(), Qt::LeftButton);
    written = qobject_cast<ToolRow *>(row(2));
    ASSERT_TRUE(written && written->isExpanded());
    EXPECT_EQ(written->detailView()->toPlainText(), tallyApp);
    auto *shot = qobject_cast<ToolRow *>(row(4));
    ASSERT_TRUE(shot && items[4].imagePath);
    EXPECT_TRUE(shot->showsImage());
    EXPECT_TRUE(near(QImage(*items[4].imagePath).pixelColor(4, 4), tallyGround))
        << "The screenshot isn't of the new app";
    EXPECT_TRUE(labelTexts(row(5)).contains(QStringLiteral("it counts now")));
    // The model saw the screenshot with the last request, as picture data: the copy's folder
    // has a blank in its name. The key from the environment is the bearer, and the service
    // keeps the conversation: a later request carries only what is new.
    EXPECT_TRUE(server.requests().last().body.contains("\"image_url\":\"data:image/png;base64,iVBOR"));
    EXPECT_FALSE(server.requests().last().body.contains("file:"));
    EXPECT_EQ(server.requests()[0].header("Authorization"), "Bearer sk-first-session");
    EXPECT_EQ(server.requests()[1].json().stringAt(QStringLiteral("previous_response_id")), QStringLiteral("resp_1"));
    EXPECT_FALSE(server.requests()[1].body.contains(request.toUtf8()));

    // Going back to version 1 through the Develop menu.
    QMenu *goBack = window().commands()->goBackMenu();
    ASSERT_TRUE(goBack->menuAction()->isEnabled());
    emit goBack->aboutToShow();
    ASSERT_EQ(goBack->actions().size(), 2);
    EXPECT_TRUE(goBack->actions()[0]->text().startsWith(QStringLiteral("2. ")));
    goBack->actions()[1]->trigger();
    ASSERT_TRUE(shows(1, 5s));
    EXPECT_FALSE(showsTally(window()));
    EXPECT_FALSE(readText(copy.sources() + QStringLiteral("/AppRoot.swift")).contains(u"Tally"));
    EXPECT_EQ(agent().items().last().text, QStringLiteral("Went back to version 1."));

    // Forward to version 2 again, then reset: the confirmation is answered "Reset".
    emit goBack->aboutToShow();
    goBack->actions()[0]->trigger();
    ASSERT_TRUE(shows(2, 5s));
    AlertSeen asked;
    answerNextAlert(asked, QStringLiteral("Reset"));
    window().commands()->resetToOriginal()->trigger();
    EXPECT_EQ(asked.text, QStringLiteral("Reset to the original app?"));
    ASSERT_TRUE(shows(3)) << "The reset didn't build";
    EXPECT_EQ(versionTitle(), QStringLiteral("Version 3"));
    EXPECT_FALSE(showsTally(window()));
    EXPECT_TRUE(rowTexts(agent()).join(u'\n').contains(QStringLiteral("Reset to the original app.")));

    // A restart once the version has proved itself: the same conversation, the same version.
    ASSERT_TRUE(spinUntil([&] { return !runtime().state().loading; }, 10s));
    const QStringList before = rowTexts(agent());
    const QUuid conversation = agent().conversationID();
    session.reset();
    start();
    EXPECT_EQ(agent().conversationID(), conversation);
    EXPECT_EQ(rowTexts(agent()), before);
    ASSERT_TRUE(shows(3, 5s));
    EXPECT_FALSE(runtime().banner().has_value());
    auto *restored = qobject_cast<ToolRow *>(row(4));
    ASSERT_TRUE(restored);
    EXPECT_TRUE(restored->showsImage());
}

} // namespace
