#include "ui/MainWindow.h"

#include "core/Defaults.h"
#include "core/Log.h"
#include "runtime/PluginContainerView.h"
#include "runtime/Runtime.h"
#include "ui/AgentPanel.h"
#include "ui/BannerView.h"
#include "ui/Brand.h"
#include "ui/Icons.h"
#include "ui/SetupView.h"
#include "ui/Shortcuts.h"
#include "ui/Spinner.h"
#include "ui/VersionMenu.h"
#include "ui/WindowLayout.h"
#include "ui/ZentoroCommands.h"

#include <QApplication>
#include <QMenu>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace zentoro {

namespace {
const QString showAgentKey = QStringLiteral("showAgent");
} // namespace

MainWindow::MainWindow(Runtime &runtime, Agent &agent, QWidget *parent)
    : QMainWindow(parent), runtime_(runtime), agent_(agent), splitter_(new QSplitter(Qt::Horizontal)),
      banner_(new BannerView(runtime, agent)), content_(new QStackedWidget), setup_(new SetupView(runtime, agent)),
      host_(new PluginContainerView(&runtime)), panel_(new AgentPanel(agent))
{
    setWindowTitle(runtime.workspace().name);
    setMinimumSize(minimumSize);
    resize(defaultSize);

    auto *left = new QWidget;
    auto *column = new QVBoxLayout(left);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(banner_);
    content_->addWidget(setup_);
    content_->addWidget(host_);
    column->addWidget(content_, 1);
    left->setMinimumWidth(minimumSize.width() - panelMaximumWidth);

    panel_->setMinimumWidth(panelMinimumWidth);
    panel_->setMaximumWidth(panelMaximumWidth);
    splitter_->addWidget(left);
    splitter_->addWidget(panel_);
    splitter_->setChildrenCollapsible(false);
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 0);
    splitter_->setSizes({defaultSize.width() - panelIdealWidth, panelIdealWidth});
    // The toolbar first, so that Tab goes from it to the content and then to the panel.
    makeToolbar();
    setCentralWidget(splitter_);

    panel_->setVisible(agentShownSetting());
    WindowLayout::restore(*this, *splitter_, runtime.workspace().defaultsSuite());
    connect(qApp, &QCoreApplication::aboutToQuit, this, &MainWindow::saveLayout);
    commands_ = new ZentoroCommands(*this, runtime, agent);
    connect(panel_, &AgentPanel::settingsRequested, commands_, &ZentoroCommands::showSettings);
    connect(commands_, &ZentoroCommands::modelChanged, panel_, &AgentPanel::syncModel);

    for (auto signal : {&Runtime::isBuildingChanged, &Runtime::loadedVersionChanged, &Runtime::safeModeChanged})
        connect(&runtime_, signal, this, &MainWindow::syncToolbar);
    connect(&runtime_, &Runtime::loadedVersionChanged, this, &MainWindow::syncContent);
    connect(this, &MainWindow::showAgentChanged, this, &MainWindow::syncToolbar);
    syncToolbar();
    syncContent();
}

void MainWindow::makeToolbar()
{
    auto *bar = addToolBar(QStringLiteral("Toolbar"));
    bar->setObjectName(QStringLiteral("toolbar"));
    bar->setMovable(false);
    bar->setFloatable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->toggleViewAction()->setVisible(false);
    version_ = new QToolButton;
    version_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    version_->setPopupMode(QToolButton::InstantPopup);
    version_->setToolTip(QStringLiteral("Versions: go back to an earlier build"));
    auto *menu = new QMenu(version_);
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { VersionMenu::fill(menu, runtime_, this); });
    version_->setMenu(menu);
    bar->addWidget(version_);

    auto *gap = new QWidget;
    gap->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addWidget(gap);

    building_ = new Spinner;
    building_->setToolTip(QStringLiteral("Building…"));
    building_->setAccessibleName(QStringLiteral("Building…"));
    buildingAction_ = bar->addWidget(building_);

    const QString name = runtime_.workspace().name;
    restart_ = new QToolButton;
    restart_->setText(QStringLiteral("Restart"));
    restart_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    restart_->setToolTip(Shortcuts::withShortcut(QStringLiteral("Restart %1").arg(name), Shortcuts::restart()));
    restart_->setAccessibleName(QStringLiteral("Restart %1").arg(name));
    connect(restart_, &QToolButton::clicked, this, [this] { runtime_.relaunch(false); });
    bar->addWidget(restart_);

    agentToggle_ = new QToolButton;
    agentToggle_->setText(QStringLiteral("Agent"));
    agentToggle_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    agentToggle_->setAccessibleName(QStringLiteral("Agent"));
    connect(agentToggle_, &QToolButton::clicked, this, [this] { setShowAgent(!showsAgent()); });
    bar->addWidget(agentToggle_);
    updateToolbarIcons();
}

void MainWindow::updateToolbarIcons()
{
    const QColor ink = palette().color(QPalette::ButtonText);
    version_->setIcon(Icons::icon(QStringLiteral("clock.arrow.circlepath"), ink));
    restart_->setIcon(Icons::icon(QStringLiteral("arrow.clockwise"), ink));
    agentToggle_->setIcon(Brand::stretchGlyph(ink));
}

void MainWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange && version_)
        updateToolbarIcons();
    QMainWindow::changeEvent(event);
}

void MainWindow::syncToolbar()
{
    version_->setText(VersionMenu::label(runtime_));
    version_->setAccessibleName(version_->text());
    buildingAction_->setVisible(runtime_.isBuilding());
    agentToggle_->setToolTip(
        Shortcuts::withShortcut(showsAgent() ? QStringLiteral("Hide the agent") : QStringLiteral("Show the agent"),
                                Shortcuts::toggleAgent()));
}

void MainWindow::syncContent()
{
    content_->setCurrentWidget(runtime_.loadedVersion() ? static_cast<QWidget *>(host_) : setup_);
}

void MainWindow::paintEvent(QPaintEvent *event)
{
    QMainWindow::paintEvent(event);
    // Once per process, the console log tells when a version first reached the screen:
    // after this paint, whose frame holds the hosted view too.
    if (toldFirstFrame_ || showsSetup() || !runtime_.loadedVersion())
        return;
    toldFirstFrame_ = true;
    const int version = *runtime_.loadedVersion();
    QMetaObject::invokeMethod(
        this, [version] { qCInfo(logUI, "Showing version %d.", version); }, Qt::QueuedConnection);
}

bool MainWindow::showsSetup() const
{
    return content_->currentWidget() == setup_;
}

bool MainWindow::agentShownSetting()
{
    const QVariant stored = Defaults::value(showAgentKey);
    return !stored.isValid() || stored.toBool();
}

bool MainWindow::showsAgent() const
{
    return !panel_->isHidden();
}

void MainWindow::setShowAgent(bool shown)
{
    if (shown == showsAgent())
        return;
    Defaults::setValue(showAgentKey, shown);
    panel_->setVisible(shown);
    if (shown)
        splitter_->setSizes({width() - panelIdealWidth, panelIdealWidth});
    emit showAgentChanged();
}

void MainWindow::saveLayout() const
{
    WindowLayout::save(*this, *splitter_, runtime_.workspace().defaultsSuite());
}

void MainWindow::bringToFront()
{
    if (isMinimized())
        showNormal();
    show();
    raise();
    activateWindow();
}

} // namespace zentoro
