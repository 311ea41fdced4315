#include "PanelHarness.h"

#include "ui/Composer.h"
#include "ui/EmptyState.h"
#include "ui/PanelStyle.h"

#include <QApplication>
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

ChatItem item(ChatItem::Kind kind, const QString &text)
{
    return ChatItem::make(kind, text);
}

// Many rows of every kind, as a long working session leaves them; every fourth from the
// second is a tool row with details.
QList<ChatItem> longConversation(qsizetype count)
{
    QList<ChatItem> items;
    for (qsizetype i = 0; i < count; ++i) {
        switch (i % 4) {
        case 0: items.append(item(ChatItem::Kind::User, QStringLiteral("Request %1").arg(i))); break;
        case 1: items.append(tool(QStringLiteral("Edited Row%1.swift").arg(i), QStringLiteral("- a\n+ b"))); break;
        case 2: items.append(item(ChatItem::Kind::Event, QStringLiteral("Event %1").arg(i))); break;
        default: items.append(item(ChatItem::Kind::Assistant, QStringLiteral("Answer *%1*").arg(i))); break;
        }
    }
    return items;
}

} // namespace

TEST(TranscriptRows, EachKindShowsItsTextAsDesigned)
{
    ShownPanel shown({item(ChatItem::Kind::User, "Make   it <blue>"),
                      item(ChatItem::Kind::Assistant, "# Title\nUse **bold** and `code`"),
                      ChatItem::make(ChatItem::Kind::Event, "Restarted", "arrow.clockwise")});

    // The user's words stand verbatim, not as markup, in a bubble on the right.
    auto *bubble = shown.row(0)->findChild<QLabel *>();
    ASSERT_NE(bubble, nullptr);
    EXPECT_EQ(bubble->text(), QStringLiteral("Make   it <blue>"));
    EXPECT_EQ(bubble->textFormat(), Qt::PlainText);
    EXPECT_TRUE(bubble->textInteractionFlags() & Qt::TextSelectableByMouse);
    EXPECT_GT(bubble->geometry().left(), shown.row(0)->width() / 2);

    const QString answer = labelTexts(shown.row(1));
    EXPECT_TRUE(answer.contains(QStringLiteral("<b>bold</b>")) && answer.contains(QStringLiteral("# Title")));
    EXPECT_TRUE(labelTexts(shown.row(2)).split(u'\n').contains(QStringLiteral("Restarted")));
}

TEST(TranscriptRows, ToolRowsExpandOnlyWithDetailsAndShowReadableImages)
{
    QTemporaryDir dir;
    QImage image(800, 600, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    ChatItem shot = tool(QStringLiteral("Took a screenshot"));
    shot.imagePath = dir.filePath(QStringLiteral("shot.png"));
    image.save(*shot.imagePath);
    ChatItem gone = tool(QStringLiteral("Took another"));
    gone.imagePath = dir.filePath(QStringLiteral("missing.png"));
    ShownPanel shown(
        {tool("Read App.swift"), tool("Edited App.swift", QStringLiteral("line\n").repeated(200)), shot, gone});

    ToolRow *plain = shown.toolRow(0);
    ASSERT_TRUE(plain);
    EXPECT_FALSE(plain->head()->hasChevron());
    QTest::mouseClick(plain->head(), Qt::LeftButton);
    EXPECT_FALSE(plain->isExpanded());

    // Long details scroll inside a box of bounded height.
    ToolRow *edited = shown.toolRow(1);
    ASSERT_TRUE(edited && edited->head()->hasChevron());
    const int collapsed = edited->heightForWidth(300);
    QTest::mouseClick(edited->head(), Qt::LeftButton);
    ASSERT_TRUE(edited->isExpanded());
    QTest::qWait(ToolRow::openingDuration + 60);
    EXPECT_TRUE(edited->detailView()->isReadOnly());
    EXPECT_GT(edited->heightForWidth(300), collapsed + TranscriptRows::detailMaximumHeight / 2);
    EXPECT_LE(edited->heightForWidth(300) - collapsed, TranscriptRows::detailMaximumHeight + 6);
    EXPECT_TRUE(edited->detailView()->verticalScrollBar()->maximum() > 0);

    ToolRow *withImage = shown.toolRow(2);
    ASSERT_TRUE(withImage && withImage->showsImage());
    EXPECT_LE(withImage->heightForWidth(300) - withImage->head()->heightForWidth(300),
              TranscriptRows::imageMaximumHeight + 6);
    ASSERT_TRUE(shown.toolRow(3));
    EXPECT_FALSE(shown.toolRow(3)->showsImage());
}

TEST(TranscriptRows, AnOpenedDetailShowsItsTextInSight)
{
    ShownPanel shown({item(ChatItem::Kind::User, "Make it blue"),
                      tool("Edited App.swift", QStringLiteral("Text(\"Hello\")\n    .foregroundStyle(.blue)"))});
    ToolRow *row = shown.toolRow(1);
    ASSERT_TRUE(row);
    QTest::mouseClick(row->head(), Qt::LeftButton);
    // The box opens over a few frames, not at once.
    QTest::qWait(ToolRow::openingDuration / 3);
    shown.panel.transcript()->layoutNow();
    const int midway = row->detailView()->parentWidget()->height();
    QTest::qWait(ToolRow::openingDuration + 60);
    shown.panel.transcript()->layoutNow();

    QPlainTextEdit *detail = row->detailView();
    ASSERT_TRUE(detail);
    const QWidget *box = detail->parentWidget();
    EXPECT_LT(midway, box->height());
    EXPECT_TRUE(QFontInfo(detail->font()).fixedPitch());
    EXPECT_TRUE(detail->textInteractionFlags() & Qt::TextSelectableByMouse);
    EXPECT_EQ(detail->toPlainText(), QStringLiteral("Text(\"Hello\")\n    .foregroundStyle(.blue)"));
    QWidget *viewport = shown.panel.transcript()->viewport();
    const QRect shownRect(box->mapTo(viewport, QPoint(0, 0)), box->size());
    EXPECT_GT(shownRect.height(), 2 * detail->fontMetrics().height());
    EXPECT_TRUE(viewport->rect().contains(shownRect)) << shownRect.y() << " " << shownRect.height();
    // Both lines are drawn: rows of text-coloured pixels in two bands.
    const QImage image = viewport->grab(shownRect).toImage();
    const QColor text = detail->palette().color(QPalette::Text);
    int inkRows = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (std::abs(c.lightness() - text.lightness()) < 60) {
                ++inkRows;
                break;
            }
        }
    }
    EXPECT_GT(inkRows, detail->fontMetrics().height());
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
            for (int x = 0; x < image.width(); ++x)
                if (const QColor c = image.pixelColor(x, y); c.red() > 150 && c.green() < 90 && c.blue() < 90)
                    ++(x < 18 ? count.first : count.second);
        return count;
    };
    EXPECT_EQ(redIn(false), std::make_pair(0, 0));
    EXPECT_GT(redIn(true).first, 5);
    EXPECT_GT(redIn(true).second, 5);
}

TEST(TranscriptRows, TheBubbleReadsAndColoursFollowThePalette)
{
    // Fusion's and Breeze's accents, light and dark.
    for (const QColor accent : {QColor(0x308cc6), QColor(0x2a82da), QColor(0x3daee9), QColor(0x3584e4)}) {
        QPalette palette;
        palette.setColor(QPalette::Highlight, accent);
        EXPECT_GE(PanelStyle::contrast(PanelStyle::bubbleFill(palette), Qt::white), 4.5) << accent.name().toStdString();
    }

    const QPalette light = QApplication::palette();
    ShownPanel shown({item(ChatItem::Kind::User, "Make it blue"), item(ChatItem::Kind::Event, "Restarted")});
    auto *bubble = shown.row(0)->findChild<QLabel *>();
    auto *event = shown.row(1)->findChild<QLabel *>();
    ASSERT_TRUE(bubble && event);
    // Selected text in the bubble stands out from the bubble.
    const QPalette &inBubble = bubble->palette();
    EXPECT_GE(PanelStyle::contrast(inBubble.color(QPalette::Highlight), inBubble.color(QPalette::HighlightedText)),
              4.5);
    EXPECT_LT(event->palette().color(QPalette::WindowText).lightness(), 128);

    // The desktop turns dark while the panel is shown.
    QPalette dark = light;
    dark.setColor(QPalette::Window, QColor(0x35, 0x35, 0x35));
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Base, QColor(0x2a, 0x2a, 0x2a));
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::Highlight, QColor(0x2a82da));
    QApplication::setPalette(dark);
    QApplication::processEvents();
    EXPECT_GT(event->palette().color(QPalette::WindowText).lightness(), 128);
    EXPECT_EQ(bubble->palette().color(QPalette::HighlightedText), PanelStyle::bubbleFill(dark));
    QApplication::setPalette(light);
    QApplication::processEvents();
    EXPECT_LT(event->palette().color(QPalette::WindowText).lightness(), 128);
}

TEST(LazyTranscript, BuildsOnlyTheRowsInSightAndStaysAtTheBottom)
{
    ShownPanel shown(longConversation(5000));
    LazyColumn *transcript = shown.panel.transcript();
    EXPECT_LT(transcript->builtCount(), 60);
    EXPECT_EQ(shown.row(0), nullptr);
    EXPECT_TRUE(transcript->isAtBottom());
    // The last row sits in sight at the bottom of the viewport.
    ASSERT_NE(shown.row(4999), nullptr);
    const QRect last = shown.row(4999)->geometry();
    EXPECT_LE(last.bottom(), transcript->viewport()->height());
    EXPECT_GT(last.bottom(), transcript->viewport()->height() - 60);

    // A row opened before it scrolls away is open again when it is built again.
    ToolRow *opened = shown.toolRow(4997);
    ASSERT_TRUE(opened);
    QTest::mouseClick(opened->head(), Qt::LeftButton);

    transcript->verticalScrollBar()->setValue(0);
    transcript->layoutNow();
    ASSERT_NE(shown.row(0), nullptr);
    EXPECT_EQ(shown.row(4997), nullptr);
    EXPECT_EQ(shown.row(0)->geometry().top(), 14);
    EXPECT_LT(transcript->builtCount(), 60);

    // New rows while reading old ones leave the view where it is.
    shown.harness.agent.appendItem(item(ChatItem::Kind::Event, QStringLiteral("Later")));
    transcript->layoutNow();
    EXPECT_EQ(transcript->verticalScrollBar()->value(), 0);

    // A little way up, new rows are followed; sending brings the user's words into view from anywhere.
    transcript->scrollToBottom();
    transcript->verticalScrollBar()->setValue(transcript->verticalScrollBar()->maximum() - 30);
    shown.harness.agent.appendItem(item(ChatItem::Kind::Event, QStringLiteral("Soon")));
    transcript->layoutNow();
    EXPECT_TRUE(transcript->isAtBottom());
    transcript->verticalScrollBar()->setValue(0);
    shown.panel.composer()->field()->setPlainText(QStringLiteral("And now?"));
    shown.panel.send();
    transcript->layoutNow();
    EXPECT_TRUE(transcript->isAtBottom());
    ASSERT_TRUE(shown.harness.finish());

    // Back at the bottom, new rows keep it there.
    transcript->scrollToBottom();
    shown.harness.agent.appendItem(item(ChatItem::Kind::Event, QStringLiteral("Latest")));
    transcript->layoutNow();
    EXPECT_TRUE(transcript->isAtBottom());
    EXPECT_NE(shown.row(transcript->count() - 1), nullptr);
    ASSERT_TRUE(shown.toolRow(4997));
    EXPECT_TRUE(shown.toolRow(4997)->isExpanded());
}

TEST(LazyTranscript, ANewConversationReplacesEveryRow)
{
    ShownPanel shown(longConversation(50));
    LazyColumn *transcript = shown.panel.transcript();
    shown.harness.agent.setItems({item(ChatItem::Kind::User, QStringLiteral("Fresh start"))});
    transcript->layoutNow();
    EXPECT_EQ(transcript->count(), 1);
    EXPECT_EQ(labelTexts(shown.row(0)), QStringLiteral("Fresh start"));

    shown.harness.agent.setItems({});
    transcript->layoutNow();
    EXPECT_EQ(transcript->count(), 0);
    EXPECT_TRUE(shown.panel.emptyState()->isVisibleTo(&shown.panel));
}
