#include "ui/PanelStyle.h"

#include <QFontDatabase>
#include <QWidget>

namespace zentoro::PanelStyle {

namespace {

QColor withAlpha(QColor color, double alpha)
{
    color.setAlphaF(float(alpha));
    return color;
}

double scaleOf(Type type)
{
    switch (type) {
    case Type::Caption2: return 0.80;
    case Type::Caption: return 0.86;
    case Type::Callout: return 0.94;
    case Type::Body: return 1.0;
    case Type::Title3: return 1.25;
    case Type::Title2: return 1.4;
    }
    return 1.0;
}

} // namespace

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Window).lightnessF() < 0.5;
}

QColor tint(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Highlight);
}

QColor secondary(const QPalette &palette)
{
    return withAlpha(palette.color(QPalette::Active, QPalette::WindowText), 0.62);
}

QColor tertiary(const QPalette &palette)
{
    return withAlpha(palette.color(QPalette::Active, QPalette::WindowText), 0.38);
}

QColor red(const QPalette &palette)
{
    return isDark(palette) ? QColor(255, 105, 97) : QColor(215, 40, 30);
}

QColor green(const QPalette &palette)
{
    return isDark(palette) ? QColor(48, 209, 88) : QColor(36, 160, 60);
}

QColor orange(const QPalette &palette)
{
    return isDark(palette) ? QColor(255, 159, 10) : QColor(230, 126, 0);
}

QFont font(const QFont &base, Type type, QFont::Weight weight)
{
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() > 0 ? base.pointSizeF() * scaleOf(type) : 10 * scaleOf(type));
    font.setWeight(weight);
    return font;
}

QFont monospaced(const QFont &base, Type type)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const double size = base.pointSizeF() > 0 ? base.pointSizeF() : 10;
    font.setPointSizeF(size * scaleOf(type));
    return font;
}

void setTextColor(QWidget *widget, const QColor &color)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, color);
    palette.setColor(QPalette::Text, color);
    widget->setPalette(palette);
}

} // namespace zentoro::PanelStyle
