#pragma once

#include <QObject>

class QAction;
class QMenu;

namespace zentoro {

class Agent;
class MainWindow;
class Runtime;

// The menu bar: quitting, the agent panel's toggle in View, and the Develop menu of builds,
// restarts, versions, the copy's files and conversations. Shortcuts are a letter with Alt+Ctrl.
class ZentoroCommands : public QObject {
    Q_OBJECT
public:
    ZentoroCommands(MainWindow &window, Runtime &runtime, Agent &agent);

    QAction *toggleAgent() const { return toggleAgent_; }
    QAction *buildAndRun() const { return buildAndRun_; }
    QAction *restart() const { return restart_; }
    QAction *restartInSafeMode() const { return restartSafe_; }
    QMenu *goBackMenu() const { return goBack_; }
    QAction *resetToOriginal() const { return reset_; }
    QAction *newConversation() const { return newConversation_; }
    QMenu *conversationsMenu() const { return conversations_; }

private:
    void sync();

    MainWindow &window_;
    Runtime &runtime_;
    Agent &agent_;
    QAction *toggleAgent_;
    QAction *buildAndRun_;
    QAction *restart_;
    QAction *restartSafe_;
    QMenu *goBack_;
    QAction *reset_;
    QAction *newConversation_;
    QMenu *conversations_;
};

} // namespace zentoro
