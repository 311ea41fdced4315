#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

class QWidget;

// The panel's named colours and type styles, taken from the widget's palette and font so
// that they follow the system's light or dark appearance.
namespace zentoro::PanelStyle {

QColor tint(const QPalette &palette);
QColor secondary(const QPalette &palette);
QColor tertiary(const QPalette &palette);
QColor red(const QPalette &palette);
QColor green(const QPalette &palette);
QColor orange(const QPalette &palette);
bool isDark(const QPalette &palette);

// A named colour of text that follows the palette.
enum class Role { Secondary, Tertiary, Red, Green, Orange };
QColor color(const QPalette &palette, Role role);

// WCAG contrast ratio of two opaque colours, from 1 to 21.
double contrast(const QColor &a, const QColor &b);
// The tint darkened or lightened as far as white text on it needs to be read (4.5:1).
QColor bubbleFill(const QPalette &palette);

enum class Type { Caption2, Caption, Callout, Body, Title3, Title2 };
QFont font(const QFont &base, Type type, QFont::Weight weight = QFont::Normal);
QFont monospaced(const QFont &base, Type type);
// The weight that reads as medium in the family of `font`: Medium where the family has it,
// else the next heavier face, as families without a medium face would draw Medium as regular.
QFont::Weight medium(const QFont &font);

// Sets the widget's text colour in its palette.
void setTextColor(QWidget *widget, const QColor &color);
// Colours the widget's text by `role` of the palette it inherits, now and whenever that
// palette changes, as it does when the desktop turns dark or light.
void setTextRole(QWidget *widget, Role role);

} // namespace zentoro::PanelStyle
