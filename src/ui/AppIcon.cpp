#include "ui/AppIcon.h"

#include "core/AtomicFile.h"
#include "runtime/Workspace.h"
#include "ui/Brand.h"

#include <QBuffer>
#include <QFileInfo>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QStandardPaths>
#include <QSvgGenerator>

namespace zentoro::AppIcon {

namespace {

void paint(QPainter &painter, int size)
{
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
}

} // namespace

QPixmap pixmap(int size, qreal ratio)
{
    QPixmap result(QSize(size, size) * ratio);
    result.fill(Qt::transparent);
    result.setDevicePixelRatio(ratio);
    QPainter painter(&result);
    paint(painter, size);
    return result;
}

QIcon icon()
{
    QIcon icon;
    for (const int size : {16, 32, 48, 64, 128, 256})
        icon.addPixmap(pixmap(size));
    return icon;
}

QImage image(int size)
{
    QImage result(size, size, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    paint(painter, size);
    return result;
}

QByteArray svg()
{
    constexpr int size = 256;
    QBuffer buffer;
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(QSize(size, size));
    generator.setViewBox(QRect(0, 0, size, size));
    generator.setResolution(96);
    generator.setTitle(QStringLiteral("Zentoro"));
    QPainter painter(&generator);
    paint(painter, size);
    painter.end();
    return buffer.data();
}

QString themeName()
{
    return QString::fromLatin1(bundleIdentifier);
}

QString forDesktopEntry()
{
    const QString installed = QStringLiteral("icons/hicolor/scalable/apps/") + themeName() + QStringLiteral(".svg");
    if (!QStandardPaths::locate(QStandardPaths::GenericDataLocation, installed).isEmpty())
        return themeName();
    const QString written = Workspace::support() + u'/' + themeName() + QStringLiteral(".svg");
    if (!QFileInfo::exists(written))
        AtomicFile::write(written, svg());
    return written;
}

} // namespace zentoro::AppIcon
