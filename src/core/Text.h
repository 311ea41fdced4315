#pragma once

#include <QString>

namespace zentoro::Text {

// Lengths that limit text count characters as a person counts them: grapheme clusters.
qsizetype characterCount(const QString &text);
// The first `count` characters of `text`, never splitting a character.
QString firstCharacters(const QString &text, qsizetype count);

} // namespace zentoro::Text
