#include "ui/RelativeDate.h"

#include <cstdlib>

namespace zentoro::RelativeDate {

namespace {

struct Unit {
    const char *name;
    const char *past;   // for one unit back
    const char *future; // for one unit ahead
};

QString phrase(qint64 count, const Unit &unit, bool future)
{
    if (count == 1 && unit.past)
        return QString::fromLatin1(future ? unit.future : unit.past);
    const QString amount = QStringLiteral("%1 %2%3").arg(count).arg(QLatin1String(unit.name), count == 1 ? "" : "s");
    return future ? QStringLiteral("in ") + amount : amount + QStringLiteral(" ago");
}

} // namespace

QString text(const QDateTime &date, const QDateTime &now)
{
    const qint64 seconds = date.secsTo(now);
    const bool future = seconds < 0;
    const qint64 span = std::llabs(seconds);
    if (span < 1)
        return QStringLiteral("now");
    if (span < 60)
        return phrase(span, {"second", nullptr, nullptr}, future);
    if (span < 3600)
        return phrase(span / 60, {"minute", nullptr, nullptr}, future);
    if (span < 86400)
        return phrase(span / 3600, {"hour", nullptr, nullptr}, future);
    const qint64 wholeDays = span / 86400;
    if (wholeDays < 7)
        return phrase(wholeDays, {"day", "yesterday", "tomorrow"}, future);
    if (wholeDays < 30)
        return phrase(wholeDays / 7, {"week", "last week", "next week"}, future);
    if (wholeDays < 365)
        return phrase(std::max<qint64>(wholeDays / 30, 1), {"month", "last month", "next month"}, future);
    return phrase(wholeDays / 365, {"year", "last year", "next year"}, future);
}

} // namespace zentoro::RelativeDate
