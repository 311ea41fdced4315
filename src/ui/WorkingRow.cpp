#include "ui/WorkingRow.h"

#include "agent/Agent.h"
#include "ui/PanelStyle.h"
#include "ui/Spinner.h"

#include <QBoxLayout>
#include <QTimerEvent>

namespace zentoro {

WorkingRow::WorkingRow(Agent &agent, QWidget *parent)
    : QWidget(parent), agent_(agent), activity_(new QLabel), elapsed_(new QLabel)
{
    const QFont callout = PanelStyle::font(font(), PanelStyle::Type::Callout);
    activity_->setFont(callout);
    elapsed_->setFont(callout);
    PanelStyle::setTextRole(activity_, PanelStyle::Role::Secondary);
    PanelStyle::setTextRole(elapsed_, PanelStyle::Role::Tertiary);
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
