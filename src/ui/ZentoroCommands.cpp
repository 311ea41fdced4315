#include "ui/ZentoroCommands.h"

#include "agent/Agent.h"
#include "chatgpt/ChatGPT.h"
#include "runtime/Runtime.h"
#include "ui/AboutDialog.h"
#include "ui/ChatGPTSettingsRows.h"
#include "ui/ConversationMenu.h"
#include "ui/MainWindow.h"
#include "ui/NewAppDialog.h"
#include "ui/SettingsView.h"
#include "ui/Shortcuts.h"
#include "ui/VersionMenu.h"

#include <QMenuBar>

namespace zentoro {

ZentoroCommands::ZentoroCommands(MainWindow &window, Runtime &runtime, Agent &agent)
    : QObject(&window), window_(window), runtime_(runtime), agent_(agent)
{
    QMenuBar *bar = window.menuBar();
    const QString name = runtime.workspace().name;

    // Settings and quitting answer in every window of the program, the settings window too.
    file_ = bar->addMenu(QStringLiteral("&File"));
    QAction *newApp = file_->addAction(QStringLiteral("New App…"));
    newApp->setShortcut(QKeySequence::New);
    connect(newApp, &QAction::triggered, this, [this] { NewAppDialog::open(&window_); });
    settings_ = file_->addAction(QStringLiteral("Settings…"));
    settings_->setShortcut(QKeySequence(Qt::ControlModifier | Qt::Key_Comma));
    settings_->setShortcutContext(Qt::ApplicationShortcut);
    connect(settings_, &QAction::triggered, this, &ZentoroCommands::showSettings);
    file_->addSeparator();
    quit_ = file_->addAction(Shortcuts::menuText(QStringLiteral("Quit %1").arg(name)));
    quit_->setShortcut(QKeySequence(Qt::ControlModifier | Qt::Key_Q));
    quit_->setShortcutContext(Qt::ApplicationShortcut);
    // Closing the main window ends the program: the same orderly quit as its close button.
    connect(quit_, &QAction::triggered, &window_, &QWidget::close);

    QMenu *view = bar->addMenu(QStringLiteral("&View"));
    toggleAgent_ = view->addAction(QString());
    toggleAgent_->setShortcut(Shortcuts::toggleAgent());
    connect(toggleAgent_, &QAction::triggered, this, [this] { window_.setShowAgent(!window_.showsAgent()); });

    QMenu *develop = bar->addMenu(QStringLiteral("&Develop"));
    buildAndRun_ = develop->addAction(QStringLiteral("Build and Run"));
    buildAndRun_->setShortcut(Shortcuts::buildAndRun());
    connect(buildAndRun_, &QAction::triggered, this, [this] {
        QPointer<Runtime> target(&runtime_);
        startTask([target](TaskHandle) -> QCoro::Task<> {
            if (target)
                co_await target->rebuild();
        });
    });
    restart_ = develop->addAction(Shortcuts::menuText(QStringLiteral("Restart %1").arg(name)));
    restart_->setShortcut(Shortcuts::restart());
    connect(restart_, &QAction::triggered, this, [this] { runtime_.relaunch(false); });
    restartSafe_ = develop->addAction(QStringLiteral("Restart in Safe Mode"));
    connect(restartSafe_, &QAction::triggered, this, [this] { runtime_.relaunch(true); });
    develop->addSeparator();

    goBack_ = develop->addMenu(QStringLiteral("Go Back to Version"));
    connect(goBack_, &QMenu::aboutToShow, this, [this] {
        goBack_->clear();
        VersionMenu::addVersions(goBack_, runtime_);
    });
    reset_ = develop->addAction(QStringLiteral("Reset to Original App…"));
    connect(reset_, &QAction::triggered, this, [this] { Reset::confirm(&window_, runtime_); });
    develop->addSeparator();

    connect(develop->addAction(QStringLiteral("Show Source Folder")), &QAction::triggered, this,
            [this] { FileManager::reveal(runtime_.workspace().sources()); });
    connect(develop->addAction(QStringLiteral("Show Log")), &QAction::triggered, this,
            [this] { FileManager::reveal(runtime_.workspace().logs() + QStringLiteral("/current.log")); });
    develop->addSeparator();

    newConversation_ = develop->addAction(QStringLiteral("New Conversation"));
    newConversation_->setShortcut(Shortcuts::newConversation());
    connect(newConversation_, &QAction::triggered, this, [this] { agent_.newConversation(); });
    conversations_ = develop->addMenu(QStringLiteral("Conversations"));
    connect(conversations_, &QMenu::aboutToShow, this, [this] {
        ConversationMenu::fill(conversations_, agent_.conversations(), agent_.conversationID(),
                               QDateTime::currentDateTime(), [this](const QUuid &id) { agent_.openConversation(id); });
    });

    // No update feed is configured for this program, so Help offers no update check.
    QMenu *help = bar->addMenu(QStringLiteral("&Help"));
    about_ = help->addAction(QStringLiteral("About Zentoro"));
    connect(about_, &QAction::triggered, this, &ZentoroCommands::showAbout);

    for (auto signal : {&Runtime::isBuildingChanged, &Runtime::toolchainChanged, &Runtime::stateChanged})
        connect(&runtime_, signal, this, &ZentoroCommands::sync);
    connect(&agent_, &Agent::conversationsChanged, this, &ZentoroCommands::sync);
    connect(&window_, &MainWindow::showAgentChanged, this, &ZentoroCommands::sync);
    sync();
}

void ZentoroCommands::showSettings()
{
    if (!settingsView_) {
        settingsView_ = new SettingsView(runtime_, agent_, &window_);
        ChatGPT *accounts = qobject_cast<ChatGPT *>(agent_.plan());
        if (!accounts)
            accounts = &ChatGPT::shared();
        settingsView_->setChatGPTRows(new ChatGPTSettingsRows(*accounts, agent_), nullptr);
        settingsView_->planModels = [accounts = QPointer<ChatGPT>(accounts)] {
            QList<SettingsView::ModelChoice> choices;
            if (accounts)
                for (const ChatGPT::Model &model : accounts->models())
                    choices.append({model.name, model.slug});
            return choices;
        };
        connect(settingsView_, &SettingsView::modelChanged, this, &ZentoroCommands::modelChanged);
    }
    if (settingsView_->isMinimized())
        settingsView_->showNormal();
    settingsView_->show();
    settingsView_->raise();
    settingsView_->activateWindow();
}

void ZentoroCommands::showAbout()
{
    if (!aboutDialog_)
        aboutDialog_ = new AboutDialog(runtime_, &window_);
    aboutDialog_->show();
    aboutDialog_->raise();
    aboutDialog_->activateWindow();
}

void ZentoroCommands::sync()
{
    toggleAgent_->setText(window_.showsAgent() ? QStringLiteral("Hide Agent") : QStringLiteral("Show Agent"));
    buildAndRun_->setEnabled(!runtime_.isBuilding() && runtime_.toolchain().isReady());
    goBack_->menuAction()->setEnabled(!runtime_.state().versions.isEmpty());
    conversations_->menuAction()->setEnabled(!agent_.conversations().isEmpty());
}

} // namespace zentoro
