#include "ui/WorkingRow.h"

#include "agent/Agent.h"
#include "ui/PanelStyle.h"

#include <QBoxLayout>
#include <QPainter>
#include <QTimerEvent>

namespace zentoro {

Spinner::Spinner(QWidget *parent) : QWidget(parent)
{
    setFixedSize(14, 14);
    setAccessibleName(QStringLiteral("Working"));
}

void Spinner::showEvent(QShowEvent *)
{
    timer_.start(80, this);
}

void Spinner::hideEvent(QHideEvent *)
{
    timer_.stop();
}

void Spinner::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != timer_.timerId())
        return QWidget::timerEvent(event);
    step_ = (step_ + 1) % 8;
    update();
}

void Spinner::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(width() / 2.0, height() / 2.0);
    QColor color = palette().color(QPalette::WindowText);
    for (int i = 0; i < 8; ++i) {
        color.setAlphaF(float(0.15 + 0.7 * ((i - step_ + 8) % 8) / 7.0));
        painter.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -3), QPointF(0, -6));
        painter.rotate(45);
    }
}

WorkingRow::WorkingRow(Agent &agent, QWidget *parent)
    : QWidget(parent), agent_(agent), activity_(new QLabel), elapsed_(new QLabel)
{
    const QFont callout = PanelStyle::font(font(), PanelStyle::Type::Callout);
    activity_->setFont(callout);
    elapsed_->setFont(callout);
    PanelStyle::setTextColor(activity_, PanelStyle::secondary(palette()));
    PanelStyle::setTextColor(elapsed_, PanelStyle::tertiary(palette()));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(new Spinner, 0, Qt::AlignVCenter);
    layout->addWidget(activity_, 0, Qt::AlignVCenter);
    layout->addWidget(elapsed_, 0, Qt::AlignVCenter);
    layout->addStretch(1);
    connect(&agent_, &Agent::activityChanged, this, &WorkingRow::refresh);
    connect(&agent_, &Agent::startedAtChanged, this, &WorkingRow::refresh);
    refresh();
}

QString WorkingRow::secondsText(const QDateTime &startedAt, const QDateTime &now)
{
    const qint64 milliseconds = startedAt.msecsTo(now);
    return QString::number(milliseconds / 1000) + u's';
}

void WorkingRow::refresh()
{
    activity_->setText(agent_.activity().value_or(QStringLiteral("Working…")));
    if (const auto started = agent_.startedAt()) {
        elapsed_->setText(secondsText(*started, QDateTime::currentDateTimeUtc()));
        elapsed_->show();
    } else {
        elapsed_->hide();
    }
}

void WorkingRow::showEvent(QShowEvent *)
{
    refresh();
    ticks_.start(1000, this);
}

void WorkingRow::hideEvent(QHideEvent *)
{
    ticks_.stop();
}

void WorkingRow::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != ticks_.timerId())
        return QWidget::timerEvent(event);
    refresh();
}

} // namespace zentoro
