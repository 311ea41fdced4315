#pragma once

#include <QIcon>
#include <QPixmap>

namespace zentoro::AppIcon {

// The program's icon: the brand's stretch glyph in white on a rounded tile of the tint colour.
QPixmap pixmap(int size, qreal ratio = 1);
QIcon icon();

} // namespace zentoro::AppIcon
