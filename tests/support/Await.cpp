#include "support/Await.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

namespace zentoro::test {

bool spinUntil(const std::function<bool()> &condition, std::chrono::milliseconds timeout)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > timeout.count())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents();
        QThread::msleep(1);
    }
    return true;
}

} // namespace zentoro::test
