#include "ui/ConversationMenu.h"

#include "agent/Instructions.h"
#include "ui/Icons.h"
#include "ui/PanelStyle.h"
#include "ui/Shortcuts.h"

#include <QMenu>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>

namespace zentoro::ConversationMenu {

namespace {

// Draws an entry whose text has two lines as a title with its date under it, smaller and dimmer.
class TwoLineEntries : public QProxyStyle {
public:
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override
    {
        QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
        const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
        if (type == CT_MenuItem && item && item->text.contains(u'\n'))
            result.rheight() += QFontMetrics(dateFont(item->font)).height() + 6;
        return result;
    }

    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override
    {
        const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
        if (element != CE_MenuItem || !item || !item->text.contains(u'\n'))
            return QProxyStyle::drawControl(element, option, painter, widget);
        QStyleOptionMenuItem blank = *item;
        blank.text.clear();
        QProxyStyle::drawControl(element, &blank, painter, widget);

        // The entry's text is a menu text, in which "&&" stands for "&".
        const QString title = item->text.section(u'\n', 0, 0).replace(QStringLiteral("&&"), QStringLiteral("&"));
        const QString date = item->text.section(u'\n', 1);
        const bool selected = item->state & State_Selected && item->state & State_Enabled;
        QColor ink = item->palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
        const QFont small = dateFont(item->font);
        const QFontMetrics titleMetrics(item->font);
        const int left = item->rect.left() + std::max(item->maxIconWidth, 20) + 10;
        const int width = item->rect.right() - 10 - left;
        const int top = item->rect.top() +
                        (item->rect.height() - titleMetrics.height() - QFontMetrics(small).height() - 2) / 2;
        painter->save();
        painter->setPen(ink);
        painter->setFont(item->font);
        painter->drawText(QRect(left, top, width, titleMetrics.height()), Qt::AlignLeft | Qt::AlignVCenter,
                          titleMetrics.elidedText(title, Qt::ElideRight, width));
        ink.setAlphaF(0.62f);
        painter->setPen(ink);
        painter->setFont(small);
        painter->drawText(QRect(left, top + titleMetrics.height() + 2, width, QFontMetrics(small).height()),
                          Qt::AlignLeft | Qt::AlignVCenter, date);
        painter->restore();
    }

private:
    static QFont dateFont(const QFont &font) { return PanelStyle::font(font, PanelStyle::Type::Caption); }
};

} // namespace

void fill(QMenu *menu, const QList<ConversationSummary> &conversations, const QUuid &open, const QDateTime &now,
          const std::function<void(const QUuid &id)> &choose)
{
    menu->clear();
    if (!dynamic_cast<TwoLineEntries *>(menu->style())) {
        auto *style = new TwoLineEntries;
        style->setParent(menu);
        menu->setStyle(style);
    }
    const QIcon check = Icons::icon(QStringLiteral("checkmark"), menu->palette().color(QPalette::Text));
    for (const ConversationSummary &conversation : conversations.first(std::min(conversations.size(), entryLimit))) {
        // Only the open conversation carries a mark: the others have no empty box to tick.
        QAction *action = menu->addAction(Shortcuts::menuText(conversation.title) + u'\n' +
                                          Instructions::relativeAge(conversation.updated, now));
        if (conversation.id == open)
            action->setIcon(check);
        const QUuid id = conversation.id;
        QObject::connect(action, &QAction::triggered, menu, [choose, id] { choose(id); });
    }
}

} // namespace zentoro::ConversationMenu
