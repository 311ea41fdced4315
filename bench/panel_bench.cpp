// Opening a long conversation in the agent panel against a short one: the time from
// replacing the transcript to its first painted frame, and the resident memory after it.
// The long one has 5,000 rows, 500 of them tool rows with 6,000-character details and 50
// with screenshots; the short one is its last 50 rows, so both show the same screenful.
#include "agent/Agent.h"
#include "ui/AgentPanel.h"
#include "ui/LazyColumn.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace zentoro;

namespace {

constexpr qsizetype longCount = 5000;
constexpr qsizetype shortCount = 50;
constexpr int runs = 5;

QString screenshot(const QTemporaryDir &dir, qsizetype index)
{
    const QString path = dir.filePath(QStringLiteral("shot-%1.png").arg(index));
    QImage image(1440, 900, QImage::Format_RGB32);
    image.fill(QColor::fromHsv(int(index * 7 % 360), 120, 220));
    QPainter painter(&image);
    painter.setPen(Qt::black);
    painter.setFont(QFont(QStringLiteral("Sans"), 40));
    painter.drawText(image.rect(), Qt::AlignCenter, QStringLiteral("Version %1").arg(index));
    painter.end();
    image.save(path);
    return path;
}

ChatItem row(qsizetype index, const QTemporaryDir &dir)
{
    if (index % 10 == 5) {
        ChatItem item = ChatItem::make(ChatItem::Kind::Tool, QStringLiteral("Edited Sources/View%1.swift").arg(index),
                                       QStringLiteral("pencil"));
        item.detail = QStringLiteral("- let old = %1\n+ let new = %1 // changed\n").arg(index).repeated(150).left(6000);
        if (index % 100 == 95)
            item.imagePath = screenshot(dir, index);
        return item;
    }
    switch (index % 3) {
    case 0:
        return ChatItem::make(ChatItem::Kind::User,
                              QStringLiteral("Please make step %1 of the timer a bit nicer").arg(index));
    case 1:
        return ChatItem::make(ChatItem::Kind::Assistant,
                              QStringLiteral("I changed **step %1**: the ring now uses `Circle().trim` and a softer "
                                             "colour, and the buttons line up.")
                                  .arg(index));
    default:
        return ChatItem::make(ChatItem::Kind::Event, QStringLiteral("Restarted"), QStringLiteral("arrow.clockwise"));
    }
}

long residentKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    }
    return -1;
}

// Counts the paints of the transcript's viewport.
struct PaintWatcher : QObject {
    int paints = 0;
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};

// One measured case in this process: prints "<median ms> <resident kB>".
int measure(qsizetype count)
{
    QTemporaryDir dir;
    QList<ChatItem> items;
    for (qsizetype index = longCount - count; index < longCount; ++index)
        items.append(row(index, dir));

    Agent agent{AgentOperations{}};
    AgentPanel panel(agent);
    panel.resize(380, 760);
    panel.show();
    PaintWatcher watcher;
    panel.transcript()->viewport()->installEventFilter(&watcher);
    QApplication::processEvents();

    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        agent.setItems({});
        QApplication::processEvents();
        const int before = watcher.paints;
        QElapsedTimer clock;
        clock.start();
        agent.setItems(items);
        while (watcher.paints == before || panel.transcript()->builtCount() == 0)
            QApplication::processEvents(QEventLoop::AllEvents, 5);
        times.push_back(clock.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    std::printf("%.2f %ld\n", times[times.size() / 2], residentKilobytes());
    return 0;
}

struct Figures {
    double milliseconds = 0;
    long kilobytes = 0;
};

Figures runCase(const QString &program, qsizetype count)
{
    QProcess child;
    child.start(program, {QStringLiteral("--case"), QString::number(count)});
    child.waitForFinished(300000);
    const QList<QByteArray> parts = child.readAllStandardOutput().trimmed().split(' ');
    if (parts.size() != 2)
        return {};
    return {parts[0].toDouble(), parts[1].toLong()};
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() == 3 && arguments[1] == u"--case")
        return measure(arguments[2].toLongLong());

    const Figures small = runCase(QApplication::applicationFilePath(), shortCount);
    const Figures large = runCase(QApplication::applicationFilePath(), longCount);
    std::printf("open %lld rows: first frame %.1f ms, resident %.1f MB\n", (long long)shortCount, small.milliseconds,
                small.kilobytes / 1024.0);
    std::printf("open %lld rows: first frame %.1f ms, resident %.1f MB\n", (long long)longCount, large.milliseconds,
                large.kilobytes / 1024.0);
    const double ratio = small.milliseconds > 0 ? large.milliseconds / small.milliseconds : 0;
    std::printf("first-frame ratio %.2f (goal under 3): %s\n", ratio, ratio > 0 && ratio < 3 ? "met" : "NOT MET");
    return 0;
}
