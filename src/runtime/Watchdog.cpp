#include "runtime/Watchdog.h"

#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zentoro {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds beat{250};

std::atomic<int> stallCount{0};

QByteArray megabytes(qint64 bytes)
{
    return bytes >= (qint64(1) << 20) ? QByteArray::number(bytes >> 20) + " MB" : QByteArray::number(bytes) + " bytes";
}

void writeLine(int descriptor, const QByteArray &line)
{
    ::write(descriptor, line.constData(), size_t(line.size()));
}

} // namespace

Watchdog::Watchdog(int log, Limits limits)
    : log_(log), limits_(limits), lastBeat_(Clock::now().time_since_epoch().count())
{
    // The main thread shows it is alive by running this; when the hosted code holds it, it can't.
    auto *heart = new QTimer(this);
    heart->setInterval(beat);
    connect(heart, &QTimer::timeout, this, [this] { lastBeat_ = Clock::now().time_since_epoch().count(); });
    heart->start();
    thread_ = std::thread([this] { watch(); });
}

Watchdog::~Watchdog()
{
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    thread_.join();
}

int Watchdog::stalls()
{
    return stallCount.load();
}

void Watchdog::watch()
{
    bool reported = false;
    std::unique_lock lock(mutex_);
    while (!wake_.wait_for(lock, beat, [this] { return stopping_; })) {
        trimLog();
        const Clock::duration quiet = Clock::now().time_since_epoch() - Clock::duration(lastBeat_.load());
        if (quiet >= limits_.stuckAfter && !reported) {
            const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(quiet).count();
            ++stallCount;
            writeLine(log_, stuckLine + QByteArray::number(qlonglong(seconds)) + QByteArrayLiteral(" seconds.\n"));
            reported = true;
        } else if (quiet < limits_.stuckAfter) {
            reported = false;
        }
    }
}

void Watchdog::trimLog()
{
    struct stat status {};
    if (::fstat(log_, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= limits_.logBytes)
        return;
    // What explains a crash is at the end: keep the last quarter and drop the rest. Output
    // written between the read and the cut is lost, which a flood can afford.
    const qint64 kept = limits_.logBytes / 4;
    QByteArray tail(kept, Qt::Uninitialized);
    // The log is open for writing only; its file is read through a second descriptor.
    const int reader = ::open(("/proc/self/fd/" + QByteArray::number(log_)).constData(), O_RDONLY | O_CLOEXEC);
    const ssize_t got = reader < 0 ? -1 : ::pread(reader, tail.data(), size_t(kept), status.st_size - kept);
    if (reader >= 0)
        ::close(reader);
    tail.resize(got > 0 ? got : 0);
    tail = tail.mid(tail.indexOf('\n') + 1);
    if (::ftruncate(log_, 0) != 0)
        return;
    // The descriptor appends, so these land at the start of the emptied file.
    writeLine(log_, QByteArrayLiteral("Zentoro: the app's output passed ") + megabytes(limits_.logBytes) +
                        QByteArrayLiteral("; only its end is kept.\n"));
    writeLine(log_, tail);
}

} // namespace zentoro
