#include "runtime/Runtime.h"

#include "core/Defaults.h"
#include "runtime/CrashFallback.h"
#include "runtime/CrashLog.h"

#include <QCoreApplication>
#include <QGuiApplication>

namespace zentoro {

namespace {

// Safe mode needs a way in that works before any of the app's code is opened: Alt held
// as the program starts, `--safe-mode`, or `-ZentoroSafeMode YES`.
bool safeModeAsked()
{
    return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::AltModifier) ||
           QCoreApplication::arguments().contains(QStringLiteral("--safe-mode")) ||
           Defaults::flag(QStringLiteral("ZentoroSafeMode"));
}

} // namespace

void Runtime::launch()
{
    if (launched_)
        return;
    launched_ = true;

    try {
        workspace_.prepare();
    } catch (...) {
        setBanner(Banner{QStringLiteral("%1 can't set up its folder").arg(workspace_.name),
                         describe(std::current_exception()), false});
    }

    const std::optional<CrashLog::PreviousCrash> crash = CrashLog::start(workspace_.logs());

    RuntimeState stored = RuntimeState::readKeepingUnreadable(workspace_.stateFile());
    if (stored != state_) {
        state_ = std::move(stored);
        emit stateChanged();
    }

    const CrashFallback::Judgement judgement = CrashFallback::judge(state_, crash, workspace_.name);
    if (judgement.saveState)
        saveState(judgement.state);
    if (judgement.banner)
        setBanner(judgement.banner);
    if (!judgement.shown.isEmpty())
        onEvent(judgement.shown, judgement.told);

    // What the hosted app stored survives the quit (or the restart), and a quit within the
    // proving time is no crash, unless the version held the window meanwhile.
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
        saveHostedSettings();
        if (!state_.loading || heldWhileStarting())
            return;
        RuntimeState quitting = state_;
        quitting.loading.reset();
        saveState(quitting);
    });

    // A version built against another kit or compiler waits for the compiler's answer, to be
    // built again first; any other starts before the first frame.
    std::optional<int> waiting;
    if (safeModeAsked()) {
        safeMode_ = true;
        emit safeModeChanged();
    } else if (state_.current && state_.record(*state_.current)) {
        const int version = *state_.current;
        if (!runsAsBuilt(version))
            waiting = version;
        else if (const std::optional<QString> error = load(version))
            setBanner(couldNotLoad(version, *error));
    }

    QPointer<Runtime> self(this);
    startTask([self, waiting](TaskHandle) -> QCoro::Task<> {
        if (!self)
            co_return;
        co_await self->checkToolchain();
        if (!self)
            co_return;
        // Unless the user went elsewhere meanwhile. A version loaded at once whose compiler
        // turns out to have changed all the same (behind a proxy such as swiftly's) is built
        // again too.
        std::optional<int> version = waiting;
        if (!waiting && self->loadedVersion_ && self->toolchain_.isReady() &&
            !self->builtWithCurrentKit(*self->loadedVersion_))
            version = self->loadedVersion_;
        const bool stillWanted = version && self->state_.current == version &&
                                 (waiting ? !self->loadedVersion_ : self->loadedVersion_ == version);
        if (stillWanted) {
            const std::optional<QString> error = co_await self->loadWithCurrentKit(*version);
            if (!self)
                co_return;
            if (error)
                self->setBanner(couldNotLoad(*version, *error));
        }
        // A new copy gets its first version as soon as there is a compiler.
        if (!self || !self->state_.versions.isEmpty() || self->safeMode_ || !self->toolchain_.isReady())
            co_return;
        const QString summary = originalAppSummary();
        co_await self->build(summary);
    });
}

} // namespace zentoro
