#pragma once

#include <QByteArray>
#include <QIcon>
#include <QImage>
#include <QPixmap>

namespace zentoro::AppIcon {

// The program's icon: the brand's stretch glyph in white on a rounded tile of the tint colour.
QPixmap pixmap(int size, qreal ratio = 1);
QIcon icon();
// The same drawing as an image, for files written without a screen.
QImage image(int size);
// The same drawing as a scalable SVG document.
QByteArray svg();

// The icon theme name under which `make install` puts the icon: the bundle identifier.
QString themeName();
// What a desktop entry names as its icon: the theme name when the icon is installed in a data
// folder's hicolor theme, else an SVG written once into the support folder.
QString forDesktopEntry();

} // namespace zentoro::AppIcon
