#include "ui/ZentoroApp.h"

#include "runtime/AppName.h"
#include "runtime/Relaunch.h"
#include "runtime/Workspace.h"
#include "ui/AppIcon.h"
#include "ui/HandOver.h"
#include "ui/QuitSignals.h"

#include <QApplication>

#include <cstdio>

#include <unistd.h>

namespace zentoro {

ZentoroApp::Session::Session()
{
    // The agent restores its conversation and hooks itself to the runtime's events before
    // the launch, so that the launch's reports reach the conversation.
    agent.runtime = &runtime;
    runtime.onEvent = [this](const QString &shown, const QString &told) { agent.note(shown, told); };
    runtime.launch();
    agent.resumeAfterLaunch();
    window = std::make_unique<MainWindow>(runtime, agent);
}

int ZentoroApp::run(int argc, char **argv)
{
    // The copy's name and the path a restart comes back by are the file the user started,
    // before Qt resolves links.
    const QString argv0 = QString::fromLocal8Bit(argc > 0 ? argv[0] : "");
    Relaunch::rememberExecutable(argv0);

    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Zentoro"));
    QApplication::setApplicationName(QStringLiteral("Zentoro"));
    QApplication::setApplicationVersion(QStringLiteral(ZENTORO_VERSION));
    QApplication::setWindowIcon(AppIcon::icon());

    Workspace::initShared(argv0);
    const Workspace &workspace = Workspace::shared();
    if (!workspace.lock()) {
        HandOver::deferToRunningCopy(workspace);
        return 0;
    }
    // Listening first: a second start during a slow one waits for the answer instead of
    // finding nobody and saying the copy is already open.
    HandOver::Listener listener(workspace);
    AppName::apply(workspace.name);
    QuitSignals::install();

    ZentoroApp::Session session;
    MainWindow &window = *session.window;
    QObject::connect(&listener, &HandOver::Listener::raiseRequested, &window, &MainWindow::bringToFront);
    window.show();
    const int status = application.exec();
    // `aboutToQuit` has saved all there is to save. Taking the window down now would release
    // the hosted views and run the app's own teardown code, and a crash there would be taken
    // for one of this run at the next start.
    std::fflush(nullptr);
    ::_exit(status);
}

} // namespace zentoro
