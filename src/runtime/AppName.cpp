#include "runtime/AppName.h"

#include "runtime/DesktopEntry.h"

#include <QGuiApplication>

namespace zentoro::AppName {

void apply(const QString &name)
{
    QGuiApplication::setApplicationDisplayName(name);
    QGuiApplication::setDesktopFileName(DesktopEntry::desktopFileNameFor(name));
}

} // namespace zentoro::AppName
