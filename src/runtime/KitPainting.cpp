#include "runtime/KitPainting.h"

#include <QApplication>
#include <QCache>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace zentoro::KitPainting {

namespace {

QColor color(const ZentoroColor &c)
{
    return QColor::fromRgbF(float(c.red), float(c.green), float(c.blue), float(c.alpha));
}

QPointF point(const ZentoroPoint &p)
{
    return {p.x, p.y};
}

} // namespace

QPainterPath path(const ZentoroPath &source)
{
    QPainterPath result;
    result.setFillRule(source.evenOdd ? Qt::OddEvenFill : Qt::WindingFill);
    for (int i = 0; i < source.count; ++i) {
        const ZentoroPathElement &e = source.elements[i];
        switch (e.op) {
        case ZENTORO_PATH_MOVE: result.moveTo(point(e.points[0])); break;
        case ZENTORO_PATH_LINE: result.lineTo(point(e.points[0])); break;
        case ZENTORO_PATH_QUAD: result.quadTo(point(e.points[0]), point(e.points[1])); break;
        case ZENTORO_PATH_CUBIC: result.cubicTo(point(e.points[0]), point(e.points[1]), point(e.points[2])); break;
        case ZENTORO_PATH_CLOSE: result.closeSubpath(); break;
        }
    }
    return result;
}

QBrush brush(const ZentoroPaint &paint)
{
    const auto stops = [&](QGradient &gradient, auto location) {
        for (int i = 0; i < paint.stopCount; ++i)
            gradient.setColorAt(std::clamp(location(paint.stops[i].location), 0.0, 1.0), color(paint.stops[i].color));
    };
    switch (paint.kind) {
    case ZENTORO_PAINT_LINEAR: {
        QLinearGradient gradient(point(paint.start), point(paint.end));
        stops(gradient, [](double l) { return l; });
        return gradient;
    }
    case ZENTORO_PAINT_RADIAL: {
        const double outer = std::max(paint.endRadius, 0.001);
        QRadialGradient gradient(point(paint.start), outer);
        const double inner = paint.startRadius / outer;
        stops(gradient, [inner](double l) { return inner + l * (1 - inner); });
        return gradient;
    }
    case ZENTORO_PAINT_ANGULAR: {
        // Qt turns counter-clockwise on screen; the kit's gradients turn clockwise.
        QConicalGradient gradient(point(paint.start), -paint.angle);
        stops(gradient, [](double l) { return 1 - l; });
        return gradient;
    }
    default: return QBrush(color(paint.color));
    }
}

QPen pen(const ZentoroPaint &paint, const ZentoroStroke &stroke)
{
    QPen result(brush(paint), stroke.lineWidth);
    result.setCapStyle(stroke.cap == ZENTORO_CAP_ROUND    ? Qt::RoundCap
                       : stroke.cap == ZENTORO_CAP_SQUARE ? Qt::SquareCap
                                                          : Qt::FlatCap);
    result.setJoinStyle(stroke.join == ZENTORO_JOIN_ROUND   ? Qt::RoundJoin
                        : stroke.join == ZENTORO_JOIN_BEVEL ? Qt::BevelJoin
                                                            : Qt::MiterJoin);
    result.setMiterLimit(stroke.miterLimit);
    if (stroke.dashCount > 0 && stroke.lineWidth > 0) {
        QList<qreal> pattern;
        for (int i = 0; i < stroke.dashCount; ++i)
            pattern << std::max(stroke.dashes[i] / stroke.lineWidth, 0.01);
        if (pattern.size() % 2)
            pattern += pattern;
        result.setDashPattern(pattern);
        result.setDashOffset(stroke.dashPhase / stroke.lineWidth);
    }
    return result;
}

QFont font(const ZentoroFont &source)
{
    QFont result = source.design == ZENTORO_DESIGN_MONOSPACED ? QFontDatabase::systemFont(QFontDatabase::FixedFont)
                                                              : QApplication::font();
    if (source.design == ZENTORO_DESIGN_SERIF)
        result.setFamilies({QStringLiteral("serif")});
    result.setPixelSize(std::max(1, int(std::lround(source.size))));
    result.setWeight(QFont::Weight(std::clamp(int(source.weight), 100, 900)));
    result.setItalic(source.italic != 0);
    return result;
}

void layOut(Paragraph &paragraph, const ZentoroText &text, double width)
{
    QString string;
    QList<QTextLayout::FormatRange> formats;
    for (int i = 0; i < text.runCount; ++i) {
        const ZentoroTextRun &run = text.runs[i];
        QString piece = QString::fromUtf8(run.utf8);
        piece.replace(u'\n', QChar::LineSeparator);
        QTextCharFormat format;
        format.setFont(font(run.font));
        format.setForeground(brush(run.paint));
        format.setFontUnderline(run.underline != 0);
        format.setFontStrikeOut(run.strikethrough != 0);
        formats.append({int(string.size()), int(piece.size()), format});
        string += piece;
    }
    QTextLayout &layout = paragraph.layout;
    layout.setText(string);
    layout.setFont(text.runCount > 0 ? font(text.runs[0].font) : QApplication::font());
    layout.setFormats(formats);
    QTextOption option;
    option.setWrapMode(width < 0 ? QTextOption::NoWrap : QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setAlignment(text.alignment == ZENTORO_ALIGN_CENTER     ? Qt::AlignHCenter
                        : text.alignment == ZENTORO_ALIGN_TRAILING ? Qt::AlignRight
                                                                   : Qt::AlignLeft);
    layout.setTextOption(option);
    layout.beginLayout();
    double y = 0;
    paragraph.lineCount = 0;
    while (true) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        if (text.lineLimit > 0 && paragraph.lineCount >= text.lineLimit) {
            line.setNumColumns(0);
            break;
        }
        line.setLineWidth(width < 0 ? 1e7 : width);
        line.setPosition(QPointF(0, y));
        y += line.height();
        ++paragraph.lineCount;
    }
    layout.endLayout();
}

namespace {

// Texts repeat from one frame to the next, so their sizes and layouts are kept, keyed by
// everything that shapes them: a frame lays out only the texts that changed. Colour and
// alignment matter only to drawing. Texts in gradient paint are laid out afresh each time.
QByteArray textKey(const ZentoroText &text, double width, bool forDrawing)
{
    QByteArray key;
    const auto add = [&key](const auto &value) { key.append(reinterpret_cast<const char *>(&value), sizeof value); };
    add(width);
    add(text.lineLimit);
    if (forDrawing)
        add(text.alignment);
    for (int i = 0; i < text.runCount; ++i) {
        const ZentoroTextRun &run = text.runs[i];
        if (forDrawing && run.paint.kind != ZENTORO_PAINT_SOLID)
            return {};
        for (const double value : {run.font.size, double(run.font.weight), double(run.font.design),
                                   double(run.font.italic), double(run.underline), double(run.strikethrough)})
            add(value);
        if (forDrawing)
            for (const double value :
                 {run.paint.color.red, run.paint.color.green, run.paint.color.blue, run.paint.color.alpha})
                add(value);
        key.append(run.utf8);
        key.append('\0');
    }
    return key;
}

// Bounded by entry count: a window full of small texts fits many times over.
QCache<QByteArray, QSizeF> &sizeCache()
{
    static QCache<QByteArray, QSizeF> cache(20000);
    return cache;
}
QCache<QByteArray, Paragraph> &paragraphCache()
{
    static QCache<QByteArray, Paragraph> cache(3000);
    return cache;
}

QSizeF lineBox(const Paragraph &paragraph)
{
    double width = 0, height = 0;
    for (int i = 0; i < paragraph.lineCount; ++i) {
        const QTextLine line = paragraph.layout.lineAt(i);
        width = std::max(width, line.naturalTextWidth());
        height += line.height();
    }
    return {width, height};
}

} // namespace

QSizeF measure(const ZentoroText &text, double maxWidth)
{
    const QByteArray key = textKey(text, maxWidth, false);
    if (const QSizeF *known = sizeCache().object(key))
        return *known;
    Paragraph paragraph;
    layOut(paragraph, text, maxWidth);
    const QSizeF size = lineBox(paragraph);
    sizeCache().insert(key, new QSizeF(size));
    return size;
}

void forgetTextLayouts()
{
    sizeCache().clear();
    paragraphCache().clear();
}

void drawText(QPainter &painter, const ZentoroText &text, const QRectF &rect)
{
    const double width = rect.width() + 0.5;
    const QByteArray key = textKey(text, width, true);
    Paragraph fresh;
    const Paragraph *kept = key.isEmpty() ? nullptr : paragraphCache().object(key);
    if (!kept) {
        auto *made = key.isEmpty() ? &fresh : new Paragraph;
        layOut(*made, text, width);
        if (made != &fresh)
            paragraphCache().insert(key, made);
        kept = made;
    }
    const Paragraph &paragraph = *kept;
    // Lines below the frame are not shown; the last line shown ends in "…" when text is left over.
    int shown = 0;
    while (shown < paragraph.lineCount &&
           (shown == 0 || paragraph.layout.lineAt(shown).rect().bottom() <= rect.height() + 1))
        ++shown;
    const QString whole = paragraph.layout.text();
    for (int i = 0; i < shown; ++i) {
        const QTextLine line = paragraph.layout.lineAt(i);
        const int end = line.textStart() + line.textLength();
        if (i < shown - 1 || end >= whole.size() || text.runCount == 0) {
            line.draw(&painter, rect.topLeft());
            continue;
        }
        const QFont lineFont = font(text.runs[0].font);
        const QString rest = whole.mid(line.textStart()).replace(QChar::LineSeparator, u' ');
        const QString elided = QFontMetricsF(lineFont).elidedText(rest, Qt::ElideRight, rect.width() + 0.5);
        painter.save();
        painter.setFont(lineFont);
        painter.setPen(QPen(brush(text.runs[0].paint), 1));
        const int flags = text.alignment == ZENTORO_ALIGN_CENTER     ? Qt::AlignHCenter
                          : text.alignment == ZENTORO_ALIGN_TRAILING ? Qt::AlignRight
                                                                     : Qt::AlignLeft;
        painter.drawText(QRectF(rect.left(), rect.top() + line.y(), rect.width() + 0.5, line.height()),
                         flags | Qt::AlignTop, elided);
        painter.restore();
    }
}

void drawShadow(QPainter &painter, const QPainterPath &path, const QColor &color, double radius, QPointF offset)
{
    painter.save();
    painter.translate(offset);
    const int steps = std::clamp(int(std::ceil(radius)), 1, 8);
    QColor ring = color;
    ring.setAlphaF(color.alphaF() / float(steps + 1));
    for (int step = steps; step >= 1; --step) {
        QPen pen(ring, radius * 2 * step / steps, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        painter.strokePath(path, pen);
    }
    painter.fillPath(path, ring);
    painter.restore();
}

} // namespace zentoro::KitPainting
