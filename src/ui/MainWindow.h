#pragma once

#include <QMainWindow>

namespace zentoro {

// The main window: the hosted app's view, and beside it the agent panel.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(QWidget *parent = nullptr);
};

} // namespace zentoro
