#include "runtime/AppName.h"

#include "runtime/Workspace.h"

#include <QGuiApplication>

namespace zentoro::AppName {

void apply(const QString &name)
{
    QGuiApplication::setApplicationDisplayName(name);
    QGuiApplication::setDesktopFileName(QString::fromLatin1(bundleIdentifier));
}

} // namespace zentoro::AppName
