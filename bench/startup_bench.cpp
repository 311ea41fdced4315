// Start-up time: from the exec of the zentoro executable to its first painted frame with a
// loaded version, which the program tells on its console as "Showing version <n>." right
// after that frame. The copy's first version is built once, beforehand; each run then starts
// the program anew on it and ends it with SIGTERM, as a session logging out would.
//   startup_bench <zentoro>
#include "Measure.h"
#include "runtime/Runtime.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
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

constexpr int runs = 7;
const QString copyName = QStringLiteral("Startup Bench");

double nowMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

void spin(const std::function<bool()> &until, int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (!until() && clock.elapsed() < timeoutMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
}

// The copy with its first version built and proved, kept from an earlier run when it has one.
// False when there is no compiler to build it with.
bool prepareCopy(const Workspace &workspace)
{
    const RuntimeState stored = RuntimeState::read(workspace.stateFile());
    if (stored.current && QFile::exists(workspace.dylib(*stored.current)) && !stored.loading)
        return true;
    QDir(workspace.root).removeRecursively();
    workspace.prepare();
    Runtime builder(workspace);
    await(builder.checkToolchain());
    if (!builder.toolchain().isReady())
        return false;
    const BuildOutcome outcome = await(builder.build(QStringLiteral("The original app")));
    if (!outcome.success()) {
        std::fprintf(stderr, "The starter app didn't build:\n%s\n", qPrintable(outcome.failure()->text));
        std::exit(1);
    }
    // A version still on probation would count as crashed at the next start.
    spin([&] { return !builder.state().loading; }, 10000);
    return true;
}

// One start: milliseconds from exec to the line after the first frame; negative on failure.
double startOnce(const QString &program)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    const double started = nowMs();
    process.start(program, {QStringLiteral("-ZentoroNoLogRedirect"), QStringLiteral("YES")});
    double shown = -1;
    QByteArray output;
    QElapsedTimer clock;
    clock.start();
    while (shown < 0 && clock.elapsed() < 60000 && process.state() != QProcess::NotRunning) {
        if (!process.waitForReadyRead(100))
            continue;
        output += process.readAll();
        if (output.contains("Showing version "))
            shown = nowMs() - started;
    }
    if (shown < 0)
        std::fprintf(stderr, "No frame with a version; the program said:\n%s\n", output.constData());
    process.terminate();
    if (!process.waitForFinished(10000)) {
        process.kill();
        process.waitForFinished();
    }
    return shown;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Zentoro"));
    QApplication::setApplicationName(QStringLiteral("Zentoro"));
    if (argc < 2) {
        std::fprintf(stderr, "usage: startup_bench <zentoro>\n");
        return 2;
    }
    const Workspace workspace = Workspace::forName(copyName);
    if (!prepareCopy(workspace)) {
        std::printf("start-up to the first frame with a version: skipped, no Swift compiler\n");
        return 0;
    }
    // The copy's name is the program's file name.
    QTemporaryDir folder;
    const QString program = folder.filePath(copyName);
    QFile::link(QFileInfo(QString::fromLocal8Bit(argv[1])).absoluteFilePath(), program);

    // The first start warms the disk cache and is not counted.
    if (startOnce(program) < 0)
        return 1;
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const double ms = startOnce(program);
        if (ms < 0)
            return 1;
        times.push_back(ms);
    }
    std::sort(times.begin(), times.end());
    std::printf("start-up, exec to the first frame with version %d: median %.0f ms (%d runs, %.0f to %.0f ms)\n",
                *RuntimeState::read(workspace.stateFile()).current, times[times.size() / 2], runs, times.front(),
                times.back());
    return 0;
}
