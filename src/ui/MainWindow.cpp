#include "ui/MainWindow.h"

#include "runtime/Workspace.h"

namespace zentoro {

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent)
{
    setWindowTitle(Workspace::shared().name);
    resize(1100, 700);
}

} // namespace zentoro
