#include "runtime/KitMainQueue.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace zentoro {

namespace KitMainQueue {

namespace {

struct Pump {
    std::shared_ptr<const KitEntryPoints> kit;
    QSocketNotifier *notifier = nullptr;
    QTimer *timer = nullptr;
};

Pump &pump()
{
    static Pump instance;
    return instance;
}

} // namespace

void start(const std::shared_ptr<const KitEntryPoints> &kit)
{
    Pump &p = pump();
    if (p.kit)
        return;
    p.kit = kit;
    // Every version library shares the one kit library, so one pump serves them all.
    p.notifier = new QSocketNotifier(kit->mainQueueFd(), QSocketNotifier::Read, qApp);
    QObject::connect(p.notifier, &QSocketNotifier::activated, qApp, [] { service(); });
    p.timer = new QTimer(qApp);
    p.timer->setSingleShot(true);
    p.timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(p.timer, &QTimer::timeout, qApp, [] { service(); });
    service();
}

void service()
{
    Pump &p = pump();
    if (!p.kit)
        return;
    const double next = p.kit->serviceMain();
    if (next < 0) {
        p.timer->stop();
        return;
    }
    // Whole milliseconds, rounded up, so the timer never fires just before its time. A run
    // loop without timers answers with the distant future, far beyond an int of milliseconds:
    // cap the wait at a day, which the queue's descriptor cuts short anyway.
    p.timer->start(std::max(0, int(std::ceil(std::min(next, 86400.0) * 1000))));
}

} // namespace KitMainQueue

} // namespace zentoro
