#include "ui/ZentoroApp.h"

#include "agent/Agent.h"
#include "runtime/Workspace.h"
#include "ui/MainWindow.h"

#include <QApplication>

namespace zentoro {

int ZentoroApp::run(int argc, char **argv)
{
    // The copy's name comes from the file the user started, before Qt resolves links.
    Workspace::initShared(QString::fromLocal8Bit(argc > 0 ? argv[0] : ""));

    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Zentoro"));
    QApplication::setApplicationName(QStringLiteral("Zentoro"));
    QApplication::setApplicationVersion(QStringLiteral(ZENTORO_VERSION));
    QApplication::setApplicationDisplayName(Workspace::shared().name);
    QApplication::setDesktopFileName(QStringLiteral("dev.vantu.zentoro"));

    Agent agent;
    MainWindow window(agent);
    window.show();
    return application.exec();
}

} // namespace zentoro
