#include "PanelHarness.h"

#include "model_service/AgentConfig.h"

#include "ui/Composer.h"
#include "ui/EmptyState.h"
#include "ui/SetupRows.h"
#include "ui/WorkingRow.h"

#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>

using namespace zentoro;
using namespace zentoro::test;

namespace {

// Types into and presses keys in the composer of a shown panel.
struct Typist : ShownPanel {
    ComposerField *field() { return panel.composer()->field(); }
    void type(const QString &text) { QTest::keyClicks(field(), text); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(field(), key, modifiers);
    }
};

// Whether any suggestion can be clicked; they are enabled all together or not at all.
bool anySuggestionEnabled(AgentPanel &panel)
{
    const QList<SuggestionButton *> buttons = panel.emptyState()->buttons();
    return std::any_of(buttons.begin(), buttons.end(), [](SuggestionButton *button) { return button->isEnabled(); });
}

// The retry button of the transcript's last row, if it has one.
QPushButton *retryOnLastRow(LazyColumn *transcript)
{
    QWidget *last = transcript->rowWidget(transcript->count() - 1);
    return last ? last->findChild<QPushButton *>(QStringLiteral("retry")) : nullptr;
}

} // namespace

TEST(AgentPanel, ReturnSendsShiftReturnBreaksTheLineAndBlankTextStays)
{
    Typist shown;
    EXPECT_EQ(shown.field()->placeholderText(), QStringLiteral("Describe a change…"));
    EXPECT_TRUE(shown.panel.emptyState()->isVisibleTo(&shown.panel));

    shown.type(QStringLiteral("  "));
    shown.press(Qt::Key_Return, Qt::ShiftModifier);
    shown.type(QStringLiteral(" "));
    EXPECT_FALSE(shown.panel.composer()->sendButton()->isEnabled());
    shown.press(Qt::Key_Return);
    EXPECT_TRUE(shown.harness.agent.items().isEmpty());
    EXPECT_EQ(shown.panel.draft(), QStringLiteral("  \n "));

    shown.field()->clear();
    shown.type(QStringLiteral("Make it blue"));
    shown.press(Qt::Key_Return, Qt::ShiftModifier);
    shown.type(QStringLiteral("and round"));
    EXPECT_TRUE(shown.panel.composer()->sendButton()->isEnabled());

    shown.press(Qt::Key_Return);
    EXPECT_EQ(shown.rows(), QStringList{"user: Make it blue\nand round"});
    EXPECT_FALSE(shown.panel.emptyState()->isVisibleTo(&shown.panel));
    ASSERT_TRUE(shown.harness.finish());
}

TEST(AgentPanel, DuringARunReturnKeepsTheDraftAndStopCancelsTheRun)
{
    Typist shown;
    shown.type(QStringLiteral("Add a timer"));
    shown.press(Qt::Key_Return);
    ASSERT_TRUE(shown.harness.agent.isRunning());

    Composer *composer = shown.panel.composer();
    EXPECT_FALSE(composer->sendButton()->isVisibleTo(&shown.panel));
    EXPECT_TRUE(shown.panel.workingRow()->isVisibleTo(&shown.panel));
    EXPECT_EQ(shown.panel.workingRow()->activityText(),
              shown.harness.agent.activity().value_or(QStringLiteral("Working…")));

    shown.type(QStringLiteral("and a bell"));
    shown.press(Qt::Key_Return);
    EXPECT_EQ(shown.panel.draft(), QStringLiteral("and a bell"));
    EXPECT_EQ(shown.rows(), QStringList{"user: Add a timer"});

    QTest::mouseClick(composer->stopButton(), Qt::LeftButton);
    ASSERT_TRUE(spinUntil([&] { return !shown.harness.agent.isRunning(); }));
    EXPECT_EQ(shown.rows().last(), QStringLiteral("event: Stopped"));
    EXPECT_FALSE(shown.panel.workingRow()->isVisibleTo(&shown.panel));
    EXPECT_TRUE(composer->sendButton()->isVisibleTo(&shown.panel));
    // The draft typed during the run is still there and goes out now.
    shown.press(Qt::Key_Return);
    EXPECT_EQ(shown.rows().last(), QStringLiteral("user: and a bell"));
    ASSERT_TRUE(shown.harness.finish());
}

TEST(AgentPanel, SuggestionsSendTheirTextOnlyWhenTheAgentCanRun)
{
    Typist shown;
    ASSERT_EQ(shown.panel.emptyState()->buttons().size(), 4);
    shown.type(QStringLiteral("my draft"));
    QTest::mouseClick(shown.panel.emptyState()->buttons()[1], Qt::LeftButton);
    EXPECT_EQ(shown.rows(), QStringList{"user: Make a pomodoro timer with a big circular progress ring"});
    EXPECT_EQ(shown.panel.draft(), QStringLiteral("my draft"));
    EXPECT_FALSE(anySuggestionEnabled(shown.panel));
    ASSERT_TRUE(shown.harness.finish());

    PanelHarness unconnected;
    unconnected.available.reset();
    unconnected.agent.setHasAPIKey(false);
    AgentPanel panel(unconnected.agent);
    panel.resize(380, 720); // the panel's width and a window's height
    panel.show();
    EXPECT_EQ(panel.composer()->field()->placeholderText(), QStringLiteral("Connect the agent to start"));
    EXPECT_FALSE(anySuggestionEnabled(panel));
    QTest::keyClicks(panel.composer()->field(), QStringLiteral("hello"));
    EXPECT_FALSE(panel.composer()->sendButton()->isEnabled());
    QTest::keyClick(panel.composer()->field(), Qt::Key_Return);
    EXPECT_TRUE(unconnected.agent.items().isEmpty());

    // The way to connect stands at the head of the transcript, whatever version runs; a key
    // pasted there connects the agent without leaving the panel.
    AgentAccessRow *access = panel.accessRow();
    panel.transcript()->layoutNow();
    const QRect shownAt(access->mapTo(panel.transcript()->viewport(), QPoint()), access->size());
    EXPECT_TRUE(access->isVisible());
    EXPECT_GT(shownAt.height(), 0);
    const QRect viewport = panel.transcript()->viewport()->rect();
    EXPECT_TRUE(viewport.contains(shownAt))
        << shownAt.x() << "," << shownAt.y() << " " << shownAt.width() << "x" << shownAt.height() << " in "
        << viewport.width() << "x" << viewport.height();
    QTest::keyClicks(access->keyField(), QStringLiteral("sk-typed-in-the-panel"));
    QTest::mouseClick(access->saveButton(), Qt::LeftButton);
    EXPECT_TRUE(unconnected.agent.provider().has_value());
    EXPECT_FALSE(access->isVisible());
    EXPECT_TRUE(anySuggestionEnabled(panel));
    EXPECT_EQ(panel.composer()->field()->placeholderText(), QStringLiteral("Describe a change…"));
    AgentConfig::saveAPIKey(std::nullopt);
}

TEST(AgentPanel, TryAgainStandsOnlyUnderAFailureThatIsLastAndRetries)
{
    Typist shown;
    shown.harness.failNext = true;
    shown.type(QStringLiteral("Build it"));
    shown.press(Qt::Key_Return);
    ASSERT_TRUE(shown.harness.finish());
    LazyColumn *transcript = shown.panel.transcript();
    ASSERT_TRUE(spinUntil([&] { return retryOnLastRow(transcript); }));
    EXPECT_EQ(retryOnLastRow(transcript)->text(), QStringLiteral("Try Again"));

    // What a retry sends is the agent's to show.
    QTest::mouseClick(retryOnLastRow(transcript), Qt::LeftButton);
    ASSERT_TRUE(shown.harness.agent.isRunning());
    ASSERT_TRUE(shown.harness.finish());
    EXPECT_EQ(shown.rows().last(), QStringLiteral("assistant: Done **now**."));
    // The error row is no longer last: it has no "Try Again" when it is built again.
    const qsizetype errorRow = transcript->count() - 2;
    transcript->rebuild(errorRow);
    transcript->layoutNow();
    ASSERT_NE(shown.row(errorRow), nullptr);
    EXPECT_EQ(shown.row(errorRow)->findChild<QPushButton *>(QStringLiteral("retry")), nullptr);

    // An error that the user can act on offers its link, and without input to send again, no retry.
    ChatItem error = ChatItem::make(ChatItem::Kind::Error, QStringLiteral("Usage limit reached."));
    error.link = ChatLink{QStringLiteral("Manage Usage"), QUrl(QStringLiteral("https://example.invalid/usage"))};
    shown.harness.agent.setItems({ChatItem::make(ChatItem::Kind::User, QStringLiteral("Hi")), error});
    transcript->layoutNow();
    ASSERT_NE(shown.row(1), nullptr);
    const QList<QPushButton *> buttons = shown.row(1)->findChildren<QPushButton *>();
    ASSERT_EQ(buttons.size(), 1);
    EXPECT_EQ(buttons[0]->text(), QStringLiteral("Manage Usage"));
}

TEST(WorkingRow, CountsWholeSecondsTowardsZero)
{
    const QDateTime start = QDateTime::fromMSecsSinceEpoch(1'700'000'000'000, Qt::UTC);
    EXPECT_EQ(WorkingRow::secondsText(start, start.addMSecs(75'900)), QStringLiteral("75s"));
    EXPECT_EQ(WorkingRow::secondsText(start, start.addSecs(3600 + 5)), QStringLiteral("3605s"));
    EXPECT_EQ(WorkingRow::secondsText(start, start.addMSecs(-400)), QStringLiteral("0s"));
}

TEST(Composer, GrowsFromOneToEightLines)
{
    ComposerField field;
    field.resize(300, field.sizeHint().height());
    field.show();
    const int oneLine = field.height();
    EXPECT_EQ(field.visibleLines(), 1);
    field.setPlainText(QStringLiteral("a\nb\nc"));
    EXPECT_EQ(field.visibleLines(), 3);
    EXPECT_GT(field.height(), oneLine);
    field.setPlainText(QString(u'\n').repeated(20));
    EXPECT_EQ(field.visibleLines(), ComposerField::maximumLines);
    const int eight = field.height();
    field.setPlainText(QString(u'\n').repeated(40));
    EXPECT_EQ(field.height(), eight);
    field.clear();
    EXPECT_EQ(field.height(), oneLine);
}
