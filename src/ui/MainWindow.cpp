#include "ui/MainWindow.h"

#include "runtime/Workspace.h"
#include "ui/AgentPanel.h"

#include <QSplitter>

namespace zentoro {

MainWindow::MainWindow(Agent &agent, QWidget *parent)
    : QMainWindow(parent), splitter_(new QSplitter(Qt::Horizontal)), content_(new QWidget),
      panel_(new AgentPanel(agent))
{
    setWindowTitle(Workspace::shared().name);
    setMinimumSize(minimumSize);
    resize(defaultSize);

    content_->setMinimumWidth(minimumSize.width() - panelMaximumWidth);
    panel_->setMinimumWidth(panelMinimumWidth);
    panel_->setMaximumWidth(panelMaximumWidth);
    splitter_->addWidget(content_);
    splitter_->addWidget(panel_);
    splitter_->setChildrenCollapsible(false);
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 0);
    splitter_->setSizes({defaultSize.width() - panelIdealWidth, panelIdealWidth});
    setCentralWidget(splitter_);
}

} // namespace zentoro
