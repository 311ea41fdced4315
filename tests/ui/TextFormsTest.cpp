#include "ui/ConversationMenu.h"
#include "ui/InlineMarkdown.h"

#include <QMenu>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

// The markup between the span that keeps white space.
QString inner(const QString &markdown)
{
    const QString html = InlineMarkdown::html(markdown);
    const qsizetype open = html.indexOf(u'>') + 1;
    return html.mid(open, html.size() - open - QStringLiteral("</span>").size());
}

} // namespace

TEST(InlineMarkdown, InlineSyntaxBecomesMarkup)
{
    EXPECT_EQ(inner("a **b** c"), "a <b>b</b> c");
    EXPECT_EQ(inner("a __b__ c"), "a <b>b</b> c");
    EXPECT_EQ(inner("*i* and _j_"), "<i>i</i> and <i>j</i>");
    EXPECT_EQ(inner("***both***"), "<b><i>both</i></b>");
    EXPECT_EQ(inner("~~gone~~"), "<s>gone</s>");
    EXPECT_EQ(inner("use `a <b> **c**` here"), "use <code>a &lt;b&gt; **c**</code> here");
    EXPECT_EQ(inner("``a ` b``"), "<code>a ` b</code>");
    EXPECT_EQ(inner("[site](https://example.org/a?b=1&c=2)"), "<a href=\"https://example.org/a?b=1&amp;c=2\">site</a>");
    EXPECT_EQ(inner("[**bold** link](https://x.org)"), "<a href=\"https://x.org\"><b>bold</b> link</a>");
    EXPECT_EQ(inner("<https://x.org>"), "<a href=\"https://x.org\">https://x.org</a>");
}

TEST(InlineMarkdown, EverythingElseStaysAsTyped)
{
    EXPECT_EQ(inner("# Heading\n- item\n  1. two"), "# Heading\n- item\n  1. two");
    EXPECT_EQ(inner("a < b && c > d"), "a &lt; b &amp;&amp; c &gt; d");
    EXPECT_EQ(inner("snake_case_name and 2 * 3 * 4"), "snake_case_name and 2 * 3 * 4");
    EXPECT_EQ(inner("unclosed **bold and `tick"), "unclosed **bold and `tick");
    EXPECT_EQ(inner("\\*not italic\\*"), "*not italic*");
    EXPECT_EQ(inner("** spaced **"), "** spaced **");
    EXPECT_EQ(inner("[label](not a url)"), "[label](not a url)");
    EXPECT_EQ(inner("<notalink>"), "&lt;notalink&gt;");
    EXPECT_EQ(inner("`*a*` *b*"), "<code>*a*</code> <i>b</i>");
    EXPECT_TRUE(InlineMarkdown::html("x").startsWith("<span style=\"white-space: pre-wrap\">"));
}

TEST(ConversationMenu, ListsTheFirstFortyAndMarksTheOpenOne)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    QList<ConversationSummary> conversations;
    for (int i = 0; i < 45; ++i)
        conversations.append({QUuid::createUuid(), QStringLiteral("Chat %1").arg(i), now.addSecs(-3600 * i), false});
    conversations[1].title = QStringLiteral("Tom & Jerry scoreboard");

    QMenu menu;
    QList<QUuid> chosen;
    const auto choose = [&](const QUuid &id) { chosen.append(id); };
    ConversationMenu::fill(&menu, conversations, conversations[2].id, now, choose);
    const QList<QAction *> actions = menu.actions();
    ASSERT_EQ(actions.size(), 40);
    // The date is a second line, not a shortcut; "&" stands for itself.
    EXPECT_EQ(actions[0]->text(), QStringLiteral("Chat 0\nnow"));
    EXPECT_EQ(actions[1]->text(), QStringLiteral("Tom && Jerry scoreboard\n1 hour ago"));
    EXPECT_EQ(actions[3]->text(), QStringLiteral("Chat 3\n3 hours ago"));
    for (qsizetype i = 0; i < actions.size(); ++i) {
        EXPECT_FALSE(actions[i]->isCheckable()) << i;
        EXPECT_EQ(!actions[i]->icon().isNull(), i == 2) << i;
    }
    // Each entry is drawn two lines high.
    menu.ensurePolished();
    QMenu plain;
    plain.addAction(QStringLiteral("Chat 0"));
    EXPECT_GT(menu.actionGeometry(actions[0]).height(), plain.actionGeometry(plain.actions()[0]).height() * 4 / 3);
    actions[5]->trigger();
    EXPECT_EQ(chosen, QList<QUuid>{conversations[5].id});

    // The open conversation beyond the fortieth is not reachable, so nothing is checked.
    ConversationMenu::fill(&menu, conversations, conversations[42].id, now, choose);
    ASSERT_EQ(menu.actions().size(), 40);
    for (QAction *action : menu.actions())
        EXPECT_TRUE(action->icon().isNull());
}
