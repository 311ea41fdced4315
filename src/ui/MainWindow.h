#pragma once

#include <QMainWindow>

class QSplitter;
class QStackedWidget;
class QToolButton;

namespace zentoro {

class Agent;
class AgentPanel;
class BannerView;
class PluginContainerView;
class Runtime;
class SetupView;
class Spinner;
class ZentoroCommands;

// The main window: the hosted app's view (or the setup screen while nothing is loaded) under
// the banner, the agent panel beside it, the toolbar and the menus.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    static constexpr QSize defaultSize{1200, 760};
    static constexpr QSize minimumSize{760, 480};
    static constexpr int panelMinimumWidth = 300;
    static constexpr int panelIdealWidth = 380;
    static constexpr int panelMaximumWidth = 640;

    MainWindow(Runtime &runtime, Agent &agent, QWidget *parent = nullptr);

    AgentPanel *agentPanel() const { return panel_; }
    BannerView *bannerView() const { return banner_; }
    SetupView *setupView() const { return setup_; }
    PluginContainerView *host() const { return host_; }
    bool showsSetup() const;
    ZentoroCommands *commands() const { return commands_; }

    QToolButton *versionButton() const { return version_; }
    Spinner *buildingIndicator() const { return building_; }
    QToolButton *restartButton() const { return restart_; }
    QToolButton *agentButton() const { return agentToggle_; }

    // The "showAgent" setting, shared by all copies; the panel follows it.
    static bool agentShownSetting();
    bool showsAgent() const;
    void setShowAgent(bool shown);

    // Brings the window forward when another start of this copy asks for it.
    void bringToFront();
    // Keeps the window's size, place and panel width for the next start of this copy; at every
    // orderly quit.
    void saveLayout() const;

signals:
    void showAgentChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void makeToolbar();
    void updateToolbarIcons();
    void syncToolbar();
    void syncContent();

    Runtime &runtime_;
    Agent &agent_;
    QSplitter *splitter_;
    BannerView *banner_;
    QStackedWidget *content_;
    SetupView *setup_;
    PluginContainerView *host_;
    AgentPanel *panel_;
    ZentoroCommands *commands_ = nullptr;
    QToolButton *version_ = nullptr;
    Spinner *building_ = nullptr;
    QAction *buildingAction_ = nullptr;
    QToolButton *restart_ = nullptr;
    QToolButton *agentToggle_ = nullptr;
    bool toldFirstFrame_ = false;
};

} // namespace zentoro
