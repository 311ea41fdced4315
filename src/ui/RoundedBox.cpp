#include "ui/RoundedBox.h"

#include <QPainter>

namespace zentoro {

RoundedBox::RoundedBox(int radius, QWidget *parent) : QFrame(parent), radius_(radius) {}

void RoundedBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::AlternateBase));
    painter.drawRoundedRect(QRectF(rect()), radius_, radius_);
}

} // namespace zentoro
