#pragma once

#include "runtime/KitEntryPoints.h"

#include <QBrush>
#include <QFont>
#include <QPainterPath>
#include <QPen>
#include <QSizeF>
#include <QTextLayout>

class QPainter;

namespace zentoro::KitPainting {

QPainterPath path(const ZentoroPath &path);
QBrush brush(const ZentoroPaint &paint);
QPen pen(const ZentoroPaint &paint, const ZentoroStroke &stroke);
QFont font(const ZentoroFont &font);

// The runs of a text as one paragraph laid out in lines `width` wide (unbounded when negative).
struct Paragraph {
    QTextLayout layout;
    int lineCount = 0;
};
void layOut(Paragraph &paragraph, const ZentoroText &text, double width);
QSizeF measure(const ZentoroText &text, double maxWidth);
void drawText(QPainter &painter, const ZentoroText &text, const QRectF &rect);
// Drops the kept sizes and layouts of texts: fonts changed under them.
void forgetTextLayouts();

// A blurred copy of a filled path, drawn as rings of fading colour.
void drawShadow(QPainter &painter, const QPainterPath &path, const QColor &color, double radius, QPointF offset);

// Draws a named symbol fitted into `rect`; names it doesn't know draw a neutral glyph.
void drawSymbol(QPainter &painter, const QString &name, const QRectF &rect, const QBrush &brush);
bool knowsSymbol(const QString &name);

} // namespace zentoro::KitPainting
