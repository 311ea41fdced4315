// Figures for the console log, the screenshot and the crash fallback:
//   crash_bench read_log                 read_log on a 1 GB log against a 1 MB one
//   crash_bench screenshot               a screenshot of a 1200 × 760 window
//   crash_bench fallback <zentoro>       a crash at start to the fallback's first frame
#include "Measure.h"
#include "agent/BuildTools.h"
#include "runtime/PluginContainerView.h"
#include "runtime/Runtime.h"
#include "runtime/Shell.h"

#include "resources/Kit/Sources/ZentoroHostInterface/include/zentoro_host.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGridLayout>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <QCoroTask>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

using namespace zentoro;
using namespace zentoro::bench;

namespace {

double nowMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

template <typename Work>
double medianMs(int runs, Work work)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const double start = nowMs();
        work();
        times.push_back(nowMs() - start);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void spin(const std::function<bool()> &until, int timeoutMs = 60000)
{
    QElapsedTimer clock;
    clock.start();
    while (!until() && clock.elapsed() < timeoutMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
}

QByteArray logLines(qint64 bytes)
{
    QByteArray text;
    for (int i = 0; text.size() < bytes; ++i)
        text += "2026-03-01T09:30:12Z app: line " + QByteArray::number(i) + " of the hosted app's output, ünïcödé\n";
    return text.left(bytes);
}

int readLog()
{
    QTemporaryDir home;
    const Workspace small{QStringLiteral("Small"), home.filePath(QStringLiteral("Small"))};
    const Workspace large{QStringLiteral("Large"), home.filePath(QStringLiteral("Large"))};
    QDir().mkpath(small.logs());
    QDir().mkpath(large.logs());
    const QByteArray megabyte = logLines(1 << 20);
    {
        QFile file(small.logs() + QStringLiteral("/current.log"));
        file.open(QIODevice::WriteOnly);
        file.write(megabyte);
    }
    {
        // Real lines at both ends and a hole between them: a 1 GB file made in an instant.
        QFile file(large.logs() + QStringLiteral("/current.log"));
        file.open(QIODevice::WriteOnly);
        file.write(megabyte);
        file.resize((qint64(1) << 30) - megabyte.size());
        file.seek(file.size());
        file.write(megabyte);
    }
    const double smallMs = medianMs(31, [&] { BuildTools::readLog(small, QStringLiteral("current")); });
    const double largeMs = medianMs(31, [&] { BuildTools::readLog(large, QStringLiteral("current")); });
    std::printf("read_log, 1 MB log: %.3f ms median\n", smallMs);
    std::printf("read_log, 1 GB log: %.3f ms median (ratio %.2f)\n", largeMs, largeMs / smallMs);
    return 0;
}

// A version whose factory gives no view: the window's content is ordinary widgets, so the
// figure is the capture and the encoding, not any hosted app's drawing.
bool makeEmptyVersion(const Workspace &workspace, int number)
{
    const QString cc = QStandardPaths::findExecutable(QStringLiteral("cc"));
    if (cc.isEmpty())
        return false;
    QDir().mkpath(workspace.version(number));
    const QString source = workspace.version(number) + QStringLiteral("/lib.c");
    QFile file(source);
    file.open(QIODevice::WriteOnly);
    file.write("void *zentoro_make_root_view(void) { return 0; }\n"
               "int zentoro_kit_interface_version(void) { return " +
               QByteArray::number(ZENTORO_HOST_INTERFACE_VERSION) + "; }\n");
    // The kit's other entry points are only looked up while the factory makes no view.
    for (const char *name :
         {"zentoro_view_attach", "zentoro_view_release", "zentoro_view_set_size", "zentoro_view_set_appearance",
          "zentoro_view_update", "zentoro_view_render", "zentoro_view_next_frame", "zentoro_view_pointer",
          "zentoro_view_scroll", "zentoro_view_key", "zentoro_view_text_changed", "zentoro_view_text_submitted",
          "zentoro_view_text_focus", "zentoro_kit_main_queue_fd", "zentoro_kit_service_main"})
        file.write("void " + QByteArray(name) + "(void) {}\n");
    file.close();
    return await(Shell::run(cc, {"-shared", "-fPIC", "-o", workspace.dylib(number), source})).status == 0;
}

int screenshot()
{
    QTemporaryDir home;
    const Workspace workspace{QStringLiteral("Shot"), home.filePath(QStringLiteral("Shot"))};
    if (!makeEmptyVersion(workspace, 1)) {
        std::printf("screenshot: skipped, no C compiler to make a version with\n");
        return 0;
    }
    Runtime runtime(workspace);
    QWidget window;
    window.resize(1200, 760);
    auto *layout = new QGridLayout(&window);
    auto *container = new PluginContainerView(&runtime);
    layout->addWidget(container);
    auto *grid = new QGridLayout;
    for (int row = 0; row < 12; ++row) {
        for (int column = 0; column < 4; ++column) {
            QWidget *cell = column % 2 ? static_cast<QWidget *>(new QPushButton(QStringLiteral("Button %1").arg(row)))
                                       : new QLabel(QStringLiteral("Row %1, a line of text").arg(row));
            grid->addWidget(cell, row, column);
        }
    }
    container->layout()->addItem(grid);
    window.show();
    if (runtime.load(1)) {
        std::printf("screenshot: skipped, the version didn't load\n");
        return 0;
    }
    spin([&] { return container->shownGeneration() == runtime.generation() && container->isVisible(); });
    QByteArray png;
    const double captureMs = medianMs(21, [&] {
        png = runtime.snapshot(BuildTools::screenshotWidth).value_or(QByteArray());
    });
    const QString folder = workspace.build() + QStringLiteral("/Screenshots");
    const double storedMs = medianMs(21, [&] {
        BuildTools::screenshotResult(runtime.snapshot(BuildTools::screenshotWidth).value_or(QByteArray()), folder);
    });
    std::printf("screenshot of a 1200x760 window: %.1f ms median to PNG (%lld bytes), %.1f ms with the file stored\n",
                captureMs, static_cast<long long>(png.size()), storedMs);
    return 0;
}

const QByteArray trappingRoot = "import SwiftUI\n\nstruct AppRoot: View {\n    let title: String? = nil\n"
                                "    var body: some View {\n        Text(title!)\n    }\n}\n";

// The next start after a crash, in a process of its own: launch, then the fallback's first
// frame. Writes the moment of that frame to `result`.
int launchAfterCrash(const QString &result)
{
    Runtime runtime(Workspace::forName(QStringLiteral("Crash Bench")));
    QWidget window;
    window.resize(1200, 760);
    auto *layout = new QGridLayout(&window);
    auto *container = new PluginContainerView(&runtime);
    layout->addWidget(container);
    runtime.launch();
    window.show();
    // Watched from the application, so the very first paint of the new view is seen.
    struct PaintWatch : QObject {
        PluginContainerView *container = nullptr;
        double painted = 0;
        bool eventFilter(QObject *object, QEvent *event) override
        {
            if (event->type() == QEvent::Paint && painted == 0 && container->content() &&
                object == container->content())
                painted = nowMs();
            return false;
        }
    } watch;
    watch.container = container;
    qApp->installEventFilter(&watch);
    spin([&] { return watch.painted != 0; }, 30000);
    const double painted = watch.painted;
    QFile file(result);
    file.open(QIODevice::WriteOnly);
    file.write(QByteArray::number(painted, 'f', 3) + ' ' + QByteArray::number(runtime.loadedVersion().value_or(0)));
    return 0;
}

int fallback(const QString &zentoro, const QString &self)
{
    const Workspace workspace = Workspace::forName(QStringLiteral("Crash Bench"));
    QDir(workspace.root).removeRecursively();
    workspace.prepare();
    {
        Runtime builder(workspace);
        await(builder.checkToolchain());
        if (!builder.toolchain().isReady()) {
            std::printf("crash at start to the fallback's first frame: skipped, no Swift compiler\n");
            return 0;
        }
        if (!await(builder.build(QStringLiteral("The original app"))).success())
            return 1;
        QFile root(workspace.sources() + QStringLiteral("/AppRoot.swift"));
        root.open(QIODevice::WriteOnly | QIODevice::Truncate);
        root.write(trappingRoot);
        root.close();
        if (!await(builder.build(QStringLiteral("Trap"))).success())
            return 1;
    }
    RuntimeState state = RuntimeState::read(workspace.stateFile());
    state.lastGood = 1;
    state.current = 2;
    state.loading.reset();
    state.write(workspace.stateFile());

    QTemporaryDir links;
    const QString copy = links.filePath(QStringLiteral("Crash Bench"));
    QFile::link(zentoro, copy);
    QProcess crashing;
    crashing.setStandardOutputFile(QProcess::nullDevice());
    crashing.setStandardErrorFile(QProcess::nullDevice());
    const double crashStart = nowMs();
    crashing.start(copy, {});
    crashing.waitForFinished(60000);
    const double crashedAt = nowMs();
    if (crashing.exitStatus() != QProcess::CrashExit) {
        std::printf("crash at start: the trapping version didn't crash\n");
        return 1;
    }

    const QString result = links.filePath(QStringLiteral("frame"));
    QProcess next;
    next.setStandardOutputFile(QProcess::nullDevice());
    next.setStandardErrorFile(QProcess::nullDevice());
    const double nextStart = nowMs();
    next.start(self, {QStringLiteral("launch-after-crash"), result});
    next.waitForFinished(60000);
    QFile file(result);
    file.open(QIODevice::ReadOnly);
    const QList<QByteArray> figures = file.readAll().split(' ');
    if (figures.size() != 2 || figures[1] != "1") {
        std::printf("crash at start: the next start didn't show version 1\n");
        return 1;
    }
    std::printf("crash at start: the trapping version died %.0f ms after its process started\n",
                crashedAt - crashStart);
    std::printf("crash at start to the fallback's first frame: %.0f ms from the next process's start\n",
                figures[0].toDouble() - nextStart);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Zentoro"));
    QApplication::setApplicationName(QStringLiteral("Zentoro"));
    const QStringList arguments = QCoreApplication::arguments();
    const QString what = arguments.value(1);
    if (what == u"read_log")
        return readLog();
    if (what == u"screenshot")
        return screenshot();
    if (what == u"fallback" && arguments.size() > 2)
        return fallback(arguments[2], QCoreApplication::applicationFilePath());
    if (what == u"launch-after-crash" && arguments.size() > 2)
        return launchAfterCrash(arguments[2]);
    std::fprintf(stderr, "usage: crash_bench read_log | screenshot | fallback <zentoro>\n");
    return 2;
}
