#include "runtime/CrashLog.h"

#include "core/AtomicFile.h"
#include "core/Defaults.h"
#include "runtime/Watchdog.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThreadPool>
#include <QTimer>

#include <execinfo.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace zentoro::CrashLog {

namespace {

constexpr int frameLimit = 128;
constexpr std::chrono::seconds upkeepDelay{3};
// Both made before the handler is installed, so the handler never allocates.
void **frames = nullptr;
char *alternateStack = nullptr;

constexpr int fatalSignals[] = {SIGSEGV, SIGBUS, SIGILL, SIGTRAP, SIGABRT, SIGFPE};

void writeAll(const char *text, size_t length)
{
    while (length > 0) {
        const ssize_t written = ::write(STDERR_FILENO, text, length);
        if (written <= 0)
            return;
        text += written;
        length -= size_t(written);
    }
}

void writeText(const char *text)
{
    size_t length = 0;
    while (text[length])
        ++length;
    writeAll(text, length);
}

// Runs on whichever thread faulted, at any moment: only write, backtrace,
// backtrace_symbols_fd, signal and raise, and no allocation.
extern "C" void zentoroCrashHandler(int signal)
{
    writeText("\n*** ZENTORO CRASH: ");
    writeText(signalText(signal));
    writeText(" ***\nBacktrace:\n");
    const int count = ::backtrace(frames, frameLimit);
    ::backtrace_symbols_fd(frames, count, STDERR_FILENO);
    // Die of the same cause, so the system's own crash reporting sees it.
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

void installHandler()
{
    if (!frames) {
        frames = new void *[frameLimit];
        // The first call loads the unwinder, which allocates; do it now rather than in the handler.
        ::backtrace(frames, 1);
    }
    // Runaway recursion in hosted code overflows the stack; the handler needs a stack of its own then.
    if (!alternateStack) {
        alternateStack = new char[SIGSTKSZ * 4];
        stack_t stack{};
        stack.ss_sp = alternateStack;
        stack.ss_size = SIGSTKSZ * 4;
        ::sigaltstack(&stack, nullptr);
    }
    struct sigaction action {};
    action.sa_handler = zentoroCrashHandler;
    action.sa_flags = SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (int fatal : fatalSignals)
        ::sigaction(fatal, &action, nullptr);
}

void redirectOutput(const QString &file)
{
    const QByteArray path = QFile::encodeName(file);
    const int descriptor = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0644);
    if (descriptor < 0)
        return;
    std::fflush(stdout);
    std::fflush(stderr);
    ::dup2(descriptor, STDOUT_FILENO);
    ::dup2(descriptor, STDERR_FILENO);
    ::close(descriptor);
    // A line printed just before a crash must already be in the file.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
}

// Gives the file at `from` the second name `to`, replacing what had that name in one step.
bool linkOver(const QString &from, const QString &to)
{
    const QByteArray target = QFile::encodeName(to);
    const QByteArray temporary = target + ".link";
    ::unlink(temporary.constData());
    if (::link(QFile::encodeName(from).constData(), temporary.constData()) != 0)
        return false;
    if (::rename(temporary.constData(), target.constData()) == 0)
        return true;
    ::unlink(temporary.constData());
    return false;
}

// The last `bytes` of `file` from the first line that starts within them; empty when it
// can't be read.
QByteArray endOf(const QString &file, qint64 bytes)
{
    QFile log(file);
    if (!log.open(QIODevice::ReadOnly))
        return {};
    const qint64 size = log.size();
    const qint64 from = std::max<qint64>(0, size - bytes);
    if (!log.seek(from))
        return {};
    QByteArray end = log.read(size - from);
    if (from > 0)
        end.remove(0, end.indexOf('\n') + 1);
    return end;
}

QString trimmedOf(QString text, const QString &characters)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && characters.contains(text[begin]))
        ++begin;
    while (end > begin && characters.contains(text[end - 1]))
        --end;
    return text.mid(begin, end - begin);
}

} // namespace

const char *signalText(int signal)
{
    switch (signal) {
    case SIGILL: return "SIGILL (illegal instruction)";
    case SIGTRAP: return "SIGTRAP (Swift runtime trap: fatalError, force unwrap of nil, array index out of range, …)";
    case SIGABRT: return "SIGABRT (abort)";
    case SIGFPE: return "SIGFPE (arithmetic error)";
    case SIGBUS: return "SIGBUS (bad memory access)";
    case SIGSEGV: return "SIGSEGV (bad memory access)";
    default: return "signal";
    }
}

QString rawValue(Which which)
{
    switch (which) {
    case Which::Current: return QStringLiteral("current");
    case Which::Previous: return QStringLiteral("previous");
    case Which::Crash: return QStringLiteral("crash");
    }
    return {};
}

std::optional<Which> which(const QString &rawValue)
{
    for (Which candidate : {Which::Current, Which::Previous, Which::Crash}) {
        if (CrashLog::rawValue(candidate) == rawValue)
            return candidate;
    }
    return std::nullopt;
}

QString url(Which which, const QString &logs)
{
    return logs + u'/' + rawValue(which) + QStringLiteral(".log");
}

std::optional<PreviousCrash> start(const QString &logs)
{
    const QString current = url(Which::Current, logs);
    const QString previous = url(Which::Previous, logs);
    QFile::remove(previous);
    QFile::rename(current, previous);

    if (!Defaults::flag(QStringLiteral("ZentoroNoLogRedirect")))
        redirectOutput(current);
    installHandler();
    // For the life of the process, like the redirection it looks after.
    static const Watchdog *const watchdog = new Watchdog();
    Q_UNUSED(watchdog);

    const QByteArray header = QStringLiteral("Zentoro started %1, pid %2\n")
                                  .arg(QDateTime::currentDateTimeUtc().toString(Qt::ISODate))
                                  .arg(::getpid())
                                  .toUtf8();
    std::fputs(header.constData(), stdout);
    std::fflush(stdout);

    std::optional<PreviousCrash> crash = previousCrash(previous);
    // A run that only held the window still keeps the last real crash's log.
    const bool keep = crash && !crash->hung;
    const QString kept = url(Which::Crash, logs);
    const bool linked = keep && linkOver(previous, kept);
    // A cut that a quit interrupted left its temporary file.
    const QDir folder(logs);
    for (const QString &left : folder.entryList({QStringLiteral("*.log.tmp-*")}, QDir::Files))
        QFile::remove(folder.filePath(left));
    if (QFileInfo(previous).size() > keptBytes || QFileInfo(kept).size() > keptBytes || (keep && !linked)) {
        // Cutting copies up to `keptBytes`: later, so that the first frame has the processor.
        QTimer::singleShot(upkeepDelay, [previous, kept, keep] {
            QThreadPool::globalInstance()->start([previous, kept, keep] {
                keepEnd(previous);
                if (!keep) {
                    keepEnd(kept);
                } else if (!linkOver(previous, kept)) {
                    QFile log(previous);
                    if (log.open(QIODevice::ReadOnly))
                        AtomicFile::write(kept, log.readAll(), 0644, AtomicFile::Durability::Written);
                }
            });
        });
    }
    return crash;
}

void keepEnd(const QString &file)
{
    if (QFileInfo(file).size() <= keptBytes)
        return;
    const QByteArray note = QByteArrayLiteral("Zentoro: this log passed ") + QByteArray::number(keptBytes >> 20) +
                            QByteArrayLiteral(" MB; only its end is kept.\n");
    AtomicFile::write(file, note + endOf(file, keptBytes - note.size()), 0644, AtomicFile::Durability::Written);
}

std::optional<PreviousCrash> previousCrash(const QString &file)
{
    if (!QFileInfo::exists(file))
        return std::nullopt;
    const QByteArray end = endOf(file, judgedBytes);
    const QByteArrayView markerBytes(marker);
    const QByteArrayView stuckBytes(Watchdog::stuckLine);
    QByteArrayView reason;
    QByteArrayView markerLine;
    QByteArrayView stuckLine;
    for (qsizetype start = 0; start < end.size();) {
        qsizetype stop = end.indexOf('\n', start);
        if (stop < 0)
            stop = end.size();
        QByteArrayView line = QByteArrayView(end).sliced(start, stop - start);
        start = stop + 1;
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.contains("Fatal error") || line.contains("Terminating app due to uncaught exception"))
            reason = line;
        if (line.contains(markerBytes))
            markerLine = line;
        if (line.startsWith(stuckBytes))
            stuckLine = line;
    }
    if (markerLine.isEmpty()) {
        if (stuckLine.isEmpty())
            return std::nullopt;
        QString text = QString::fromUtf8(stuckLine.sliced(QByteArrayView("Zentoro: ").size()));
        return PreviousCrash{trimmedOf(text, QStringLiteral(" .")), true};
    }
    if (!reason.isEmpty())
        return PreviousCrash{QString::fromUtf8(reason)};
    QString text = QString::fromUtf8(markerLine);
    text.remove(QString::fromLatin1(marker));
    text.remove(QStringLiteral("***"));
    text = trimmedOf(text, QStringLiteral(" \t:"));
    return PreviousCrash{text.isEmpty() ? QStringLiteral("crash") : text};
}

} // namespace zentoro::CrashLog
