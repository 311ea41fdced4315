#include "runtime/KitPreparation.h"

#include "core/Log.h"
#include "core/MainTask.h"
#include "runtime/Kit.h"
#include "runtime/Toolchain.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <cstdio>

namespace zentoro::Kit {

namespace {

void logNoCompiler()
{
    qCInfo(logKit, "Zentoro: no Swift compiler found, so the UI kit will be prepared at the first build.");
}

void logPrepared(const QString &compilerVersion, const QString &folder, qint64 milliseconds)
{
    qCInfo(logKit, "Zentoro: the UI kit for %s is ready in %s (%.1f s).", qUtf8Printable(compilerVersion),
           qUtf8Printable(folder), double(milliseconds) / 1000);
}

void logFailed(const QString &error)
{
    qCWarning(logKit, "%s", qUtf8Printable(error));
}

QCoro::Task<int> prepareNow()
{
    const Toolchain toolchain = co_await Toolchain::detect();
    const Toolchain::Compiler *compiler = toolchain.compiler();
    if (!compiler) {
        logNoCompiler();
        co_return 0;
    }
    QElapsedTimer clock;
    clock.start();
    const QString folder = preparedFolder(compiler->version);
    const Build build = co_await buildInto(folder, TaskHandle(), compiler->swiftc);
    if (!build.ok()) {
        logFailed(build.error);
        co_return 1;
    }
    logPrepared(compiler->version, folder, clock.elapsed());
    co_return 0;
}

QCoro::Task<int> printNow()
{
    const Toolchain toolchain = co_await Toolchain::detect();
    const Toolchain::Compiler *compiler = toolchain.compiler();
    const auto folder = compiler ? readyPreparedFolder(compiler->version) : std::nullopt;
    if (!folder)
        co_return 1;
    std::printf("%s\n", QFile::encodeName(*folder).constData());
    co_return 0;
}

int runToEnd(int argc, char **argv, QCoro::Task<int> (*work)())
{
    QCoreApplication application(argc, argv);
    int status = 1;
    startTask([&status, work](TaskHandle) -> QCoro::Task<> {
        status = co_await work();
        QCoreApplication::exit(status);
    });
    QCoreApplication::exec();
    return status;
}

} // namespace

int prepare(int argc, char **argv)
{
    return runToEnd(argc, argv, prepareNow);
}

int printPreparedFolder(int argc, char **argv)
{
    return runToEnd(argc, argv, printNow);
}

} // namespace zentoro::Kit
