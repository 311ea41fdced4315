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

// How much of the end of the run before's log the crash judgement reads: the crash block and
// the runtime's words just ahead of it. A run that printed for hours needn't slow the start.
inline constexpr qint64 judgedBytes = qint64(1) << 20;
// The newest part of an older log that is kept; the watchdog cuts the running log to as much.
inline constexpr qint64 keptBytes = qint64(16) << 20;

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
    // No crash: the app's code held the window until the watchdog wrote so. That counts only
    // for a version still starting, which the run then never proved.
    bool hung = false;
    bool operator==(const PreviousCrash &) const = default;
};

// Once per process, before any hosted code runs: rotates the logs, sends descriptors 1 and
// 2 into "current.log" (unless `ZentoroNoLogRedirect` is set), installs the crash handler,
// prints the header line and returns the crash of the run before, which is also kept as
// "crash.log" (a second name of "previous.log", not a copy). A previous log over `keptBytes`
// is cut to its end a few seconds later on a thread of the global pool, so the first frame
// neither waits for it nor shares the processor with it.
// Everything here fails silently: there is nowhere yet to report it.
std::optional<PreviousCrash> start(const QString &logs);

// Cuts the log `file` down to its newest `keptBytes`, from a line's start, behind a line that
// says so. A smaller log is left alone.
void keepEnd(const QString &file);

// The crash recorded in the last `judgedBytes` of the log `file`: none without a crash block
// or a watchdog's line of a held window. The reason is the last line in which the hosted
// code's runtime explained itself before dying, otherwise the signal named in the block.
std::optional<PreviousCrash> previousCrash(const QString &file);

// The text of the crash block for `signal`, as the handler writes it.
const char *signalText(int signal);

} // namespace CrashLog
} // namespace zentoro
