// The main window from the keyboard alone: Tab reaches every control there is, in the order
// of the window (toolbar, banner, content, agent panel), and each control it reaches has a
// name for assistive technology. The window is the program's own, made in the start-up
// order, with its agent talking to a fake of the model service.
#include "PanelHarness.h"

#include "core/Defaults.h"
#include "model_service/AgentConfig.h"
#include "support/FakeResponsesServer.h"
#include "ui/BannerView.h"
#include "ui/Composer.h"
#include "ui/SettingsView.h"
#include "ui/SetupRows.h"
#include "ui/SetupView.h"
#include "ui/ZentoroApp.h"
#include "ui/ZentoroCommands.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

using namespace zentoro;
using namespace zentoro::test;

namespace {

QString accessibleName(QWidget *widget)
{
    QAccessibleInterface *face = QAccessible::queryAccessibleInterface(widget);
    return face ? face->text(QAccessible::Name).trimmed() : QString();
}

QString describe(QWidget *widget)
{
    return QStringLiteral("%1 \"%2\"")
        .arg(QString::fromLatin1(widget->metaObject()->className()), widget->objectName());
}

// What a person operates: buttons, fields and labels whose links take the keyboard.
bool isControl(QWidget *widget)
{
    if (qobject_cast<QAbstractButton *>(widget) || qobject_cast<QLineEdit *>(widget))
        return true;
    if (auto *edit = qobject_cast<QPlainTextEdit *>(widget))
        return !edit->isReadOnly();
    if (auto *label = qobject_cast<QLabel *>(widget))
        return label->textInteractionFlags() & Qt::LinksAccessibleByKeyboard && label->text().contains(u"<a ");
    return false;
}

// The names of those of `widgets` that Tab reaches, in the order it reaches them, and of all
// of `widgets` in the order listed.
std::pair<QStringList, QStringList> orders(const QList<QWidget *> &cycle, const QList<QWidget *> &widgets)
{
    std::pair<QStringList, QStringList> names;
    for (QWidget *widget : cycle)
        if (widgets.contains(widget))
            names.first.append(describe(widget));
    for (QWidget *widget : widgets)
        names.second.append(describe(widget));
    return names;
}

class Keyboard : public ::testing::Test {
protected:
    void SetUp() override
    {
        QDir(copy.root).removeRecursively();
        Defaults::setValue(QStringLiteral("ZentoroNoLogRedirect"), true);
        Defaults::setValue(QStringLiteral("ZentoroSimulateMissingTools"), true);
        Defaults::remove(QStringLiteral("showAgent"));
        AgentConfig::saveAPIKey(std::nullopt);
        qunsetenv("OPENAI_API_KEY");
        server.becomeModelService();
        session = std::make_unique<ZentoroApp::Session>(copy);
        spinUntil([&] { return session->runtime.toolchain().kind() != Toolchain::Case::Checking; });
        window().show();
        QApplication::setActiveWindow(&window());
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    }

    void TearDown() override
    {
        session.reset();
        AgentConfig::saveAPIKey(std::nullopt);
        Defaults::remove(QStringLiteral("ZentoroSimulateMissingTools"));
    }

    MainWindow &window() { return *session->window; }

    // Presses Tab from `start` until the focus comes back to it; the widgets that had the
    // focus, each once, in the order they first had it.
    QList<QWidget *> tabCycle(QWidget *start)
    {
        start->setFocus(Qt::TabFocusReason);
        QList<QWidget *> visited{start};
        for (int press = 0; press < 200; ++press) {
            QWidget *focused = QApplication::focusWidget();
            if (!focused)
                break;
            QTest::keyClick(focused, Qt::Key_Tab);
            QWidget *next = QApplication::focusWidget();
            if (next == start)
                return visited;
            if (next && !visited.contains(next))
                visited.append(next);
        }
        ADD_FAILURE() << "Tab never came back to " << describe(start).toStdString() << "; it is stuck at "
                      << (QApplication::focusWidget() ? describe(QApplication::focusWidget()).toStdString()
                                                      : "nothing");
        return visited;
    }

    // Every shown, enabled control of `root` is reached by Tab from `start`, and every widget
    // Tab reaches has a name.
    QList<QWidget *> checkKeyboardReach(QWidget *root, QWidget *start)
    {
        const QList<QWidget *> cycle = tabCycle(start);
        for (QWidget *widget : root->findChildren<QWidget *>()) {
            if (!isControl(widget) || !widget->isVisibleTo(root) || !widget->isEnabled() || widget->window() != root)
                continue;
            EXPECT_TRUE(cycle.contains(widget)) << "Tab doesn't reach " << describe(widget).toStdString() << " named \""
                                                << accessibleName(widget).toStdString() << "\"";
        }
        for (QWidget *widget : cycle)
            EXPECT_FALSE(accessibleName(widget).isEmpty())
                << describe(widget).toStdString() << " has no accessible name";
        return cycle;
    }
    QList<QWidget *> checkKeyboardReach() { return checkKeyboardReach(&window(), window().versionButton()); }

    FakeResponsesServer server;
    const Workspace copy = Workspace::forName(QStringLiteral("Keys"));
    std::unique_ptr<ZentoroApp::Session> session;
};

TEST_F(Keyboard, EveryControlIsReachedInOrderAndNamed)
{
    // A new copy with no compiler and no key: the setup screen, and a banner above it.
    session->runtime.setBanner(
        Banner{QStringLiteral("Couldn't load version 1"), QStringLiteral("dlopen failed"), false});
    ASSERT_TRUE(window().showsSetup());
    const QList<QWidget *> order{window().versionButton(),
                                 window().restartButton(),
                                 window().agentButton(),
                                 window().bannerView()->dismissButton(),
                                 window().setupView()->toolchainRow()->actionButton(),
                                 window().setupView()->accessRow()->keyField(),
                                 window().agentPanel()->composer()->field()};
    const auto [reached, listed] = orders(checkKeyboardReach(), order);
    EXPECT_EQ(reached, listed);

    // By keys alone: paste a key and save it, then ask for a change.
    QLineEdit *key = window().setupView()->accessRow()->keyField();
    key->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(key, QStringLiteral("sk-typed"));
    QTest::keyClick(key, Qt::Key_Return);
    ASSERT_EQ(AgentConfig::savedKey(), QStringLiteral("sk-typed"));

    // The model answers with a link and a file, then the service refuses: the transcript gets
    // a tool row with details and an error row with "Try Again".
    server.enqueue(FakeResponsesServer::turn(
        {FakeResponsesServer::message(QStringLiteral("See [the guide](https://example.com/guide)."),
                                      QStringLiteral("msg_1")),
         FakeResponsesServer::call(QStringLiteral("write_file"),
                                   JSON::object({{QStringLiteral("path"), "Notes.swift"},
                                                 {QStringLiteral("content"), "// notes\n"}}),
                                   QStringLiteral("call_1"))},
        QStringLiteral("resp_1")));
    server.enqueue(FakeResponsesServer::httpError(400, R"({"error":{"message":"Your request was refused."}})"));
    ComposerField *field = window().agentPanel()->composer()->field();
    field->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(field, QStringLiteral("Add notes"));
    QTest::keyClick(field, Qt::Key_Return);
    ASSERT_TRUE(spinUntil([&] { return !session->agent.isRunning(); }));
    ASSERT_EQ(session->agent.items().size(), 4);
    EXPECT_EQ(server.requests()[0].header("Authorization"), "Bearer sk-typed");
    EXPECT_EQ(session->agent.items().last().kind, ChatItem::Kind::Error);
    session->runtime.setBanner(Banner{QStringLiteral("Build failed"), QStringLiteral("App.swift:3: error"), true});

    // The tool row opens from the keyboard, and its details join the cycle.
    LazyColumn *transcript = window().agentPanel()->transcript();
    transcript->layoutNow();
    auto *tool = qobject_cast<ToolRow *>(transcript->rowWidget(2));
    ASSERT_TRUE(tool);
    tool->head()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(tool->head(), Qt::Key_Space);
    tool = qobject_cast<ToolRow *>(transcript->rowWidget(2));
    ASSERT_TRUE(tool && tool->isExpanded());
    QTest::qWait(ToolRow::openingDuration + 60);

    // Tab follows the transcript top to bottom, the answer and the details opened later
    // included, and then comes to the composer.
    auto *retry = transcript->rowWidget(3)->findChild<QPushButton *>(QStringLiteral("retry"));
    ASSERT_TRUE(retry);
    QWidget *answer = transcript->rowWidget(1);
    const QList<QWidget *> later{
        window().bannerView()->fixButton(), answer, tool->head(), tool->detailView(), retry, field};
    const QList<QWidget *> cycle = checkKeyboardReach();
    const auto [reachedLater, listedLater] = orders(cycle, later);
    EXPECT_EQ(reachedLater, listedLater);

    // Whatever in the transcript takes the focus shows that it has it.
    for (QWidget *widget : cycle) {
        if (!transcript->isAncestorOf(widget))
            continue;
        widget->setFocus(Qt::TabFocusReason);
        QWidget *drawn = widget == tool->detailView() ? widget->parentWidget() : widget;
        const QImage focused = drawn->grab().toImage();
        field->setFocus(Qt::TabFocusReason);
        EXPECT_NE(focused, drawn->grab().toImage()) << describe(widget).toStdString() << " shows no focus";
    }

    // The composer has the focus whenever the panel comes back.
    window().setShowAgent(false);
    window().versionButton()->setFocus();
    window().setShowAgent(true);
    EXPECT_TRUE(window().agentPanel()->composer()->field()->hasFocus());
}

// Settings and quitting answer from every window: the settings window opens by its shortcut,
// is worked by keys alone, and Ctrl+Q there ends the program as closing the window does.
TEST_F(Keyboard, TheSettingsWindowIsWorkedByKeysAndQuitsLikeTheMainWindow)
{
    QTest::keyClick(&window(), Qt::Key_Comma, Qt::ControlModifier);
    SettingsView *settings = window().commands()->settingsView();
    ASSERT_TRUE(settings && settings->isVisible());
    QApplication::setActiveWindow(settings);
    ASSERT_TRUE(QTest::qWaitForWindowActive(settings));
    const QList<QWidget *> order{settings->keyField(), settings->modelField(), settings->modelMenuButton(),
                                 settings->effortPicker(), settings->originField()};
    const auto [reached, listed] = orders(checkKeyboardReach(settings, settings->keyField()), order);
    EXPECT_EQ(reached, listed);

    QTest::keyClicks(settings->keyField(), QStringLiteral("sk-keys"));
    QTest::keyClick(settings->keyField(), Qt::Key_Return);
    EXPECT_EQ(AgentConfig::savedKey(), QStringLiteral("sk-keys"));
    EXPECT_EQ(settings->keyNote(), QStringLiteral("Saved."));

    QTest::keyClick(settings, Qt::Key_Q, Qt::ControlModifier);
    EXPECT_FALSE(window().isVisible());
}

} // namespace
