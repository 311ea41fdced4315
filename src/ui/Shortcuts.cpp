#include "ui/Shortcuts.h"

namespace zentoro::Shortcuts {

namespace {

QKeySequence altCtrl(Qt::Key key)
{
    return QKeySequence(Qt::AltModifier | Qt::ControlModifier | key);
}

} // namespace

QKeySequence toggleAgent()
{
    return altCtrl(Qt::Key_I);
}

QKeySequence buildAndRun()
{
    return altCtrl(Qt::Key_B);
}

QKeySequence restart()
{
    return altCtrl(Qt::Key_R);
}

QKeySequence newConversation()
{
    return altCtrl(Qt::Key_K);
}

QString withShortcut(const QString &text, const QKeySequence &shortcut)
{
    return QStringLiteral("%1 (%2)").arg(text, shortcut.toString(QKeySequence::NativeText));
}

QString menuText(QString title)
{
    return title.replace(u'&', QStringLiteral("&&"));
}

} // namespace zentoro::Shortcuts
