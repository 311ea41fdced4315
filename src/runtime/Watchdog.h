#pragma once

#include <QObject>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace zentoro {

// Watches, from a thread of its own, what the hosted app can do to the process without
// crashing it: keep the main thread from running (the app's code shares it with the window,
// so nothing else could notice) and write output without end. The first is written to the
// log, so that the app's author can read why the window froze; the second is cut, so the log
// can't fill the disk: its earlier part is dropped, since what explains a crash is at the end.
class Watchdog : public QObject {
public:
    struct Limits {
        std::chrono::milliseconds stuckAfter{10000};
        qint64 logBytes = qint64(64) << 20;
    };

    // Opens the line written when the main thread has been held for `stuckAfter`; the next
    // start reads it.
    static constexpr char stuckLine[] = "Zentoro: the app's code has kept the window from responding for ";

    // `log` is the descriptor the output goes to; it must have been opened for appending.
    explicit Watchdog(int log, Limits limits);
    Watchdog() : Watchdog(2, Limits{}) {}
    ~Watchdog() override;

    // How many times in this process any watchdog found the main thread held: a version that
    // held it while starting is never proved, like one that crashed.
    static int stalls();

private:
    void watch();
    void trimLog();

    const int log_;
    const Limits limits_;
    std::atomic<std::chrono::steady_clock::rep> lastBeat_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool stopping_ = false;
    std::thread thread_;
};

} // namespace zentoro
