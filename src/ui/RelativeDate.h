#pragma once

#include <QDateTime>
#include <QString>

namespace zentoro::RelativeDate {

// `date` told relative to `now` in named form with wide units: "now", "5 minutes ago",
// "yesterday", "last week", "in 2 hours", "tomorrow".
QString text(const QDateTime &date, const QDateTime &now);

} // namespace zentoro::RelativeDate
