#include "ui/QuitSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <atomic>
#include <thread>

#include <fcntl.h>
#include <semaphore.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

namespace zentoro::QuitSignals {

namespace {

int pipeEnds[2] = {-1, -1};
sem_t firstSignal;
std::atomic<int> received{0};
std::atomic<int> whichSignal{0};

// Lets the signal do what it does when nobody handles it.
void endBy(int signal)
{
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

// A signal handler may only write, post and raise. The first signal asks the event loop to
// quit and wakes the watchdog; a second one ends the process at once.
extern "C" void askToQuit(int signal)
{
    if (received.fetch_add(1) > 0) {
        endBy(signal);
        return;
    }
    whichSignal.store(signal);
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
    ::sem_post(&firstSignal);
}

void watch()
{
    while (::sem_wait(&firstSignal) != 0) {
    }
    timespec remaining{std::chrono::duration_cast<std::chrono::seconds>(grace).count(), 0};
    while (::clock_nanosleep(CLOCK_MONOTONIC, 0, &remaining, &remaining) != 0) {
    }
    // Still here: the orderly quit never came to its end.
    endBy(whichSignal.load());
}

} // namespace

void install()
{
    if (pipeEnds[0] >= 0 || ::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    ::sem_init(&firstSignal, 0, 0);
    std::thread(watch).detach();
    auto *notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [] {
        char byte = 0;
        while (::read(pipeEnds[0], &byte, 1) > 0) {
        }
        QCoreApplication::quit();
    });
    struct sigaction action {};
    action.sa_handler = askToQuit;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}

} // namespace zentoro::QuitSignals
