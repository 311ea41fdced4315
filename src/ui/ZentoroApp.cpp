#include "ui/ZentoroApp.h"

#include "agent/AgentWiring.h"
#include "chatgpt/ChatGPT.h"
#include "runtime/AppName.h"
#include "runtime/KitPreparation.h"
#include "runtime/Relaunch.h"
#include "runtime/Workspace.h"
#include "ui/AppIcon.h"
#include "ui/HandOver.h"
#include "ui/QuitSignals.h"

#include <QApplication>

#include <cstdio>

#include <unistd.h>

namespace zentoro {

ZentoroApp::Session::Session(const Workspace &workspace) : runtime(workspace), agent(AgentOperations(), workspace)
{
    // The agent's operations are in place before it opens its conversation, and it hooks
    // itself to the runtime's events before the launch, so that the launch's reports reach
    // the conversation.
    agent.setOperations(programOperations(agent, runtime));
    agent.setPlan(&ChatGPT::shared());
    agent.restore();
    runtime.onEvent = [this](const QString &shown, const QString &told) { agent.note(shown, told); };
    runtime.launch();
    agent.resumeAfterLaunch(runtime.loadedVersion());
    window = std::make_unique<MainWindow>(runtime, agent);
}

int ZentoroApp::run(int argc, char **argv)
{
    // The copy's name and the path a restart comes back by are the file the user started,
    // before Qt resolves links.
    if (argc > 1 && qstrcmp(argv[1], "--prepare-kit") == 0)
        return Kit::prepare(argc, argv);
    if (argc > 1 && qstrcmp(argv[1], "--prepared-kit-folder") == 0)
        return Kit::printPreparedFolder(argc, argv);
    const QString argv0 = QString::fromLocal8Bit(argc > 0 ? argv[0] : "");
    Relaunch::rememberExecutable(argv0);

    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Zentoro"));
    QApplication::setApplicationName(QStringLiteral("Zentoro"));
    QApplication::setApplicationVersion(QStringLiteral(ZENTORO_VERSION));
    QApplication::setWindowIcon(AppIcon::icon());

    const Workspace workspace = Workspace::forExecutable(argv0);
    if (!workspace.lock()) {
        HandOver::deferToRunningCopy(workspace);
        return 0;
    }
    // Listening first: a second start during a slow one waits for the answer instead of
    // finding nobody and saying the copy is already open.
    HandOver::Listener listener(workspace);
    AppName::apply(workspace.name);
    QuitSignals::install();

    ZentoroApp::Session session(workspace);
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
