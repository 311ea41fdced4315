#pragma once

#include <QObject>

class QAction;
class QMenu;

namespace zentoro {

class AboutDialog;
class Agent;
class MainWindow;
class Runtime;
class SettingsView;

// The menu bar: settings and quitting in File, the agent panel's toggle in View, the Develop
// menu of builds, restarts, versions, the copy's files and conversations, and Help. Develop's
// and View's shortcuts are a letter with Alt+Ctrl.
class ZentoroCommands : public QObject {
    Q_OBJECT
public:
    ZentoroCommands(MainWindow &window, Runtime &runtime, Agent &agent);

    QMenu *fileMenu() const { return file_; }
    QAction *settings() const { return settings_; }
    QAction *quit() const { return quit_; }
    QAction *about() const { return about_; }
    QAction *toggleAgent() const { return toggleAgent_; }
    QAction *buildAndRun() const { return buildAndRun_; }
    QAction *restart() const { return restart_; }
    QAction *restartInSafeMode() const { return restartSafe_; }
    QMenu *goBackMenu() const { return goBack_; }
    QAction *resetToOriginal() const { return reset_; }
    QAction *newConversation() const { return newConversation_; }
    QMenu *conversationsMenu() const { return conversations_; }

    // The settings window, made at its first opening; a later opening raises the same one.
    void showSettings();
    SettingsView *settingsView() const { return settingsView_; }
    void showAbout();
    AboutDialog *aboutDialog() const { return aboutDialog_; }

signals:
    // The settings window changed the "model" setting.
    void modelChanged();

private:
    void sync();

    MainWindow &window_;
    Runtime &runtime_;
    Agent &agent_;
    QMenu *file_;
    QAction *settings_;
    QAction *quit_;
    QAction *about_;
    SettingsView *settingsView_ = nullptr;
    AboutDialog *aboutDialog_ = nullptr;
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
