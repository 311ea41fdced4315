#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QString>

namespace zentoro::Icons {

// Rows and controls name their icons by SF Symbols names (the names stay in stored
// conversations). Each name the program uses has a bundled drawing under that name;
// any other name gets a neutral glyph.
bool knows(const QString &symbol);
QString resourceFor(const QString &symbol);

// The icon drawn in one colour, `size` logical pixels square, at the pixel ratio `ratio`.
QPixmap pixmap(const QString &symbol, int size, const QColor &color, qreal ratio = 1);
// The same at the pixel ratios a screen may ask for; `disabled` is used for the disabled state.
QIcon icon(const QString &symbol, const QColor &color, int size = 16, const QColor &disabled = QColor());

} // namespace zentoro::Icons
