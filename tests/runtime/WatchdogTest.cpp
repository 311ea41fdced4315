// What the hosted app can do without crashing: hold the main thread, and print without end.
#include "runtime/Watchdog.h"

#include "support/Files.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

using namespace zentoro;
using namespace std::chrono_literals;

TEST(Watchdog, AHeldMainThreadIsLoggedAndEndlessOutputIsCutToItsEnd)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("current.log"));
    const int log = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    ASSERT_GE(log, 0);
    {
        Watchdog watchdog(log, {600ms, 4096});
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 500)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        EXPECT_EQ(test::readText(path), QString()) << "a live main thread isn't reported";

        QThread::msleep(1200); // the hosted code holding the main thread
        EXPECT_TRUE(
            test::readText(path).startsWith("Zentoro: the app's code has kept the window from responding for "));

        const QByteArray flood(1000, 'x');
        for (int line = 0; line < 20; ++line) {
            ASSERT_EQ(::write(log, flood.constData(), size_t(flood.size())), flood.size());
            ::write(log, "\n", 1);
        }
        ::write(log, "last words\n", 11);
        clock.restart();
        while (clock.elapsed() < 1000 && QFileInfo(path).size() > 4096)
            QThread::msleep(50);
    }
    ::close(log);
    const QString kept = test::readText(path);
    EXPECT_LE(kept.size(), 4096 + 200);
    EXPECT_TRUE(kept.startsWith("Zentoro: the app's output passed 4096 bytes; only its end is kept.\n"))
        << kept.left(200).toStdString();
    EXPECT_TRUE(kept.endsWith("last words\n")) << kept.right(300).toStdString();
}
