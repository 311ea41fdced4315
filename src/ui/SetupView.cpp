#include "ui/SetupView.h"

#include "runtime/Runtime.h"
#include "ui/AppIcon.h"
#include "ui/Brand.h"
#include "ui/PanelStyle.h"
#include "ui/RoundedBox.h"
#include "ui/SetupRows.h"
#include "ui/Spinner.h"

#include <QApplication>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QResizeEvent>
#include <QTimer>
#include <QVBoxLayout>

namespace zentoro {

namespace {

constexpr int iconSize = 112;
constexpr int introWidth = 460;
constexpr int boxWidth = 520;

// Holds one widget centred, at most `maximum` wide and narrower with the window. A layout
// asks an item's height for the whole width it offers, not for the width an alignment leaves
// it: this asks the widget for the width it really gets.
class CappedWidth : public QWidget {
public:
    CappedWidth(QWidget *content, int maximum) : content_(content), maximum_(maximum)
    {
        content_->setParent(this);
        QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
    }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override
    {
        const int inner = std::min(width, maximum_);
        return content_->hasHeightForWidth() ? content_->heightForWidth(inner) : content_->sizeHint().height();
    }
    QSize sizeHint() const override
    {
        const int width = std::min(content_->sizeHint().width(), maximum_);
        return QSize(width, heightForWidth(width));
    }
    // The height at the narrowest would be the tallest of all; a scroll area takes a minimum
    // height as a floor, so the height at the widest stands for it, and the width gives the rest.
    QSize minimumSizeHint() const override
    {
        return QSize(std::min(content_->minimumSizeHint().width(), maximum_), heightForWidth(maximum_));
    }

protected:
    void resizeEvent(QResizeEvent *) override
    {
        const int inner = std::min(width(), maximum_);
        content_->setGeometry((width() - inner) / 2, 0, inner, height());
    }
    bool event(QEvent *event) override
    {
        // The content's own size changed, as when a row shows other text.
        if (event->type() == QEvent::LayoutRequest)
            updateGeometry();
        return QWidget::event(event);
    }

private:
    QWidget *content_;
    int maximum_;
};

// The prominent button: white words on the accent colour, as the one thing to do next. It
// draws itself, as styles lighten a button's colour into a gradient that white can't be read on.
class ProminentButton : public QPushButton {
public:
    ProminentButton() { setCursor(Qt::PointingHandCursor); }

    QSize sizeHint() const override
    {
        const QFontMetrics metrics = fontMetrics();
        return QSize(metrics.horizontalAdvance(text()) + 2 * 16, std::max(30, metrics.height() + 2 * 7));
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor fill = PanelStyle::bubbleFill(palette());
        if (!isEnabled())
            fill = PanelStyle::tertiary(palette());
        else if (isDown())
            fill = fill.darker(115);
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 7, 7);
        if (hasFocus()) {
            painter.setPen(QPen(palette().color(QPalette::WindowText), 1.5));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), 7, 7);
        }
        painter.setPen(Qt::white);
        painter.drawText(rect(), Qt::AlignCenter, text());
    }
};

} // namespace

SetupView::SetupView(Runtime &runtime, Agent &agent, QWidget *parent)
    : QScrollArea(parent), runtime_(runtime), toolchain_(new ToolchainRow(runtime)), access_(new AgentAccessRow(agent)),
      building_(new QWidget), buildingText_(new QLabel), preparing_(new QProgressBar), preparingTick_(new QTimer(this)),
      status_(new QLabel), button_(new ProminentButton)
{
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    // The page narrows with the window rather than scrolling sideways.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
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
    auto *wordmark = new Brand::StretchWordmark(runtime.workspace().name, 40);
    // A name too long even at the wordmark's smallest is cut at both ends rather than
    // widening the page beyond the window and cutting the box under it.
    wordmark->setMinimumWidth(1);
    intro->addWidget(wordmark, 0, Qt::AlignHCenter);
    auto *pitch = new QLabel(
        QStringLiteral("An app that rewrites itself. Describe a change, and its agent edits the "
                       "app's Swift code, compiles it, and swaps in the new version while you watch."));
    pitch->setWordWrap(true);
    pitch->setAlignment(Qt::AlignHCenter);
    PanelStyle::setTextRole(pitch, PanelStyle::Role::Secondary);
    intro->addWidget(new CappedWidth(pitch, introWidth));
    outer->addLayout(intro);

    auto *box = new RoundedBox(12);
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
    outer->addWidget(new CappedWidth(box, boxWidth));

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
    PanelStyle::setTextRole(status_, PanelStyle::Role::Secondary);
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

void SetupView::resizeEvent(QResizeEvent *event)
{
    // The side padding gives way first when the window or a wide panel leaves little room.
    const int side = std::clamp(event->size().width() / 12, 12, 40);
    widget()->layout()->setContentsMargins(side, 40, side, 40);
    QScrollArea::resizeEvent(event);
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
