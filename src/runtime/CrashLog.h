#pragma once

#include <QString>

#include <optional>

namespace zentoro {

// The console log of a copy: this process's standard output and standard error, and
// those of the hosted app, go to "Logs/current.log". A fatal signal adds a crash block
// with a backtrace, and the next start reads it to say in one line why the run died.
namespace CrashLog {

// Opens the crash block that the signal handler writes at the end of the log.
inline constexpr char marker[] = "*** ZENTORO CRASH";

// The three log files; the raw values are the texts the agent's tool receives.
enum class Which { Current, Previous, Crash };

QString rawValue(Which which);
// None for a text that names no log, such as "latest".
std::optional<Which> which(const QString &rawValue);
// "<raw value>.log" in `logs`.
QString url(Which which, const QString &logs);

// Why the run before died, in one line.
struct PreviousCrash {
    QString text;
    bool operator==(const PreviousCrash &) const = default;
};

// Once per process, before any hosted code runs: rotates the logs, sends descriptors 1 and
// 2 into "current.log" (unless `ZentoroNoLogRedirect` is set), installs the crash handler,
// prints the header line and returns the crash of the run before, which is also kept as
// "crash.log". Everything here fails silently: there is nowhere yet to report it.
std::optional<PreviousCrash> start(const QString &logs);

// The crash recorded in the log `file`: none without a crash block. The reason is the last
// line in which the hosted code's runtime explained itself before dying, otherwise the
// signal named in the block.
std::optional<PreviousCrash> previousCrash(const QString &file);

// The text of the crash block for `signal`, as the handler writes it.
const char *signalText(int signal);

} // namespace CrashLog
} // namespace zentoro
