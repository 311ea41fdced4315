#include "core/Text.h"

#include <QTextBoundaryFinder>

namespace zentoro::Text {

namespace {
// Each cluster boundary after the start, up to `limit` of them; returns how many were
// found and where the last one lies.
std::pair<qsizetype, qsizetype> walk(const QString &text, qsizetype limit)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    qsizetype position = 0;
    while (count < limit) {
        const qsizetype next = finder.toNextBoundary();
        if (next < 0)
            break;
        position = next;
        ++count;
    }
    return {count, position};
}
} // namespace

qsizetype characterCount(const QString &text)
{
    return walk(text, std::numeric_limits<qsizetype>::max()).first;
}

QString firstCharacters(const QString &text, qsizetype count)
{
    return text.left(walk(text, count).second);
}

} // namespace zentoro::Text
