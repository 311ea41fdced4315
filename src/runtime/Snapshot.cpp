#include "runtime/Snapshot.h"

#include <QBuffer>
#include <QPainter>
#include <QPixmap>
#include <QWidget>

#include <cmath>

namespace zentoro {

namespace {

std::optional<QByteArray> pngOf(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG"))
        return std::nullopt;
    return bytes;
}

} // namespace

std::optional<QByteArray> Snapshot::encode(const QImage &image, double maxWidth, std::optional<QColor> background)
{
    if (image.isNull())
        return std::nullopt;
    if (image.width() <= maxWidth && !background)
        return pngOf(image);
    const double scale = std::min(1.0, maxWidth / image.width());
    const int width = int(std::round(image.width() * scale));
    const int height = int(std::round(image.height() * scale));
    if (width <= 0 || height <= 0)
        return std::nullopt;
    QImage flattened(width, height, QImage::Format_ARGB32_Premultiplied);
    if (flattened.isNull())
        return std::nullopt;
    flattened.fill(background.value_or(Qt::transparent));
    QPainter painter(&flattened);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(0, 0, width, height), image);
    painter.end();
    return pngOf(flattened);
}

std::optional<QByteArray> Snapshot::png(QWidget *view, double maxWidth, std::optional<QColor> background)
{
    if (!view || view->width() <= 0 || view->height() <= 0)
        return std::nullopt;
    // Native children, such as text fields, are drawn into the grab with the rest.
    QImage image = view->grab().toImage();
    image.setDevicePixelRatio(1);
    return encode(image, maxWidth, background);
}

} // namespace zentoro
