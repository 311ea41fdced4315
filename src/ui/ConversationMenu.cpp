#include "ui/ConversationMenu.h"

#include "agent/Instructions.h"

#include <QMenu>

namespace zentoro::ConversationMenu {

void fill(QMenu *menu, const QList<ConversationSummary> &conversations, const QUuid &open, const QDateTime &now,
          const std::function<void(const QUuid &id)> &choose)
{
    menu->clear();
    for (const ConversationSummary &conversation : conversations.first(std::min(conversations.size(), entryLimit))) {
        // The date stands in the menu's second column, where it lines up under the others.
        QAction *action = menu->addAction(conversation.title + u'\t' +
                                          Instructions::relativeAge(conversation.updated, now));
        action->setCheckable(true);
        action->setChecked(conversation.id == open);
        const QUuid id = conversation.id;
        QObject::connect(action, &QAction::triggered, menu, [choose, id] { choose(id); });
    }
}

} // namespace zentoro::ConversationMenu
