#include "PanelHarness.h"

#include "ui/AgentPanel.h"
#include "ui/Composer.h"
#include "ui/EmptyState.h"
#include "ui/LazyColumn.h"
#include "ui/WorkingRow.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace zentoro;
using namespace zentoro::test;

namespace {

// Types into and presses keys in the composer of a shown panel.
struct Typist : ShownPanel {
    ComposerField *field() { return panel.composer()->field(); }
    void type(const QString &text) { QTest::keyClicks(field(), text); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) { QTest::keyClick(field(), key, modifiers); }

    bool suggestionsEnabled()
    {
        for (SuggestionButton *button : panel.emptyState()->buttons()) {
            if (!button->isEnabled())
                return false;
        }
        return true;
    }
};

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
    EXPECT_EQ(shown.panel.draft(), QStringLiteral("Make it blue\nand round"));
    EXPECT_TRUE(shown.harness.agent.items().isEmpty());
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
    ASSERT_TRUE(shown.suggestionsEnabled());
    QTest::mouseClick(shown.panel.emptyState()->buttons()[1], Qt::LeftButton);
    EXPECT_EQ(shown.rows(), QStringList{"user: Make a pomodoro timer with a big circular progress ring"});
    EXPECT_EQ(shown.panel.draft(), QStringLiteral("my draft"));
    EXPECT_FALSE(shown.suggestionsEnabled());
    ASSERT_TRUE(shown.harness.finish());

    PanelHarness unconnected;
    unconnected.available.reset();
    unconnected.agent.setHasAPIKey(false);
    AgentPanel panel(unconnected.agent);
    panel.show();
    EXPECT_EQ(panel.composer()->field()->placeholderText(), QStringLiteral("Connect the agent to start"));
    for (SuggestionButton *button : panel.emptyState()->buttons())
        EXPECT_FALSE(button->isEnabled());
    QTest::keyClicks(panel.composer()->field(), QStringLiteral("hello"));
    EXPECT_FALSE(panel.composer()->sendButton()->isEnabled());
    QTest::keyClick(panel.composer()->field(), Qt::Key_Return);
    EXPECT_TRUE(unconnected.agent.items().isEmpty());
}

TEST(AgentPanel, TryAgainStandsOnlyUnderAFailureThatIsLastAndRetries)
{
    Typist shown;
    shown.harness.failNext = true;
    shown.type(QStringLiteral("Build it"));
    shown.press(Qt::Key_Return);
    ASSERT_TRUE(shown.harness.finish());
    LazyColumn *transcript = shown.panel.transcript();
    ASSERT_TRUE(spinUntil([&] {
        QWidget *last = transcript->rowWidget(transcript->count() - 1);
        return last && last->findChild<QPushButton *>(QStringLiteral("retry"));
    }));
    auto *retry = transcript->rowWidget(transcript->count() - 1)->findChild<QPushButton *>(QStringLiteral("retry"));
    EXPECT_EQ(retry->text(), QStringLiteral("Try Again"));

    // What a retry sends is the agent's to show.
    QTest::mouseClick(retry, Qt::LeftButton);
    ASSERT_TRUE(shown.harness.agent.isRunning());
    ASSERT_TRUE(shown.harness.finish());
    EXPECT_EQ(shown.rows().last(), QStringLiteral("assistant: Done **now**."));
    // The error row is no longer last: it has no "Try Again" when it is built again.
    const qsizetype errorRow = transcript->count() - 2;
    transcript->rebuild(errorRow);
    transcript->layoutNow();
    QWidget *row = transcript->rowWidget(errorRow);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->findChild<QPushButton *>(QStringLiteral("retry")), nullptr);
}

TEST(AgentPanel, ErrorRowsOfferTheirLinkAndNoRetryWithoutQueuedInput)
{
    Typist shown;
    ChatItem error = ChatItem::make(ChatItem::Kind::Error, QStringLiteral("Usage limit reached."));
    error.link = ChatLink{QStringLiteral("Manage Usage"), QUrl(QStringLiteral("https://example.invalid/usage"))};
    shown.harness.agent.setItems({ChatItem::make(ChatItem::Kind::User, QStringLiteral("Hi")), error});
    shown.panel.transcript()->layoutNow();
    QWidget *row = shown.row(1);
    ASSERT_NE(row, nullptr);
    QStringList buttons;
    for (QPushButton *button : row->findChildren<QPushButton *>())
        buttons.append(button->text());
    EXPECT_EQ(buttons, QStringList{"Manage Usage"});
}

TEST(WorkingRow, CountsWholeSecondsTowardsZero)
{
    const QDateTime start = QDateTime::fromMSecsSinceEpoch(1'700'000'000'000, Qt::UTC);
    EXPECT_EQ(WorkingRow::secondsText(start, start.addMSecs(75'900)), QStringLiteral("75s"));
    EXPECT_EQ(WorkingRow::secondsText(start, start.addMSecs(999)), QStringLiteral("0s"));
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
