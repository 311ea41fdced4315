#include "ui/SetupView.h"

#include "runtime/Runtime.h"
#include "ui/AppIcon.h"
#include "ui/Brand.h"
#include "ui/PanelStyle.h"
#include "ui/SetupRows.h"
#include "ui/Spinner.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace zentoro {

namespace {

constexpr int iconSize = 112;
constexpr int introWidth = 460;
constexpr int boxWidth = 520;

// The box of the two needs, on the secondary background in a rounded rectangle.
class NeedsBox : public QFrame {
public:
    NeedsBox()
    {
        setFixedWidth(boxWidth);
        setObjectName(QStringLiteral("needs"));
        setStyleSheet(QStringLiteral("#needs { background: palette(alternate-base); border-radius: 12px; }"));
    }
};

} // namespace

SetupView::SetupView(Runtime &runtime, Agent &agent, QWidget *parent)
    : QScrollArea(parent), runtime_(runtime), toolchain_(new ToolchainRow(runtime)), access_(new AgentAccessRow(agent)),
      building_(new QWidget), buildingText_(new QLabel), preparing_(new QProgressBar), preparingTick_(new QTimer(this)),
      status_(new QLabel), button_(new QPushButton)
{
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(QStringLiteral("Setup"));
    auto *page = new QWidget;
    auto *outer = new QVBoxLayout(page);
    outer->setContentsMargins(40, 40, 40, 40);
    outer->setSpacing(22);
    outer->addStretch(1);

    auto *icon = new QLabel;
    icon->setPixmap(AppIcon::pixmap(iconSize, devicePixelRatioF()));
    icon->setFixedSize(iconSize, iconSize);
    icon->setAccessibleName(QStringLiteral("%1 icon").arg(runtime.workspace().name));
    outer->addWidget(icon, 0, Qt::AlignHCenter);

    auto *intro = new QVBoxLayout;
    intro->setSpacing(8);
    intro->addWidget(new Brand::StretchWordmark(runtime.workspace().name, 40), 0, Qt::AlignHCenter);
    auto *pitch = new QLabel(
        QStringLiteral("An app that rewrites itself. Describe a change, and its agent edits the "
                       "app's Swift code, compiles it, and swaps in the new version while you watch."));
    pitch->setWordWrap(true);
    pitch->setAlignment(Qt::AlignHCenter);
    // A wrapped label only finds its height at a known width.
    pitch->setFixedWidth(introWidth);
    PanelStyle::setTextColor(pitch, PanelStyle::secondary(palette()));
    intro->addWidget(pitch, 0, Qt::AlignHCenter);
    outer->addLayout(intro);

    auto *box = new NeedsBox;
    auto *needs = new QVBoxLayout(box);
    needs->setContentsMargins(18, 18, 18, 18);
    needs->setSpacing(14);
    needs->addWidget(toolchain_);
    auto *divider = new QFrame;
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Plain);
    divider->setForegroundRole(QPalette::Mid);
    needs->addWidget(divider);
    needs->addWidget(access_);
    outer->addWidget(box, 0, Qt::AlignHCenter);

    auto *buildingColumn = new QVBoxLayout(building_);
    buildingColumn->setContentsMargins(0, 0, 0, 0);
    auto *buildingRow = new QHBoxLayout;
    buildingRow->addWidget(new Spinner);
    buildingRow->addWidget(buildingText_);
    buildingColumn->addLayout(buildingRow);
    preparing_->setRange(0, 0);
    preparing_->setTextVisible(false);
    preparing_->setFixedHeight(6);
    preparing_->setAccessibleName(QStringLiteral("Preparing SwiftUI"));
    buildingColumn->addWidget(preparing_);
    outer->addWidget(building_, 0, Qt::AlignHCenter);
    preparingTick_->setInterval(1000);
    connect(preparingTick_, &QTimer::timeout, this, &SetupView::showBuilding);
    PanelStyle::setTextColor(status_, PanelStyle::secondary(palette()));
    status_->setAlignment(Qt::AlignHCenter);
    outer->addWidget(status_, 0, Qt::AlignHCenter);
    outer->addWidget(button_, 0, Qt::AlignHCenter);
    outer->addStretch(1);
    setWidget(page);

    connect(button_, &QPushButton::clicked, this, [this] {
        if (runtime_.safeMode()) {
            if (const std::optional<int> version = versionToRun())
                runtime_.load(*version);
            return;
        }
        QPointer<Runtime> target(&runtime_);
        startTask([target](TaskHandle) -> QCoro::Task<> {
            if (target)
                co_await target->rebuild();
        });
    });
    for (auto signal :
         {&Runtime::isBuildingChanged, &Runtime::safeModeChanged, &Runtime::toolchainChanged, &Runtime::stateChanged})
        connect(&runtime_, signal, this, &SetupView::sync);
    connect(&runtime_, &Runtime::isPreparingKitChanged, this, [this] {
        if (runtime_.isPreparingKit()) {
            preparingClock_.start();
            preparingTick_->start();
        } else {
            preparingTick_->stop();
        }
        showBuilding();
    });
    sync();
}

std::optional<int> SetupView::versionToRun() const
{
    const RuntimeState &state = runtime_.state();
    if (state.current)
        return state.current;
    if (!state.versions.isEmpty())
        return state.versions.last().number;
    return std::nullopt;
}

QString SetupView::statusText() const
{
    if (!building_->isHidden())
        return buildingText_->text();
    return status_->isHidden() ? QString() : status_->text();
}

// What the build under way is doing; the first one on a computer says how long it has taken.
void SetupView::showBuilding()
{
    const bool preparing = runtime_.isPreparingKit();
    buildingText_->setText(preparing ? QStringLiteral("Preparing SwiftUI for this computer… %1 s")
                                           .arg(preparingClock_.isValid() ? preparingClock_.elapsed() / 1000 : 0)
                                     : QStringLiteral("Building the app…"));
    preparing_->setVisible(preparing);
}

void SetupView::sync()
{
    const bool building = runtime_.isBuilding();
    building_->setVisible(building);
    showBuilding();
    status_->setVisible(!building && runtime_.safeMode());
    status_->setText(QStringLiteral("Safe mode: the app's code isn't loaded."));
    QString action;
    if (building) {
        // The indicator says it all; a second build would only be refused.
    } else if (runtime_.safeMode()) {
        if (const std::optional<int> version = versionToRun())
            action = QStringLiteral("Run Version %1").arg(*version);
    } else if (runtime_.toolchain().isReady()) {
        action = runtime_.state().versions.isEmpty() ? QStringLiteral("Build the App")
                                                     : QStringLiteral("Build and Run");
    }
    button_->setText(action);
    button_->setAccessibleName(action);
    button_->setVisible(!action.isEmpty());
    button_->setDefault(!runtime_.safeMode());
}

} // namespace zentoro
