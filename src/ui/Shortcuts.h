#pragma once

#include <QKeySequence>
#include <QString>

// The window's shortcuts, each a letter with Alt and Ctrl, and the way tooltips spell them:
// as the menus do, in the platform's own words.
namespace zentoro::Shortcuts {

QKeySequence toggleAgent();
QKeySequence buildAndRun();
QKeySequence restart();
QKeySequence newConversation();

// "<text> (<shortcut>)", the shortcut spelled as menus show it.
QString withShortcut(const QString &text, const QKeySequence &shortcut);
// A title made a menu text: "&" stands for itself rather than marking a mnemonic.
QString menuText(QString title);

} // namespace zentoro::Shortcuts
