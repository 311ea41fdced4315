#include "runtime/Runtime.h"

#include "runtime/Kit.h"

#include <QDir>

#include <filesystem>

namespace zentoro {

bool Runtime::runsAsBuilt(int number) const
{
    const QString swiftc = Toolchain::locate();
    if (swiftc.isEmpty())
        return true;
    const std::optional<KitStamp> stamp = KitStamp::read(workspace_.kitStamp(number));
    return stamp && stamp->kit.startsWith(Kit::version() + u'-') && stamp->compiler == Toolchain::fingerprint(swiftc);
}

bool Runtime::builtWithCurrentKit(int number) const
{
    const std::optional<KitStamp> stamp = KitStamp::read(workspace_.kitStamp(number));
    return stamp && stamp->kit == currentKitStamp().kit;
}

QCoro::Task<std::optional<QString>> Runtime::loadWithCurrentKit(int number)
{
    if (!toolchain_.isReady() || builtWithCurrentKit(number) || isBuilding_)
        co_return load(number);
    const KitStamp current = currentKitStamp();

    QPointer<Runtime> self(this);
    setIsBuilding(true);
    const QString folder = workspace_.version(number);
    const QString staging = folder + QStringLiteral("/.rebuilding");
    QDir(staging).removeRecursively();
    QDir().mkpath(staging);
    const QString sources = folder + QStringLiteral("/Sources");
    const QString library = staging + u'/' + QFileInfo(workspace_.dylib(number)).fileName();
    const Compilation compiled = co_await compile(number, sources, library);
    if (!self)
        co_return std::nullopt;
    std::error_code error;
    if (!compiled.failure) {
        // The new library replaces the old in one step: a crash leaves one or the other.
        std::filesystem::rename(QFile::encodeName(library).toStdString(),
                                QFile::encodeName(workspace_.dylib(number)).toStdString(), error);
        if (!error)
            current.write(workspace_.kitStamp(number));
    }
    QDir(staging).removeRecursively();
    setIsBuilding(false);
    if (compiled.failure || error) {
        co_return QStringLiteral("It was built with another UI kit or Swift compiler than this Zentoro has, and "
                                 "building it again from its sources failed: %1")
            .arg(compiled.failure ? *compiled.failure : QString::fromLocal8Bit(error.message()));
    }
    onEvent(QStringLiteral("Version %1 was built again for this Zentoro's UI kit.").arg(number),
            QStringLiteral("Version %1 was built with another UI kit or Swift compiler than this Zentoro has now, so "
                           "Zentoro built it again from its own copy of the sources before running it.")
                .arg(number));
    co_return load(number);
}

} // namespace zentoro
