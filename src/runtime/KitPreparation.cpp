#include "runtime/KitPreparation.h"

#include "core/MainTask.h"
#include "runtime/Kit.h"
#include "runtime/Toolchain.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>

namespace zentoro::Kit {

namespace {

QCoro::Task<int> prepareNow()
{
    const Toolchain toolchain = co_await Toolchain::detect();
    const Toolchain::Compiler *compiler = toolchain.compiler();
    if (!compiler) {
        std::printf("Zentoro: no Swift compiler found, so the UI kit will be prepared at the first build.\n");
        co_return 0;
    }
    QElapsedTimer clock;
    clock.start();
    const QString folder = preparedFolder(compiler->version);
    const Build build = co_await buildInto(folder, TaskHandle(), compiler->swiftc);
    if (!build.ok()) {
        std::fprintf(stderr, "%s\n", qPrintable(build.error));
        co_return 1;
    }
    std::printf("Zentoro: the UI kit for %s is ready in %s (%.1f s).\n", qPrintable(compiler->version),
                qPrintable(folder), double(clock.elapsed()) / 1000);
    co_return 0;
}

} // namespace

int prepare(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    int status = 1;
    startTask([&status](TaskHandle) -> QCoro::Task<> {
        status = co_await prepareNow();
        QCoreApplication::exit(status);
    });
    QCoreApplication::exec();
    return status;
}

} // namespace zentoro::Kit
