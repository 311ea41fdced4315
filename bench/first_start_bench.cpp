// A new user's first start: from the exec of a fresh copy, with an empty support folder, to
// its first frame showing version 1, which the program tells on its console as "Showing
// version 1." right after that frame. Once with the UI kit that `make` prepared beside the
// program, once from a program copied to where no kit was prepared; then the kit's own
// first build alone.
//   first_start_bench <zentoro>
#include "Measure.h"
#include "runtime/Toolchain.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

using namespace zentoro;
using namespace zentoro::bench;

namespace {

// A process environment with a home of its own, as a new user has.
QProcessEnvironment freshHome(const QTemporaryDir &home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home.filePath(QStringLiteral("data")));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
    environment.remove(QStringLiteral("OPENAI_API_KEY"));
    return environment;
}

// Seconds from exec of a new copy of `program` to its first frame with version 1; negative
// when it never came.
double firstStart(const QString &program)
{
    QTemporaryDir home;
    const QString copy = home.filePath(QStringLiteral("First Start"));
    QFile::link(program, copy);
    QProcess process;
    process.setProcessEnvironment(freshHome(home));
    process.setProcessChannelMode(QProcess::MergedChannels);
    QElapsedTimer clock;
    clock.start();
    process.start(copy, {QStringLiteral("-ZentoroNoLogRedirect"), QStringLiteral("YES")});
    QByteArray output;
    double shown = -1;
    while (shown < 0 && clock.elapsed() < 300000 && process.state() != QProcess::NotRunning) {
        if (!process.waitForReadyRead(100))
            continue;
        output += process.readAll();
        if (output.contains("Showing version 1."))
            shown = double(clock.elapsed()) / 1000;
    }
    if (shown < 0)
        std::fprintf(stderr, "No frame with version 1; the program said:\n%s\n", output.constData());
    process.terminate();
    if (!process.waitForFinished(10000))
        process.kill();
    process.waitForFinished();
    return shown;
}

// Seconds that `program --prepare-kit` takes where no kit was prepared before.
double kitBuild(const QString &program)
{
    QTemporaryDir home;
    QProcess process;
    process.setProcessEnvironment(freshHome(home));
    QElapsedTimer clock;
    clock.start();
    process.start(program, {QStringLiteral("--prepare-kit")});
    process.waitForFinished(600000);
    return process.exitCode() == 0 ? double(clock.elapsed()) / 1000 : -1;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: first_start_bench <zentoro>\n");
        return 2;
    }
    if (!await(Toolchain::detect()).isReady()) {
        std::printf("first start: skipped, no Swift compiler\n");
        return 0;
    }
    const QString program = QFileInfo(QString::fromLocal8Bit(argv[1])).absoluteFilePath();
    // As `make` leaves it: the kit prepared beside the program.
    if (QProcess::execute(program, {QStringLiteral("--prepare-kit")}) != 0)
        return 1;
    const double prepared = firstStart(program);

    // The same program where nothing was prepared beside it.
    QTemporaryDir elsewhere;
    const QString bare = elsewhere.filePath(QStringLiteral("zentoro"));
    QFile::copy(program, bare);
    const double unprepared = firstStart(bare);
    const double kit = kitBuild(bare);
    if (prepared < 0 || unprepared < 0 || kit < 0)
        return 1;
    std::printf("first start, fresh support folder, exec to version 1 on screen: %.1f s with the kit make prepared, "
                "%.1f s without\n",
                prepared, unprepared);
    std::printf("the kit's first build: %.1f s\n", kit);
    return 0;
}
