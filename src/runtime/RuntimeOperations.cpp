#include "runtime/Runtime.h"

#include "runtime/Relaunch.h"

#include <QCoreApplication>

#include <unistd.h>

namespace zentoro {

namespace {

QString restoreFailedTitle(int number)
{
    return QStringLiteral("Couldn't restore version %1's sources").arg(number);
}

Banner buildRunning(const QString &title, const QString &action)
{
    return Banner{title, QStringLiteral("A build is running. %1 once it has finished.").arg(action), false};
}

Banner resetDuringBuild()
{
    return buildRunning(QStringLiteral("Couldn't reset"), QStringLiteral("Reset"));
}

QString rebuildSummary()
{
    return QStringLiteral("Rebuilt from the source folder");
}

void tellRebuilt(Runtime &runtime, const BuildOutcome &outcome)
{
    if (const BuildOutcome::Success *success = outcome.success()) {
        runtime.onEvent(QStringLiteral("Built version %1 from the source folder.").arg(success->version),
                        QStringLiteral("The user rebuilt the app from the source folder (they may have edited files "
                                       "by hand); version %1 is running.")
                            .arg(success->version));
        return;
    }
    const QString text = outcome.failure()->text;
    runtime.setBanner(Banner{QStringLiteral("Build failed"), text, true});
    runtime.onEvent(QStringLiteral("A manual build failed."),
                    QStringLiteral("The user tried to build the source folder and it failed:\n") + text);
}

void tellReset(Runtime &runtime)
{
    runtime.onEvent(QStringLiteral("Reset to the original app."),
                    QStringLiteral("The user reset the source files to Zentoro's original starter app."));
}

void showOriginalFailed(Runtime &runtime, const BuildOutcome &outcome)
{
    if (const BuildOutcome::Failure *failure = outcome.failure())
        runtime.setBanner(
            Banner{Runtime::originalAppSummary() + QStringLiteral(" didn't build"), failure->text, false});
}

} // namespace

Banner Runtime::couldNotLoad(int number, const QString &error)
{
    return Banner{QStringLiteral("Couldn't load version %1").arg(number), error, false};
}

void Runtime::revert(int number)
{
    // The compiler reads the source folder while it runs; replacing it underneath would
    // make the version being built a mixture of both.
    if (isBuilding_) {
        setBanner(buildRunning(restoreFailedTitle(number), QStringLiteral("Go back")));
        return;
    }
    try {
        workspace_.replaceSources(workspace_.version(number) + QStringLiteral("/Sources"));
    } catch (...) {
        setBanner(Banner{restoreFailedTitle(number), describe(std::current_exception()), false});
        return;
    }
    // A version built against another kit is built again from its copy of the sources first.
    if (toolchain_.isReady() && !builtWithCurrentKit(number)) {
        QPointer<Runtime> self(this);
        startTask([self, number](TaskHandle) -> QCoro::Task<> {
            if (!self)
                co_return;
            const std::optional<QString> error = co_await self->loadWithCurrentKit(number);
            if (self)
                self->tellReverted(number, error);
        });
        return;
    }
    tellReverted(number, load(number));
}

void Runtime::tellReverted(int number, const std::optional<QString> &error)
{
    if (error) {
        setBanner(couldNotLoad(number, *error));
        return;
    }
    setBanner(std::nullopt);
    onEvent(QStringLiteral("Went back to version %1.").arg(number),
            QStringLiteral("The user went back to version %1. The source files now match version %1, which is running.")
                .arg(number));
}

QCoro::Task<> Runtime::rebuild()
{
    QPointer<Runtime> self(this);
    const QString summary = rebuildSummary();
    const BuildOutcome outcome = co_await build(summary);
    if (self)
        tellRebuilt(*self, outcome);
}

QCoro::Task<> Runtime::resetToOriginal()
{
    QPointer<Runtime> self(this);
    // As with going back: the compiler reads the source folder while it runs, and the
    // version it makes keeps a copy of it.
    if (isBuilding_) {
        setBanner(resetDuringBuild());
        co_return;
    }
    if (!installSeed())
        co_return;
    tellReset(*this);
    const QString summary = originalAppSummary();
    const BuildOutcome outcome = co_await build(summary);
    if (self)
        showOriginalFailed(*self, outcome);
}

bool Runtime::installSeed()
{
    try {
        workspace_.installSeed();
        return true;
    } catch (...) {
        setBanner(Banner{QStringLiteral("Couldn't reset"), describe(std::current_exception()), false});
        return false;
    }
}

void Runtime::relaunch(bool safeMode)
{
    const QString text = Relaunch::script(::getpid(), safeMode);
    if (const std::optional<QString> error = Relaunch::start(text, Relaunch::executable())) {
        setBanner(Banner{QStringLiteral("Couldn't restart"), error, false});
        return;
    }
    // An orderly quit: the about-to-quit hook clears `loading`, so this is no crash.
    QCoreApplication::quit();
}

} // namespace zentoro
