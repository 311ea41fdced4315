#include "ui/ZentoroApp.h"

#include "agent/Agent.h"
#include "runtime/PluginContainerView.h"
#include "runtime/Runtime.h"
#include "runtime/Workspace.h"
#include "ui/MainWindow.h"
#include "ui/QuitSignals.h"

#include <QApplication>
#include <QVBoxLayout>

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

    Workspace::shared().lock();
    QuitSignals::install();
    Runtime runtime;
    Agent agent;
    agent.runtime = &runtime;
    runtime.onEvent = [&agent](const QString &shown, const QString &told) { agent.note(shown, told); };
    MainWindow window(agent);
    auto *hosted = new QVBoxLayout(window.contentArea());
    hosted->setContentsMargins(0, 0, 0, 0);
    hosted->addWidget(new PluginContainerView(&runtime));
    runtime.launch();
    agent.resumeAfterLaunch();
    window.show();
    return application.exec();
}

} // namespace zentoro
