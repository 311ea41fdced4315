#include "runtime/Runtime.h"

#include "core/AtomicFile.h"
#include "core/Log.h"
#include "runtime/DiskFull.h"
#include "runtime/KitEntryPoints.h"
#include "runtime/PluginContainerView.h"
#include "runtime/Watchdog.h"

#include <QFile>

#include <dlfcn.h>

namespace zentoro {

namespace {
// While the Swift toolchain installs, look for it every 5 seconds for at most an hour.
constexpr std::chrono::seconds installPollInterval{5};
constexpr int installPollLimit = 720;
} // namespace

Runtime::Runtime(Workspace workspace, QObject *parent) : QObject(parent), workspace_(std::move(workspace)) {}

void Runtime::setBanner(std::optional<Banner> banner)
{
    if (banner_ == banner)
        return;
    banner_ = std::move(banner);
    emit bannerChanged();
}

QList<PluginContainerView *> Runtime::containers() const
{
    QList<PluginContainerView *> live;
    for (const QPointer<PluginContainerView> &container : containers_) {
        if (container)
            live.append(container);
    }
    return live;
}

void Runtime::addContainer(PluginContainerView *container)
{
    containers_.removeIf([](const QPointer<PluginContainerView> &entry) { return entry.isNull(); });
    containers_.append(container);
}

void Runtime::saveState(RuntimeState state)
{
    const bool changed = state_ != state;
    state_ = std::move(state);
    // Other failures stay silent: the user can't act on them, and the next save tries again.
    const std::optional<QString> error = state_.write(workspace_.stateFile());
    const Banner full = DiskFull::banner(QStringLiteral("the app's versions"));
    if (error && AtomicFile::isDiskFull(*error))
        setBanner(full);
    else if (!error && banner_ == full)
        setBanner(std::nullopt);
    if (changed)
        emit stateChanged();
}

void Runtime::setToolchain(Toolchain toolchain)
{
    if (toolchain_ == toolchain)
        return;
    toolchain_ = std::move(toolchain);
    emit toolchainChanged();
}

void Runtime::setIsPreparingKit(bool preparing)
{
    if (isPreparingKit_ == preparing)
        return;
    isPreparingKit_ = preparing;
    emit isPreparingKitChanged();
}

void Runtime::setIsBuilding(bool building)
{
    if (isBuilding_ == building)
        return;
    isBuilding_ = building;
    emit isBuildingChanged();
}

QCoro::Task<> Runtime::checkToolchain()
{
    QPointer<Runtime> self(this);
    ++checks_;
    setToolchain(Toolchain::checking());
    Toolchain found = co_await Toolchain::detect();
    if (!self)
        co_return;
    --checks_;
    setToolchain(std::move(found));
    emit toolchainChecked();
}

void Runtime::installToolchain()
{
    QPointer<Runtime> self(this);
    startTask([self](TaskHandle task) -> QCoro::Task<> {
        const bool started = co_await Toolchain::startInstall();
        if (!self)
            co_return;
        if (!started) {
            co_await self->checkToolchain();
            co_return;
        }
        self->setToolchain(Toolchain::installing());
        for (int attempt = 0; attempt < installPollLimit; ++attempt) {
            co_await sleep(task, installPollInterval);
            const Toolchain found = co_await Toolchain::detect();
            if (!self)
                co_return;
            if (found.isReady())
                break;
        }
        co_await self->checkToolchain();
        if (!self || !self->toolchain_.isReady() || self->loadedVersion_ || self->safeMode_)
            co_return;
        const QString summary = self->state_.versions.isEmpty() ? originalAppSummary() : QStringLiteral("Rebuild");
        co_await self->build(summary);
    });
}

std::optional<QString> Runtime::load(int version)
{
    const std::optional<int> fallback = loadedVersion_;
    RuntimeState starting = state_;
    starting.loading = version;
    starting.current = version;
    // On disk before any of the new code runs: a crash from here on is blamed on it.
    saveState(starting);
    stallsAtLoad_ = Watchdog::stalls();

    QString error;
    const QByteArray path = QFile::encodeName(workspace_.dylib(version));
    void *handle = dlopen(path.constData(), RTLD_NOW | RTLD_LOCAL);
    void *symbol = handle ? dlsym(handle, "zentoro_make_root_view") : nullptr;
    if (!handle) {
        const char *reason = dlerror();
        error = reason ? QString::fromLocal8Bit(reason) : QStringLiteral("dlopen failed");
    } else if (!symbol) {
        // The handle stays open: libraries are never closed.
        error = QStringLiteral("The library has no zentoro_make_root_view.");
    } else {
        // A kit the host can't speak to would leave the window blank while the version
        // passed for running.
        KitEntryPoints::find(handle, error);
    }
    if (!error.isEmpty()) {
        qCWarning(logRuntime, "Couldn't load version %d: %s", version, qUtf8Printable(error));
        RuntimeState failed = state_;
        failed.loading.reset();
        failed.current = fallback;
        saveState(failed);
        return error;
    }

    factory_ = reinterpret_cast<Factory>(symbol);
    library_ = handle;
    const bool versionChanged = loadedVersion_ != version;
    loadedVersion_ = version;
    const bool leftSafeMode = safeMode_;
    safeMode_ = false;
    ++generation_;
    if (versionChanged)
        emit loadedVersionChanged();
    if (leftSafeMode)
        emit safeModeChanged();
    emit generationChanged();
    keepSavingHostedSettings();
    qCInfo(logRuntime, "Zentoro: loaded version %d", version);

    return std::nullopt;
}

bool Runtime::heldWhileStarting() const
{
    return state_.loading && Watchdog::stalls() != stallsAtLoad_;
}

void Runtime::versionDrawn(int generation)
{
    if (generation != generation_ || provedGeneration_ == generation || !loadedVersion_)
        return;
    provedGeneration_ = generation;
    const int version = *loadedVersion_;
    QPointer<Runtime> self(this);
    startTask([self, version](TaskHandle task) -> QCoro::Task<> {
        co_await sleep(task, provingTime);
        if (!self || self->state_.loading != version)
            co_return;
        // Left loading on disk, so the next start falls back and tells the agent why.
        if (self->heldWhileStarting()) {
            qCWarning(logRuntime, "Version %d held the window while starting; it counts as crashed.", version);
            co_return;
        }
        RuntimeState proven = self->state_;
        proven.loading.reset();
        proven.lastGood = version;
        self->saveState(proven);
    });
}

} // namespace zentoro
