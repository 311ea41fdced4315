#pragma once

#include <QMainWindow>

class QSplitter;

namespace zentoro {

class Agent;
class AgentPanel;

// The main window: the hosted app's view, and beside it the agent panel.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    static constexpr QSize defaultSize{1200, 760};
    static constexpr QSize minimumSize{760, 480};
    static constexpr int panelMinimumWidth = 300;
    static constexpr int panelIdealWidth = 380;
    static constexpr int panelMaximumWidth = 640;

    explicit MainWindow(Agent &agent, QWidget *parent = nullptr);

    AgentPanel *agentPanel() const { return panel_; }
    // Where the hosted app's view goes.
    QWidget *contentArea() const { return content_; }

private:
    QSplitter *splitter_;
    QWidget *content_;
    AgentPanel *panel_;
};

} // namespace zentoro
