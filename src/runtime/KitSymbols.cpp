#include "runtime/KitPainting.h"

#include <QHash>
#include <QPainter>

#include <cmath>
#include <functional>

namespace zentoro::KitPainting {

namespace {

// A symbol drawn on a 24-unit grid: outlines are stroked, and the ".fill" forms fill them.
struct Glyph {
    std::function<QPainterPath()> outline;
    bool strokeOnly = false; // lines such as "plus" are never filled
};

QPainterPath polygon(std::initializer_list<QPointF> points, bool closed = true)
{
    QPainterPath p;
    bool first = true;
    for (const QPointF &point : points) {
        if (first)
            p.moveTo(point);
        else
            p.lineTo(point);
        first = false;
    }
    if (closed)
        p.closeSubpath();
    return p;
}

// The outlines in one path, each kept as drawn; QPainterPath's `|` would merge them into one
// region and lose open strokes such as the tick in a circle.
QPainterPath joined(std::initializer_list<QPainterPath> parts)
{
    QPainterPath all = *parts.begin();
    for (auto part = parts.begin() + 1; part != parts.end(); ++part)
        all.addPath(*part);
    return all;
}

QPainterPath circle(double r = 10)
{
    QPainterPath p;
    p.addEllipse(QPointF(12, 12), r, r);
    return p;
}

QPainterPath star()
{
    QPainterPath p;
    for (int i = 0; i < 10; ++i) {
        const double angle = -M_PI / 2 + i * M_PI / 5;
        const double r = i % 2 ? 4.6 : 10.5;
        const QPointF point(12 + r * std::cos(angle), 12.6 + r * std::sin(angle));
        i ? p.lineTo(point) : p.moveTo(point);
    }
    p.closeSubpath();
    return p;
}

QPainterPath heart()
{
    QPainterPath p;
    p.moveTo(12, 20.5);
    p.cubicTo(4, 14.5, 2, 11, 2.5, 8);
    p.cubicTo(3.2, 4, 9, 3, 12, 7.5);
    p.cubicTo(15, 3, 20.8, 4, 21.5, 8);
    p.cubicTo(22, 11, 20, 14.5, 12, 20.5);
    p.closeSubpath();
    return p;
}

QPainterPath sun()
{
    QPainterPath p = circle(4.5);
    for (int i = 0; i < 8; ++i) {
        const double a = i * M_PI / 4;
        p.moveTo(12 + 7.5 * std::cos(a), 12 + 7.5 * std::sin(a));
        p.lineTo(12 + 10.5 * std::cos(a), 12 + 10.5 * std::sin(a));
    }
    return p;
}

QPainterPath sparkle(QPointF c, double r)
{
    QPainterPath p;
    p.moveTo(c.x(), c.y() - r);
    p.quadTo(c, QPointF(c.x() + r, c.y()));
    p.quadTo(c, QPointF(c.x(), c.y() + r));
    p.quadTo(c, QPointF(c.x() - r, c.y()));
    p.quadTo(c, QPointF(c.x(), c.y() - r));
    p.closeSubpath();
    return p;
}

QPainterPath gear()
{
    QPainterPath p;
    for (int i = 0; i < 16; ++i) {
        const double a = i * M_PI / 8;
        const double r = (i / 2) % 2 ? 8 : 10.5;
        const QPointF point(12 + r * std::cos(a), 12 + r * std::sin(a));
        i ? p.lineTo(point) : p.moveTo(point);
    }
    p.closeSubpath();
    p.addEllipse(QPointF(12, 12), 3.5, 3.5);
    p.setFillRule(Qt::OddEvenFill);
    return p;
}

QPainterPath bubble(double x)
{
    QPainterPath p;
    p.addRoundedRect(QRectF(x, 4, 13, 10), 4, 4);
    p.moveTo(x + 3, 14);
    p.lineTo(x + 2, 18);
    p.lineTo(x + 7, 14);
    return p;
}

const QHash<QString, Glyph> &glyphs()
{
    static const QHash<QString, Glyph> table = {
        {QStringLiteral("plus"),
         {[] {
              return joined({polygon({{12, 4}, {12, 20}}, false), polygon({{4, 12}, {20, 12}}, false)});
          },
          true}},
        {QStringLiteral("minus"),
         {[] {
              return polygon({{4, 12}, {20, 12}}, false);
          },
          true}},
        {QStringLiteral("xmark"),
         {[] {
              return joined({polygon({{5, 5}, {19, 19}}, false), polygon({{19, 5}, {5, 19}}, false)});
          },
          true}},
        {QStringLiteral("checkmark"),
         {[] {
              return polygon({{4, 12.5}, {9.5, 18}, {20, 6}}, false);
          },
          true}},
        {QStringLiteral("chevron.right"),
         {[] {
              return polygon({{9, 4}, {17, 12}, {9, 20}}, false);
          },
          true}},
        {QStringLiteral("chevron.left"),
         {[] {
              return polygon({{15, 4}, {7, 12}, {15, 20}}, false);
          },
          true}},
        {QStringLiteral("chevron.down"),
         {[] {
              return polygon({{4, 9}, {12, 17}, {20, 9}}, false);
          },
          true}},
        {QStringLiteral("chevron.up"),
         {[] {
              return polygon({{4, 15}, {12, 7}, {20, 15}}, false);
          },
          true}},
        {QStringLiteral("arrow.right"),
         {[] {
              return joined({polygon({{4, 12}, {20, 12}}, false), polygon({{14, 6}, {20, 12}, {14, 18}}, false)});
          },
          true}},
        {QStringLiteral("arrow.left"),
         {[] {
              return joined({polygon({{4, 12}, {20, 12}}, false), polygon({{10, 6}, {4, 12}, {10, 18}}, false)});
          },
          true}},
        {QStringLiteral("arrow.up"),
         {[] {
              return joined({polygon({{12, 4}, {12, 20}}, false), polygon({{6, 10}, {12, 4}, {18, 10}}, false)});
          },
          true}},
        {QStringLiteral("arrow.down"),
         {[] {
              return joined({polygon({{12, 4}, {12, 20}}, false), polygon({{6, 14}, {12, 20}, {18, 14}}, false)});
          },
          true}},
        {QStringLiteral("arrow.clockwise"),
         {[] {
              QPainterPath p;
              p.arcMoveTo(QRectF(4, 4, 16, 16), 80);
              p.arcTo(QRectF(4, 4, 16, 16), 80, -300);
              return joined({p, polygon({{13, 1.5}, {16.5, 4.5}, {13, 7.5}}, false)});
          },
          true}},
        {QStringLiteral("arrow.counterclockwise"),
         {[] {
              QPainterPath p;
              p.arcMoveTo(QRectF(4, 4, 16, 16), 100);
              p.arcTo(QRectF(4, 4, 16, 16), 100, 300);
              return joined({p, polygon({{11, 1.5}, {7.5, 4.5}, {11, 7.5}}, false)});
          },
          true}},
        {QStringLiteral("circle"), {[] { return circle(); }}},
        {QStringLiteral("square"), {[] {
             QPainterPath p;
             p.addRoundedRect(QRectF(3, 3, 18, 18), 3, 3);
             return p;
         }}},
        {QStringLiteral("star"), {[] { return star(); }}},
        {QStringLiteral("heart"), {[] { return heart(); }}},
        {QStringLiteral("play"), {[] {
             return polygon({{7, 4}, {20, 12}, {7, 20}});
         }}},
        {QStringLiteral("pause"), {[] {
             QPainterPath p;
             p.addRect(QRectF(6, 4, 4, 16));
             p.addRect(QRectF(14, 4, 4, 16));
             return p;
         }}},
        {QStringLiteral("stop"), {[] {
             QPainterPath p;
             p.addRoundedRect(QRectF(5, 5, 14, 14), 2, 2);
             return p;
         }}},
        {QStringLiteral("trash"), {[] {
             return joined({polygon({{6, 7}, {7.5, 21}, {16.5, 21}, {18, 7}}), polygon({{4, 6}, {20, 6}}, false),
                            polygon({{9.5, 6}, {10, 3.5}, {14, 3.5}, {14.5, 6}}, false)});
         }}},
        {QStringLiteral("pencil"), {[] {
             return polygon({{4, 20}, {5, 15}, {16, 4}, {20, 8}, {9, 19}});
         }}},
        {QStringLiteral("house"), {[] {
             return polygon({{3, 12}, {12, 4}, {21, 12}, {18.5, 12}, {18.5, 20}, {5.5, 20}, {5.5, 12}});
         }}},
        {QStringLiteral("person"), {[] {
             QPainterPath p = circle(4);
             p.translate(0, -4);
             QPainterPath body;
             body.moveTo(4, 21);
             body.cubicTo(4, 13, 20, 13, 20, 21);
             body.closeSubpath();
             return joined({p, body});
         }}},
        {QStringLiteral("gear"), {[] { return gear(); }}},
        {QStringLiteral("gearshape"), {[] { return gear(); }}},
        {QStringLiteral("sun.max"), {[] { return sun(); }}},
        {QStringLiteral("moon"), {[] {
             QPainterPath p = circle(9);
             QPainterPath cut;
             cut.addEllipse(QPointF(17, 8), 8, 8);
             return p - cut;
         }}},
        {QStringLiteral("cloud"), {[] {
             QPainterPath p;
             p.addEllipse(QPointF(9, 14), 5, 5);
             p.addEllipse(QPointF(14, 11), 6, 6);
             p.addEllipse(QPointF(18, 15), 4, 4);
             p.addRect(QRectF(9, 14, 9, 5));
             return p.simplified();
         }}},
        {QStringLiteral("bell"), {[] {
             QPainterPath p;
             p.moveTo(5, 17);
             p.cubicTo(7, 14, 6, 5, 12, 4);
             p.cubicTo(18, 5, 17, 14, 19, 17);
             p.closeSubpath();
             p.addEllipse(QPointF(12, 19.5), 2, 2);
             return p;
         }}},
        {QStringLiteral("clock"), {[] {
             return joined({circle(), polygon({{12, 6}, {12, 12}, {16, 14}}, false)});
         }}},
        {QStringLiteral("timer"), {[] {
             return joined({circle(9), polygon({{12, 7}, {12, 12}}, false), polygon({{10, 1.5}, {14, 1.5}}, false)});
         }}},
        {QStringLiteral("magnifyingglass"),
         {[] {
              QPainterPath p;
              p.addEllipse(QPointF(10, 10), 6.5, 6.5);
              return joined({p, polygon({{15, 15}, {21, 21}}, false)});
          },
          true}},
        {QStringLiteral("list.bullet"),
         {[] {
              QPainterPath p;
              for (int y : {6, 12, 18}) {
                  p.addEllipse(QPointF(5, y), 1.3, 1.3);
                  p.moveTo(9, y);
                  p.lineTo(20, y);
              }
              return p;
          },
          true}},
        {QStringLiteral("calendar"), {[] {
             QPainterPath p;
             p.addRoundedRect(QRectF(3, 5, 18, 16), 2, 2);
             return joined({p, polygon({{3, 10}, {21, 10}}, false), polygon({{8, 3}, {8, 7}}, false),
                            polygon({{16, 3}, {16, 7}}, false)});
         }}},
        {QStringLiteral("paintbrush"), {[] {
             QPainterPath p = polygon({{20, 3}, {21, 4}, {12, 14}, {10, 12}});
             QPainterPath tip;
             tip.moveTo(10, 13);
             tip.cubicTo(6, 12, 5, 17, 3, 21);
             tip.cubicTo(8, 20, 12, 18, 11, 14);
             tip.closeSubpath();
             return joined({p, tip});
         }}},
        {QStringLiteral("sparkles"), {[] {
             return joined({sparkle({10, 13}, 8), sparkle({18.5, 5.5}, 4), sparkle({19, 18}, 3)});
         }}},
        {QStringLiteral("bubble.left"), {[] { return bubble(5.5); }}},
        {QStringLiteral("bubble.left.and.bubble.right"), {[] {
             QPainterPath p = bubble(2);
             QPainterPath q = bubble(9);
             q.translate(0, 5);
             return joined({p, q});
         }}},
        {QStringLiteral("info.circle"), {[] {
             return joined({circle(), polygon({{12, 11}, {12, 17}}, false), polygon({{12, 7}, {12, 7.6}}, false)});
         }}},
        {QStringLiteral("exclamationmark.triangle"), {[] {
             return joined({polygon({{12, 3}, {22, 20}, {2, 20}}), polygon({{12, 9}, {12, 14}}, false),
                            polygon({{12, 16.5}, {12, 17}}, false)});
         }}},
        {QStringLiteral("checkmark.circle"), {[] {
             return joined({circle(), polygon({{7, 12.5}, {10.5, 16}, {17, 8.5}}, false)});
         }}},
        {QStringLiteral("xmark.circle"), {[] {
             return joined(
                 {circle(), polygon({{8.5, 8.5}, {15.5, 15.5}}, false), polygon({{15.5, 8.5}, {8.5, 15.5}}, false)});
         }}},
        {QStringLiteral("plus.circle"), {[] {
             return joined({circle(), polygon({{12, 7}, {12, 17}}, false), polygon({{7, 12}, {17, 12}}, false)});
         }}},
        {QStringLiteral("minus.circle"), {[] {
             return joined({circle(), polygon({{7, 12}, {17, 12}}, false)});
         }}},
        {QStringLiteral("photo"), {[] {
             QPainterPath p;
             p.addRoundedRect(QRectF(3, 5, 18, 14), 2, 2);
             return joined({p, polygon({{5, 17}, {10, 11}, {14, 15}, {16, 13}, {19, 17}}, false)});
         }}},
        {QStringLiteral("folder"), {[] {
             return polygon({{3, 6}, {9, 6}, {11, 8}, {21, 8}, {21, 19}, {3, 19}});
         }}},
        // An in-tray: a box open at the top, with the slot of its front.
        {QStringLiteral("tray"), {[] {
             return joined({polygon({{3, 12}, {3, 19}, {21, 19}, {21, 12}}, false),
                            polygon({{3, 12}, {8, 12}, {9.5, 15}, {14.5, 15}, {16, 12}, {21, 12}}, false),
                            polygon({{3, 12}, {6, 5}, {18, 5}, {21, 12}}, false)});
         }}},
        {QStringLiteral("doc"), {[] {
             return polygon({{6, 3}, {14, 3}, {19, 8}, {19, 21}, {6, 21}});
         }}},
        {QStringLiteral("slider.horizontal"),
         {[] {
              QPainterPath p;
              for (const auto &[y, knob] : {std::pair{7.0, 15.0}, std::pair{17.0, 8.0}}) {
                  p.moveTo(3, y);
                  p.lineTo(21, y);
                  p.addEllipse(QPointF(knob, y), 2.2, 2.2);
              }
              return p;
          },
          true}},
        {QStringLiteral("envelope"), {[] {
             QPainterPath p;
             p.addRect(QRectF(3, 6, 18, 13));
             return joined({p, polygon({{3, 6}, {12, 13}, {21, 6}}, false)});
         }}},
        {QStringLiteral("bolt"), {[] {
             return polygon({{13, 2}, {5, 14}, {11, 14}, {10, 22}, {19, 9}, {13, 9}});
         }}},
        {QStringLiteral("flame"), {[] {
             QPainterPath p;
             p.moveTo(12, 2);
             p.cubicTo(20, 9, 20, 21, 12, 21);
             p.cubicTo(4, 21, 4, 12, 9, 8);
             p.cubicTo(9, 12, 11, 12, 12, 2);
             p.closeSubpath();
             return p;
         }}},
        {QStringLiteral("leaf"), {[] {
             QPainterPath p;
             p.moveTo(4, 20);
             p.cubicTo(4, 8, 12, 4, 21, 3);
             p.cubicTo(20, 12, 16, 20, 4, 20);
             p.closeSubpath();
             return p;
         }}},
        {QStringLiteral("drop"), {[] {
             QPainterPath p;
             p.moveTo(12, 2);
             p.cubicTo(18, 10, 19, 13, 19, 15);
             p.cubicTo(19, 24, 5, 24, 5, 15);
             p.cubicTo(5, 13, 6, 10, 12, 2);
             p.closeSubpath();
             return p;
         }}},
        {QStringLiteral("cart"), {[] {
             QPainterPath p = polygon({{2, 4}, {5, 4}, {8, 16}, {19, 16}, {21, 7}, {6, 7}}, false);
             p.addEllipse(QPointF(9, 19.5), 1.5, 1.5);
             p.addEllipse(QPointF(18, 19.5), 1.5, 1.5);
             return p;
         }}},
        {QStringLiteral("book"), {[] {
             return joined({polygon({{12, 6}, {4, 4}, {4, 19}, {12, 21}, {20, 19}, {20, 4}}),
                            polygon({{12, 6}, {12, 21}}, false)});
         }}},
        {QStringLiteral("flag"), {[] {
             return joined({polygon({{5, 21}, {5, 3}}, false), polygon({{5, 4}, {19, 4}, {15, 9}, {19, 14}, {5, 14}})});
         }}},
        {QStringLiteral("tag"), {[] {
             QPainterPath p = polygon({{3, 3}, {12, 3}, {21, 12}, {12, 21}, {3, 12}});
             p.addEllipse(QPointF(8, 8), 1.5, 1.5);
             return p;
         }}},
        {QStringLiteral("lock"), {[] {
             QPainterPath p;
             p.addRoundedRect(QRectF(5, 10, 14, 11), 2, 2);
             QPainterPath shackle;
             shackle.moveTo(8, 10);
             shackle.lineTo(8, 7);
             shackle.cubicTo(8, 2, 16, 2, 16, 7);
             shackle.lineTo(16, 10);
             return joined({p, shackle});
         }}},
        {QStringLiteral("ellipsis"), {[] {
             QPainterPath p;
             for (int x : {5, 12, 19})
                 p.addEllipse(QPointF(x, 12), 1.8, 1.8);
             return p;
         }}},
        {QStringLiteral("square.and.arrow.up"),
         {[] {
              return joined({polygon({{8, 9}, {5, 9}, {5, 21}, {19, 21}, {19, 9}, {16, 9}}, false),
                             polygon({{12, 3}, {12, 15}}, false), polygon({{8, 7}, {12, 3}, {16, 7}}, false)});
          },
          true}},
        {QStringLiteral("music.note"), {[] {
             QPainterPath p;
             p.addEllipse(QPointF(8, 18), 3.5, 3);
             return joined({p, polygon({{11.5, 18}, {11.5, 3}, {18, 5}, {18, 8}, {11.5, 6}}, false)});
         }}},
        {QStringLiteral("globe"), {[] {
             QPainterPath p = circle();
             p.addEllipse(QPointF(12, 12), 4.5, 10);
             return joined({p, polygon({{2, 12}, {22, 12}}, false)});
         }}},
        {QStringLiteral("location"), {[] {
             return polygon({{3, 11}, {21, 3}, {13, 21}, {11, 13}});
         }}},
    };
    return table;
}

// "heart.fill" is "heart" filled; "checkmark.circle.fill" is "checkmark.circle" filled.
std::pair<const Glyph *, bool> lookUp(const QString &name)
{
    const auto &table = glyphs();
    QString base = name;
    bool filled = false;
    if (base.endsWith(QStringLiteral(".fill"))) {
        base.chop(5);
        filled = true;
    }
    if (auto it = table.find(base); it != table.end())
        return {&*it, filled};
    // "sun.max.fill" -> "sun.max", "cloud.sun" -> "cloud", "person.circle" -> "person" ...
    for (QString shorter = base; shorter.contains(u'.');) {
        shorter = shorter.left(shorter.lastIndexOf(u'.'));
        if (auto it = table.find(shorter); it != table.end())
            return {&*it, filled};
    }
    return {nullptr, filled};
}

} // namespace

bool knowsSymbol(const QString &name)
{
    return lookUp(name).first != nullptr;
}

void drawSymbol(QPainter &painter, const QString &name, const QRectF &rect, const QBrush &brush)
{
    const auto [glyph, filled] = lookUp(name);
    const double side = std::min(rect.width(), rect.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.center().x() - side / 2, rect.center().y() - side / 2);
    painter.scale(side / 24, side / 24);
    QPen pen(brush, 1.9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    if (!glyph) {
        QPainterPath neutral;
        neutral.addRoundedRect(QRectF(4, 4, 16, 16), 4, 4);
        painter.strokePath(neutral, pen);
    } else if (filled && !glyph->strokeOnly) {
        const QPainterPath outline = glyph->outline();
        painter.fillPath(outline, brush);
        painter.strokePath(outline, pen);
    } else {
        painter.strokePath(glyph->outline(), pen);
    }
    painter.restore();
}

} // namespace zentoro::KitPainting
