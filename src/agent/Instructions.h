#pragma once

#include "runtime/RuntimeState.h"

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <optional>

namespace zentoro {

class Runtime;
struct Workspace;

// The texts that tell the model where it stands: the system prompt, which is the same for
// every request of a copy, and the state note that goes with each user message.
namespace Instructions {

// The system prompt for the copy named `name`, whose app keeps its files in `dataFolder`.
QString instructions(const QString &name, const QString &dataFolder);

// What the UI kit supports, as carried in the program; empty in a build without the list.
QString kitList();

// The state note: the running version, how many were built, the compiler, the source
// files and today's date. `loadedVersion` is the version in the window, if any.
QString context(const RuntimeState &state, std::optional<int> loadedVersion, const QString &compiler,
                const Workspace &workspace, const QDateTime &now, const QLocale &locale);
// The same from the running `runtime`.
QString context(const Runtime &runtime);

// `date` as people say it relative to `now`: "2 hours ago", "yesterday", "last week".
QString relativeAge(const QDateTime &date, const QDateTime &now);
// Weekday, month in full, day and year in `locale`'s complete style, with no time.
QString fullDate(const QDate &date, const QLocale &locale);

} // namespace Instructions

} // namespace zentoro
