#include "ui/Icons.h"

#include <QFile>
#include <QHash>
#include <QPainter>
#include <QSvgRenderer>

// The drawings are a resource list of the static core library; naming its initialiser keeps
// it linked into every program that draws icons.
static void registerIconResource()
{
    static const bool registered = [] {
        Q_INIT_RESOURCE(icons);
        return true;
    }();
    Q_UNUSED(registered);
}

namespace zentoro::Icons {

namespace {

QString path(const QString &name)
{
    registerIconResource();
    return QStringLiteral(":/icons/%1.svg").arg(name);
}

} // namespace

bool knows(const QString &symbol)
{
    return !symbol.isEmpty() && !symbol.contains(u'/') && QFile::exists(path(symbol));
}

QString resourceFor(const QString &symbol)
{
    return path(knows(symbol) ? symbol : QStringLiteral("neutral"));
}

QPixmap pixmap(const QString &symbol, int size, const QColor &color, qreal ratio)
{
    // Drawings are black on transparent; a draw in one colour keeps their coverage.
    static QHash<QString, QPixmap> cache;
    const QString key = QStringLiteral("%1|%2|%3|%4").arg(symbol).arg(size).arg(color.name(QColor::HexArgb)).arg(ratio);
    if (auto found = cache.constFind(key); found != cache.constEnd())
        return *found;
    QPixmap result(QSize(size, size) * ratio);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    QSvgRenderer renderer(resourceFor(symbol));
    renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(result.size())));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(result.rect(), color);
    painter.end();
    result.setDevicePixelRatio(ratio);
    cache.insert(key, result);
    return result;
}

QIcon icon(const QString &symbol, const QColor &color, int size, const QColor &disabled)
{
    QIcon icon;
    for (const qreal ratio : {1.0, 2.0}) {
        icon.addPixmap(pixmap(symbol, size, color, ratio), QIcon::Normal);
        if (disabled.isValid())
            icon.addPixmap(pixmap(symbol, size, disabled, ratio), QIcon::Disabled);
    }
    return icon;
}

} // namespace zentoro::Icons
