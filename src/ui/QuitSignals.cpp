#include "ui/QuitSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace zentoro::QuitSignals {

namespace {

int pipeEnds[2] = {-1, -1};
volatile sig_atomic_t received = 0;

// The quit asked for, carried out by the system: the hosted app's code shares the main thread
// and may hold it, so an orderly quit can't be the only way out.
extern "C" void endNow(int)
{
    const int signal = received;
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

// A signal handler may only write; the event loop reads the byte and quits. A second signal,
// or none answered within a few seconds, ends the process as that signal would have.
extern "C" void askToQuit(int signal)
{
    if (received) {
        endNow(signal);
        return;
    }
    received = signal;
    ::signal(SIGALRM, endNow);
    ::alarm(orderlySeconds);
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
}

} // namespace

void install()
{
    if (pipeEnds[0] >= 0 || ::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
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
