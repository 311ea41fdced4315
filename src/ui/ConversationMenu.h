#pragma once

#include "agent/ConversationSummary.h"

#include <QDateTime>
#include <QList>
#include <QUuid>

#include <functional>

class QMenu;

namespace zentoro::ConversationMenu {

// The menu reaches the newest conversations only.
inline constexpr qsizetype entryLimit = 40;

// Fills `menu` with one entry per conversation, in list order up to the limit: its title and,
// on a second line, when it changed, told relative to `now`; a check mark on the open one.
void fill(QMenu *menu, const QList<ConversationSummary> &conversations, const QUuid &open, const QDateTime &now,
          const std::function<void(const QUuid &id)> &choose);

} // namespace zentoro::ConversationMenu
