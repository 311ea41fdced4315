#include "ui/PanelStyle.h"

#include <QApplication>
#include <QEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QWidget>

#include <cmath>

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

const char *const roleProperty = "zentoroTextRole";

double luminance(const QColor &color)
{
    const auto channel = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF()) + 0.0722 * channel(color.blueF());
}

// Re-colours the text of role-coloured widgets when their palette changes.
class TextRoles : public QObject {
public:
    static TextRoles &shared()
    {
        static auto *roles = new TextRoles;
        return *roles;
    }

    static void apply(QWidget *widget)
    {
        const QVariant role = widget->property(roleProperty);
        if (!role.isValid())
            return;
        const QPalette base = widget->parentWidget() ? widget->parentWidget()->palette()
                                                     : QApplication::palette(widget);
        QPalette palette = widget->palette();
        const QColor text = color(base, Role(role.toInt()));
        palette.setColor(QPalette::WindowText, text);
        palette.setColor(QPalette::Text, text);
        if (!(palette == widget->palette()) || palette.resolveMask() != widget->palette().resolveMask())
            widget->setPalette(palette);
    }

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ParentChange)
            apply(static_cast<QWidget *>(object));
        return false;
    }
};

} // namespace

QColor color(const QPalette &palette, Role role)
{
    switch (role) {
    case Role::Secondary: return secondary(palette);
    case Role::Tertiary: return tertiary(palette);
    case Role::Red: return red(palette);
    case Role::Green: return green(palette);
    case Role::Orange: return orange(palette);
    }
    return palette.color(QPalette::WindowText);
}

double contrast(const QColor &a, const QColor &b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

QColor bubbleFill(const QPalette &palette)
{
    QColor fill = tint(palette).toHsl();
    fill.setAlpha(255);
    // Darker in the same hue until white reads on it; most tints need a step or two.
    while (contrast(fill, Qt::white) < 4.6 && fill.lightness() > 0)
        fill.setHsl(fill.hslHue(), fill.hslSaturation(), std::max(0, fill.lightness() - 6));
    return fill.toRgb();
}

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
    // Without a platform theme the "fixed" system font is the general one: then the first
    // family of fixed pitch stands in.
    static const QFont fixed = [] {
        const QFont system = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        if (QFontInfo(system).fixedPitch())
            return system;
        for (const QString &family : QFontDatabase::families()) {
            if (QFontDatabase::isFixedPitch(family))
                return QFont(family);
        }
        return system;
    }();
    QFont font = fixed;
    const double size = base.pointSizeF() > 0 ? base.pointSizeF() : 10;
    font.setPointSizeF(size * scaleOf(type));
    return font;
}

QFont::Weight medium(const QFont &font)
{
    const QString family = QFontInfo(font).family();
    for (const QString &style : QFontDatabase::styles(family)) {
        const int weight = QFontDatabase::weight(family, style);
        if (weight >= QFont::Medium && weight < QFont::DemiBold && !QFontDatabase::italic(family, style))
            return QFont::Medium;
    }
    return QFont::DemiBold;
}

void setTextRole(QWidget *widget, Role role)
{
    widget->setProperty(roleProperty, int(role));
    widget->removeEventFilter(&TextRoles::shared());
    widget->installEventFilter(&TextRoles::shared());
    TextRoles::apply(widget);
}

void setTextColor(QWidget *widget, const QColor &color)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, color);
    palette.setColor(QPalette::Text, color);
    widget->setPalette(palette);
}

} // namespace zentoro::PanelStyle
