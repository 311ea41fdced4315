#include "PanelHarness.h"

#include "ui/AgentPanel.h"
#include "ui/EmptyState.h"
#include "ui/LazyColumn.h"
#include "ui/TranscriptRows.h"

#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace zentoro;
using namespace zentoro::test;

namespace {

ChatItem tool(const QString &text, std::optional<QString> detail = std::nullopt, bool failed = false)
{
    ChatItem item = ChatItem::make(ChatItem::Kind::Tool, text, QStringLiteral("doc.text"));
    item.detail = std::move(detail);
    item.failed = failed;
    return item;
}

QString writeImage(const QTemporaryDir &dir, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    const QString path = dir.filePath(QStringLiteral("shot.png"));
    image.save(path);
    return path;
}

// Many rows of every kind, as a long working session leaves them.
QList<ChatItem> longConversation(qsizetype count)
{
    QList<ChatItem> items;
    for (qsizetype i = 0; i < count; ++i) {
        switch (i % 4) {
        case 0: items.append(ChatItem::make(ChatItem::Kind::User, QStringLiteral("Request %1").arg(i))); break;
        case 1: items.append(tool(QStringLiteral("Edited Row%1.swift").arg(i), QStringLiteral("- a\n+ b"))); break;
        case 2: items.append(ChatItem::make(ChatItem::Kind::Event, QStringLiteral("Event %1").arg(i))); break;
        default: items.append(ChatItem::make(ChatItem::Kind::Assistant, QStringLiteral("Answer *%1*").arg(i))); break;
        }
    }
    return items;
}

} // namespace

TEST(TranscriptRows, EachKindShowsItsTextAsDesigned)
{
    ShownPanel shown({ChatItem::make(ChatItem::Kind::User, "Make   it <blue>"),
                 ChatItem::make(ChatItem::Kind::Assistant, "# Title\nUse **bold** and `code`"),
                 ChatItem::make(ChatItem::Kind::Event, "Restarted", "arrow.clockwise")});

    // The user's words stand verbatim, not as markup.
    auto *bubble = shown.row(0)->findChild<QLabel *>();
    ASSERT_NE(bubble, nullptr);
    EXPECT_EQ(bubble->text(), QStringLiteral("Make   it <blue>"));
    EXPECT_EQ(bubble->textFormat(), Qt::PlainText);
    EXPECT_TRUE(bubble->textInteractionFlags() & Qt::TextSelectableByMouse);
    // The bubble keeps to the right of the row.
    EXPECT_GT(bubble->geometry().left(), shown.row(0)->width() / 2);

    auto *answer = qobject_cast<QLabel *>(shown.row(1));
    ASSERT_NE(answer, nullptr);
    EXPECT_TRUE(answer->text().contains(QStringLiteral("<b>bold</b>")));
    EXPECT_TRUE(answer->text().contains(QStringLiteral("# Title")));

    QStringList eventTexts;
    for (QLabel *label : shown.row(2)->findChildren<QLabel *>())
        eventTexts.append(label->text());
    EXPECT_TRUE(eventTexts.contains(QStringLiteral("Restarted")));
}

TEST(TranscriptRows, ToolRowsExpandOnlyWithDetailsAndShowReadableImages)
{
    QTemporaryDir dir;
    ChatItem shot = tool(QStringLiteral("Took a screenshot"));
    shot.imagePath = writeImage(dir, QSize(800, 600));
    ChatItem gone = tool(QStringLiteral("Took another"));
    gone.imagePath = dir.filePath(QStringLiteral("missing.png"));
    const QString detail = QStringLiteral("line\n").repeated(200);
    ShownPanel shown({tool("Read App.swift"), tool("Edited App.swift", detail), shot, gone,
                      tool("Build failed (2 errors)", "x: error: y", true)});

    auto *plain = qobject_cast<ToolRow *>(shown.row(0));
    ASSERT_NE(plain, nullptr);
    EXPECT_FALSE(plain->head()->hasChevron());
    QTest::mouseClick(plain->head(), Qt::LeftButton);
    EXPECT_FALSE(plain->isExpanded());

    auto *edited = qobject_cast<ToolRow *>(shown.row(1));
    ASSERT_NE(edited, nullptr);
    EXPECT_TRUE(edited->head()->hasChevron());
    const int collapsed = edited->heightForWidth(300);
    QTest::mouseClick(edited->head(), Qt::LeftButton);
    ASSERT_TRUE(edited->isExpanded());
    EXPECT_TRUE(edited->detailView()->isReadOnly());
    // Long details scroll inside a box of bounded height.
    const int expanded = edited->heightForWidth(300);
    EXPECT_GT(expanded, collapsed);
    EXPECT_LE(expanded - collapsed, TranscriptRows::detailMaximumHeight + 6);

    auto *withImage = qobject_cast<ToolRow *>(shown.row(2));
    ASSERT_NE(withImage, nullptr);
    EXPECT_TRUE(withImage->showsImage());
    EXPECT_LE(withImage->heightForWidth(300) - withImage->head()->heightForWidth(300),
              TranscriptRows::imageMaximumHeight + 6);
    auto *missing = qobject_cast<ToolRow *>(shown.row(3));
    ASSERT_NE(missing, nullptr);
    EXPECT_FALSE(missing->showsImage());
}

TEST(TranscriptRows, AFailedToolIsRedInIconAndText)
{
    // Red pixels in the symbol's box and in the text of a head as drawn.
    const auto redIn = [](bool failed) {
        ToolHead head(tool("Edited A", "d", failed));
        head.resize(260, head.heightForWidth(260));
        const QImage image = head.grab().toImage();
        std::pair<int, int> count{0, 0};
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                if (c.red() > 150 && c.green() < 90 && c.blue() < 90)
                    ++(x < 18 ? count.first : count.second);
            }
        return count;
    };
    EXPECT_EQ(redIn(false), std::make_pair(0, 0));
    const auto [inIcon, inText] = redIn(true);
    EXPECT_GT(inIcon, 5);
    EXPECT_GT(inText, 5);
}

TEST(LazyTranscript, BuildsOnlyTheRowsInSightAndStaysAtTheBottom)
{
    ShownPanel shown(longConversation(5000));
    LazyColumn *transcript = shown.panel.transcript();
    EXPECT_LT(transcript->builtCount(), 60);
    EXPECT_NE(shown.row(4999), nullptr);
    EXPECT_EQ(shown.row(0), nullptr);
    EXPECT_TRUE(transcript->isAtBottom());

    // The last row sits in sight at the bottom of the viewport.
    const QRect last = shown.row(4999)->geometry();
    EXPECT_LE(last.bottom(), transcript->viewport()->height());
    EXPECT_GT(last.bottom(), transcript->viewport()->height() - 60);

    transcript->verticalScrollBar()->setValue(0);
    transcript->layoutNow();
    ASSERT_NE(shown.row(0), nullptr);
    EXPECT_EQ(shown.row(4999), nullptr);
    EXPECT_EQ(shown.row(0)->geometry().top(), 14);
    EXPECT_LT(transcript->builtCount(), 60);

    // New rows while reading old ones leave the view where it is.
    shown.harness.agent.appendItem(ChatItem::make(ChatItem::Kind::Event, QStringLiteral("Later")));
    transcript->layoutNow();
    EXPECT_EQ(transcript->verticalScrollBar()->value(), 0);

    // Back at the bottom, new rows keep it there.
    transcript->scrollToBottom();
    shown.harness.agent.appendItem(ChatItem::make(ChatItem::Kind::Event, QStringLiteral("Latest")));
    transcript->layoutNow();
    EXPECT_TRUE(transcript->isAtBottom());
    ASSERT_NE(shown.row(5001), nullptr);
}

TEST(LazyTranscript, AnExpandedRowStaysExpandedWhenBuiltAgain)
{
    QList<ChatItem> items = longConversation(400);
    ShownPanel shown(items);
    LazyColumn *transcript = shown.panel.transcript();
    const qsizetype target = 397; // a tool row near the end, in sight
    auto *row = qobject_cast<ToolRow *>(shown.row(target));
    ASSERT_NE(row, nullptr);
    QTest::mouseClick(row->head(), Qt::LeftButton);
    ASSERT_TRUE(row->isExpanded());

    transcript->verticalScrollBar()->setValue(0);
    transcript->layoutNow();
    QApplication::processEvents();
    EXPECT_EQ(shown.row(target), nullptr);
    transcript->scrollToBottom();
    QApplication::processEvents();
    transcript->layoutNow();
    auto *again = qobject_cast<ToolRow *>(shown.row(target));
    ASSERT_NE(again, nullptr);
    EXPECT_TRUE(again->isExpanded());
}

TEST(LazyTranscript, ANewConversationReplacesEveryRow)
{
    ShownPanel shown(longConversation(50));
    shown.harness.agent.setItems({ChatItem::make(ChatItem::Kind::User, QStringLiteral("Fresh start"))});
    LazyColumn *transcript = shown.panel.transcript();
    transcript->layoutNow();
    EXPECT_EQ(transcript->count(), 1);
    auto *bubble = shown.row(0)->findChild<QLabel *>();
    ASSERT_NE(bubble, nullptr);
    EXPECT_EQ(bubble->text(), QStringLiteral("Fresh start"));

    shown.harness.agent.setItems({});
    transcript->layoutNow();
    EXPECT_EQ(transcript->count(), 0);
    EXPECT_TRUE(shown.panel.emptyState()->isVisibleTo(&shown.panel));
}
