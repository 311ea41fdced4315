#pragma once

#include <QByteArray>
#include <QColor>
#include <QImage>

#include <optional>

class QWidget;

namespace zentoro {

// Pictures of the hosted view for the agent.
namespace Snapshot {

// PNG bytes of `view` as it is drawn now, at the screen's pixel ratio, no wider than
// `maxWidth` pixels; none when the view has no area.
std::optional<QByteArray> png(QWidget *view, double maxWidth, std::optional<QColor> background);

// Scales `image` down to at most `maxWidth` pixels wide, never up, halves rounded away from
// zero, and lays it over `background` when one is given, so a transparent view is not
// see-through in the picture.
std::optional<QByteArray> encode(const QImage &image, double maxWidth, std::optional<QColor> background);

} // namespace Snapshot
} // namespace zentoro
