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

enum class Type { Caption2, Caption, Callout, Body, Title3, Title2 };
QFont font(const QFont &base, Type type, QFont::Weight weight = QFont::Normal);
QFont monospaced(const QFont &base, Type type);

// Sets the widget's text colour in its palette.
void setTextColor(QWidget *widget, const QColor &color);

} // namespace zentoro::PanelStyle
