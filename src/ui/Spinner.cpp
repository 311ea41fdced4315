#include "ui/Spinner.h"

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

} // namespace zentoro
