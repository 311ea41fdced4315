#pragma once

#include <QElapsedTimer>
#include <QScrollArea>

class QLabel;
class QProgressBar;
class QTimer;
class QPushButton;

namespace zentoro {

class Agent;
class AgentAccessRow;
class Runtime;
class ToolchainRow;

// What fills the window while no version is loaded: on a first start, before the first
// build, or in safe mode. It says what the program is, shows what it needs and offers the build.
class SetupView : public QScrollArea {
    Q_OBJECT
public:
    SetupView(Runtime &runtime, Agent &agent, QWidget *parent = nullptr);

    ToolchainRow *toolchainRow() const { return toolchain_; }
    AgentAccessRow *accessRow() const { return access_; }
    // The status under the box: what is going on, or what can be done.
    QString statusText() const;
    QPushButton *statusButton() const { return button_; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void sync();
    void showBuilding();
    // The version a safe-mode start can run: the current one, else the newest.
    std::optional<int> versionToRun() const;

    Runtime &runtime_;
    ToolchainRow *toolchain_;
    AgentAccessRow *access_;
    QWidget *building_;
    QLabel *buildingText_;
    // Under the words while the UI kit is prepared, the one long wait of a first build.
    QProgressBar *preparing_;
    QElapsedTimer preparingClock_;
    QTimer *preparingTick_;
    QLabel *status_;
    QPushButton *button_;
};

} // namespace zentoro
