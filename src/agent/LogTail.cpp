#include "agent/LogTail.h"

#include <QFile>
#include <QTextBoundaryFinder>

namespace zentoro::LogTail {

namespace {

const QString cutMark = QStringLiteral("…\n");

// Where the last `count` characters of `text` begin, and whether any come before them.
std::pair<qsizetype, bool> lastCharacters(const QString &text, qsizetype count)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.toEnd();
    qsizetype position = text.size();
    for (qsizetype found = 0; found < count; ++found) {
        const qsizetype previous = finder.toPreviousBoundary();
        if (previous < 0)
            return {position, false};
        position = previous;
    }
    return {position, position > 0};
}

QString limitCharacters(const QString &text)
{
    const auto [start, cut] = lastCharacters(text, characterLimit);
    return cut ? cutMark + text.mid(start) : text;
}

// Where the last `count` line feeds of `bytes` are, searching back; -1 when there are fewer.
qsizetype lineFeedFromEnd(const QByteArray &bytes, qsizetype count)
{
    qsizetype at = bytes.size();
    for (qsizetype found = 0; found < count; ++found) {
        at = at > 0 ? bytes.lastIndexOf('\n', at - 1) : -1;
        if (at < 0)
            return -1;
    }
    return at;
}

// Characters ahead of the cut that a window must hold before its own start can't change
// where the cut falls: grapheme clusters are short, so this is far more than needed.
constexpr qsizetype contextCharacters = 1024;
constexpr qint64 firstWindow = 64 * 1024;

} // namespace

QString of(const QString &text)
{
    QStringList lines = text.split(u'\n');
    if (lines.size() > lineLimit)
        lines = lines.mid(lines.size() - lineLimit);
    return limitCharacters(lines.join(u'\n'));
}

QString read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const qint64 size = file.size();
    for (qint64 window = firstWindow;; window *= 2) {
        const qint64 start = std::max<qint64>(0, size - window);
        if (!file.seek(start))
            return {};
        const QByteArray bytes = file.read(size - start);
        if (start == 0 || bytes.size() != size - start)
            return of(QString::fromUtf8(bytes));

        // The last 200 lines begin after the 200th line feed from the end; one is always a
        // character boundary, so the text from there is exactly what the whole file gives.
        const qsizetype feed = lineFeedFromEnd(bytes, lineLimit);
        if (feed >= 0)
            return limitCharacters(QString::fromUtf8(bytes.mid(feed + 1)));

        // Fewer line feeds: all of the window lies in those lines, and the answer is its last
        // 16000 characters once enough text stands before them.
        qsizetype first = 0;
        while (first < bytes.size() && first < 3 && (uchar(bytes[first]) & 0xC0) == 0x80)
            ++first;
        const QString text = QString::fromUtf8(bytes.mid(first));
        if (lastCharacters(text, characterLimit + contextCharacters).second)
            return cutMark + text.mid(lastCharacters(text, characterLimit).first);
    }
}

} // namespace zentoro::LogTail
