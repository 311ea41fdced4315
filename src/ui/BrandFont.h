#pragma once

#include <QPainterPath>
#include <QString>

namespace zentoro::BrandFont {

// Anybody's width axis runs from 50 to 150.
inline constexpr double minimumWidth = 50;
inline constexpr double maximumWidth = 150;

double clampedWidth(double width);

// Whether the compiled-in Anybody typeface could be read. Read once per process.
bool registered();

// One face of the brand typeface: Anybody at a size, a width and a weight, or the system
// font in heavy weight when Anybody can't be had or lacks a character of the text. Qt can't set variation axes, so text
// in this face is drawn as outlines.
struct Font {
    double size = 0;
    double width = 100;
    double weight = 400;
    bool isAnybody = false;

    // The outline of `text` with its baseline at y = 0 and its pen starting at x = 0.
    QPainterPath outline(const QString &text) const;
    // How far the pen moves for `text`.
    double advance(const QString &text) const;
    double ascent() const;
    double descent() const;

    bool operator==(const Font &) const = default;
};

Font anybody(double size, double width, double weight);

} // namespace zentoro::BrandFont
