#include "ui/InlineMarkdown.h"

namespace zentoro::InlineMarkdown {

namespace {

QString escaped(QStringView text)
{
    return text.toString().toHtmlEscaped();
}

bool isPunctuation(QChar c)
{
    return c.unicode() < 128 && c.isPunct();
}

bool isSymbol(QChar c)
{
    return c.unicode() < 128 && c.isSymbol();
}

// The length of the run of `c` that starts at `at`.
qsizetype runLength(QStringView text, qsizetype at, QChar c)
{
    qsizetype end = at;
    while (end < text.size() && text[end] == c)
        ++end;
    return end - at;
}

// Where the closing delimiter `delimiter` of an emphasis opened before `from` starts, or -1.
// A closer follows a character that isn't white space; of a longer run of the same
// character, the last possible place is taken so that "***a***" nests. `_` must not be
// followed by a letter or digit, so that snake_case stays as it is.
qsizetype closer(QStringView text, qsizetype from, QStringView delimiter)
{
    const QChar c = delimiter[0];
    for (qsizetype at = from; at < text.size(); ++at) {
        if (text[at] == u'\\') {
            ++at;
            continue;
        }
        if (text[at] == u'`') {
            // Delimiters inside a code span don't count.
            const qsizetype ticks = runLength(text, at, u'`');
            const qsizetype end = text.indexOf(text.mid(at, ticks), at + ticks);
            if (end > 0)
                at = end + ticks - 1;
            continue;
        }
        if (text[at] != c)
            continue;
        const qsizetype run = runLength(text, at, c);
        if (run < delimiter.size() || (delimiter.size() == 1 && run == 2)) {
            at += run - 1;
            continue;
        }
        const qsizetype start = at + run - delimiter.size();
        const bool afterText = start > from && !text[start - 1].isSpace();
        const qsizetype after = at + run;
        const bool wordFollows = c == u'_' && after < text.size() && text[after].isLetterOrNumber();
        if (afterText && !wordFollows)
            return start;
        at += run - 1;
    }
    return -1;
}

QString render(QStringView text);

// Tries the emphasis `delimiter` with `tag` at `at`; on success appends it and moves `at` past it.
bool emphasis(QStringView text, qsizetype &at, QStringView delimiter, const char *tag, QString &out)
{
    if (text.mid(at, delimiter.size()) != delimiter)
        return false;
    const qsizetype open = at + delimiter.size();
    if (open >= text.size() || text[open].isSpace())
        return false;
    if (delimiter[0] == u'_' && at > 0 && text[at - 1].isLetterOrNumber())
        return false;
    const qsizetype close = closer(text, open, delimiter);
    if (close < 0)
        return false;
    out += QStringLiteral("<%1>").arg(QLatin1String(tag)) + render(text.mid(open, close - open)) +
           QStringLiteral("</%1>").arg(QLatin1String(tag));
    at = close + delimiter.size();
    return true;
}

bool codeSpan(QStringView text, qsizetype &at, QString &out)
{
    const qsizetype ticks = runLength(text, at, u'`');
    const QStringView fence = text.mid(at, ticks);
    qsizetype search = at + ticks;
    while (true) {
        const qsizetype end = text.indexOf(fence, search);
        if (end < 0) {
            out += fence.toString();
            at += ticks;
            return true;
        }
        if (runLength(text, end, u'`') != ticks) {
            search = end + runLength(text, end, u'`');
            continue;
        }
        QStringView code = text.mid(at + ticks, end - at - ticks);
        if (code.size() >= 2 && code.front() == u' ' && code.back() == u' ' && !code.trimmed().isEmpty())
            code = code.mid(1, code.size() - 2);
        out += QStringLiteral("<code>") + escaped(code) + QStringLiteral("</code>");
        at = end + ticks;
        return true;
    }
}

QString hrefOf(QStringView url)
{
    return url.toString().toHtmlEscaped();
}

bool link(QStringView text, qsizetype &at, QString &out)
{
    const qsizetype labelEnd = text.indexOf(u']', at + 1);
    if (labelEnd < 0 || labelEnd + 1 >= text.size() || text[labelEnd + 1] != u'(')
        return false;
    const qsizetype urlEnd = text.indexOf(u')', labelEnd + 2);
    if (urlEnd < 0)
        return false;
    const QStringView url = text.mid(labelEnd + 2, urlEnd - labelEnd - 2).trimmed();
    if (url.isEmpty() || url.contains(u' ') || url.contains(u'\n'))
        return false;
    out += QStringLiteral("<a href=\"%1\">").arg(hrefOf(url)) + render(text.mid(at + 1, labelEnd - at - 1)) +
           QStringLiteral("</a>");
    at = urlEnd + 1;
    return true;
}

bool autolink(QStringView text, qsizetype &at, QString &out)
{
    const qsizetype end = text.indexOf(u'>', at + 1);
    if (end < 0)
        return false;
    const QStringView url = text.mid(at + 1, end - at - 1);
    const bool isURL = (url.startsWith(u"http://") || url.startsWith(u"https://") || url.startsWith(u"mailto:")) &&
                       !url.contains(u' ') && !url.contains(u'\n');
    if (!isURL)
        return false;
    out += QStringLiteral("<a href=\"%1\">%2</a>").arg(hrefOf(url), escaped(url));
    at = end + 1;
    return true;
}

QString render(QStringView text)
{
    QString out;
    qsizetype at = 0;
    while (at < text.size()) {
        const QChar c = text[at];
        if (c == u'\\' && at + 1 < text.size() && (isPunctuation(text[at + 1]) || isSymbol(text[at + 1]))) {
            out += escaped(text.mid(at + 1, 1));
            at += 2;
            continue;
        }
        if (c == u'`' && codeSpan(text, at, out))
            continue;
        if (c == u'[' && link(text, at, out))
            continue;
        if (c == u'<' && autolink(text, at, out))
            continue;
        if ((c == u'*' || c == u'_' || c == u'~')) {
            const QString doubled(2, c);
            if (emphasis(text, at, doubled, c == u'~' ? "s" : "b", out))
                continue;
            if (c != u'~' && emphasis(text, at, QStringView(&c, 1), "i", out))
                continue;
            // An unmatched run stays as typed.
            const qsizetype run = runLength(text, at, c);
            out += text.mid(at, run).toString();
            at += run;
            continue;
        }
        out += escaped(text.mid(at, 1));
        ++at;
    }
    return out;
}

} // namespace

QString html(const QString &markdown)
{
    return QStringLiteral("<span style=\"white-space: pre-wrap\">") + render(markdown) + QStringLiteral("</span>");
}

} // namespace zentoro::InlineMarkdown
