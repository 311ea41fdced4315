#include "ui/AppIcon.h"

#include "ui/Brand.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace zentoro::AppIcon {

QPixmap pixmap(int size, qreal ratio)
{
    QPixmap result(QSize(size, size) * ratio);
    result.fill(Qt::transparent);
    result.setDevicePixelRatio(ratio);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::Antialiasing);

    const QRectF tile(size * 0.06, size * 0.06, size * 0.88, size * 0.88);
    QLinearGradient fill(tile.topLeft(), tile.bottomRight());
    fill.setColorAt(0, QColor(0x4f, 0x8c, 0xff));
    fill.setColorAt(1, QColor(0x1d, 0x4e, 0xd8));
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(tile, size * 0.2, size * 0.2);

    const QSizeF glyph(size * 0.56, size * 0.52);
    const QPainterPath path = Brand::stretchGlyphPath(glyph);
    painter.translate(tile.center() - QPointF(glyph.width() / 2, glyph.height() / 2));
    painter.setPen(QPen(Qt::white, size * 0.045, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
    return result;
}

QIcon icon()
{
    QIcon icon;
    for (const int size : {16, 32, 48, 64, 128, 256})
        icon.addPixmap(pixmap(size));
    return icon;
}

} // namespace zentoro::AppIcon
