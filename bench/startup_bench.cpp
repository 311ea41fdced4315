// Start-up time: from the exec of the zentoro executable to its first painted frame with a
// loaded version, which the program tells on its console as "Showing version <n>." right
// after that frame. The copy's first version is built once, beforehand; each run then starts
// the program anew on it and ends it with SIGTERM, as a session logging out would. Runs
// alternate between an empty log of the run before, one of 1 GB (an app that printed every
// frame for hours), and the same ending in a crash, and the medians are compared.
//   startup_bench <zentoro>
#include "Measure.h"
#include "runtime/CrashLog.h"
#include "runtime/Runtime.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <QCoroTask>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <map>
#include <vector>

#include <unistd.h>

using namespace zentoro;
using namespace zentoro::bench;

namespace {

constexpr int runs = 15;
constexpr qint64 hugeLogBytes = qint64(1) << 30;
const QString copyName = QStringLiteral("Startup Bench");

double nowMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
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
    // A version still on probation would count as crashed at the next start, and here none
    // is ever drawn to prove itself.
    RuntimeState proven = builder.state();
    proven.loading.reset();
    proven.lastGood = proven.current;
    proven.write(workspace.stateFile());
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

const QByteArray crashBlock = "Fatal error: Index out of range\n\n*** ZENTORO CRASH: SIGILL (illegal instruction) ***\n"
                              "Backtrace:\n";

// A log of `bytes` of lines such as an app printing every frame writes.
bool writeHugeLog(const QString &path, qint64 bytes)
{
    QFile file(path);
    if (file.exists() && file.size() == bytes)
        return true;
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    QByteArray chunk;
    for (int frame = 0; chunk.size() < (1 << 20); ++frame)
        chunk += "frame " + QByteArray::number(frame) + ": drew 24 rows, 3 images, offset 1280.5\n";
    for (qint64 written = 0; written < bytes; written += chunk.size()) {
        if (file.write(chunk.left(bytes - written)) < 0)
            return false;
    }
    return true;
}

enum class Before { Empty, Huge, HugeCrashed };

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

    // The run before's log is what the program's own last run left, unless replaced here: a
    // second name of the huge log (the start renames it, so it needn't be written anew), with
    // the crash block added for the run and taken off after it, or none.
    const QString current = CrashLog::url(CrashLog::Which::Current, workspace.logs());
    const QString huge = workspace.root + QStringLiteral("/bench-huge.log");
    if (!writeHugeLog(huge, hugeLogBytes)) {
        std::fprintf(stderr, "Couldn't write a log of 1 GB at %s.\n", qPrintable(huge));
        return 1;
    }
    const auto startWith = [&](Before before) {
        QFile::remove(current);
        if (before != Before::Empty &&
            ::link(QFile::encodeName(huge).constData(), QFile::encodeName(current).constData()) != 0)
            return -1.0;
        QFile log(huge);
        if (before == Before::HugeCrashed && log.open(QIODevice::Append))
            log.write(crashBlock);
        const double ms = startOnce(program);
        log.resize(hugeLogBytes);
        return ms;
    };

    // The first starts warm the disk cache and are not counted.
    for (const Before before : {Before::Empty, Before::Huge, Before::HugeCrashed}) {
        if (startWith(before) < 0)
            return 1;
    }
    std::map<Before, std::vector<double>> times;
    for (int i = 0; i < runs; ++i) {
        for (const Before before : {Before::Empty, Before::Huge, Before::HugeCrashed}) {
            const double ms = startWith(before);
            if (ms < 0)
                return 1;
            times[before].push_back(ms);
        }
    }
    QFile::remove(huge);
    QFile::remove(current);
    // Its second name, should a run have ended before cutting it.
    QFile::remove(CrashLog::url(CrashLog::Which::Crash, workspace.logs()));

    const int version = *RuntimeState::read(workspace.stateFile()).current;
    const auto line = [&](const char *what, Before before) {
        const std::vector<double> &series = times[before];
        std::printf("start-up, exec to the first frame with version %d, %s: median %.0f ms (%d runs, %.0f to %.0f "
                    "ms)\n",
                    version, what, median(series), runs, *std::min_element(series.begin(), series.end()),
                    *std::max_element(series.begin(), series.end()));
    };
    line("the run before's log empty", Before::Empty);
    line("the run before's log 1 GB", Before::Huge);
    line("the run before's log 1 GB ending in a crash", Before::HugeCrashed);
    std::printf("start-up with a 1 GB log against an empty one: %.2fx; after a crash with a 1 GB log: %.2fx\n",
                median(times[Before::Huge]) / median(times[Before::Empty]),
                median(times[Before::HugeCrashed]) / median(times[Before::Empty]));
    return 0;
}
