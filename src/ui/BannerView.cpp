#include "ui/BannerView.h"

#include "agent/Agent.h"
#include "runtime/Runtime.h"
#include "ui/Icons.h"
#include "ui/PanelStyle.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace zentoro {

namespace {
constexpr int detailLines = 3;
} // namespace

BannerView::BannerView(Runtime &runtime, Agent &agent, QWidget *parent)
    : QWidget(parent), runtime_(runtime), agent_(agent), icon_(new QLabel), title_(new QLabel), detail_(new QLabel),
      fix_(new QPushButton(QStringLiteral("Ask the Agent to Fix It"))),
      dismiss_(new QPushButton(QStringLiteral("Dismiss")))
{
    setAccessibleName(QStringLiteral("Problem"));
    fix_->setAccessibleName(fix_->text());
    dismiss_->setAccessibleName(dismiss_->text());
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(14, 10, 14, 10);
    row->setSpacing(10);

    updateIcon();
    row->addWidget(icon_, 0, Qt::AlignTop);

    auto *texts = new QVBoxLayout;
    texts->setSpacing(2);
    title_->setFont(PanelStyle::font(font(), PanelStyle::Type::Body, PanelStyle::medium(font())));
    title_->setWordWrap(true);
    title_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    texts->addWidget(title_);
    detail_->setFont(PanelStyle::monospaced(font(), PanelStyle::Type::Callout));
    PanelStyle::setTextRole(detail_, PanelStyle::Role::Secondary);
    detail_->setWordWrap(true);
    detail_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    detail_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    detail_->setMaximumHeight(QFontMetrics(detail_->font()).lineSpacing() * detailLines);
    texts->addWidget(detail_);
    row->addLayout(texts, 1);

    row->addWidget(fix_, 0, Qt::AlignTop);
    row->addWidget(dismiss_, 0, Qt::AlignTop);

    // The items share the first baseline: the buttons' label sets it, as the tallest.
    const QFontMetrics button = dismiss_->fontMetrics();
    const QFontMetrics title = title_->fontMetrics();
    const int buttonBaseline = (dismiss_->sizeHint().height() - button.height()) / 2 + button.ascent();
    const int drop = std::max(0, buttonBaseline - title.ascent());
    texts->setContentsMargins(0, drop, 0, 0);
    icon_->setContentsMargins(0, std::max(0, drop + title.ascent() - 14), 0, 0);

    connect(fix_, &QPushButton::clicked, this, [this] {
        if (!runtime_.banner())
            return;
        agent_.send(fixRequest(*runtime_.banner()));
        runtime_.setBanner(std::nullopt);
    });
    connect(dismiss_, &QPushButton::clicked, this, [this] { runtime_.setBanner(std::nullopt); });
    connect(&runtime_, &Runtime::bannerChanged, this, &BannerView::sync);
    connect(&agent_, &Agent::isRunningChanged, this, &BannerView::sync);
    connect(&agent_, &Agent::hasAPIKeyChanged, this, &BannerView::sync);
    connect(&agent_, &Agent::preferredProviderChanged, this, &BannerView::sync);
    sync();
}

void BannerView::updateIcon()
{
    icon_->setPixmap(Icons::pixmap(QStringLiteral("exclamationmark.triangle.fill"), 16, PanelStyle::orange(palette()),
                                   devicePixelRatioF()));
}

void BannerView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        updateIcon();
    QWidget::changeEvent(event);
}

QString BannerView::fixRequest(const Banner &banner)
{
    const QString detail = banner.detail ? QStringLiteral(" (%1)").arg(*banner.detail) : QString();
    return QStringLiteral("Something went wrong: %1%2. Please find out why and fix it.").arg(banner.title, detail);
}

void BannerView::sync()
{
    const std::optional<Banner> &banner = runtime_.banner();
    setVisible(banner.has_value());
    if (!banner)
        return;
    title_->setText(banner->title);
    detail_->setText(banner->detail.value_or(QString()));
    detail_->setVisible(banner->detail.has_value());
    fix_->setVisible(banner->offerFix && agent_.provider().has_value());
    fix_->setEnabled(!agent_.isRunning());
}

void BannerView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QColor wash = PanelStyle::orange(palette());
    wash.setAlphaF(0.12);
    painter.fillRect(rect(), wash);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(rect().bottomLeft(), rect().bottomRight());
}

} // namespace zentoro
