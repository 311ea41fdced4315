#include "runtime/CrashFallback.h"

namespace zentoro::CrashFallback {

namespace {

const QString readLogHint = QStringLiteral("read_log with which=\"crash\" shows that run's output and backtrace.");
const QString readPreviousHint = QStringLiteral("read_log with which=\"previous\" shows that run's output.");

Judgement crashedLater(const RuntimeState &state, const QString &crash, const QString &name)
{
    const QString what = state.current ? QStringLiteral("version %1").arg(*state.current)
                                       : QStringLiteral("no version");
    Judgement judgement{state};
    judgement.banner = Banner{QStringLiteral("%1 crashed last time it ran (%2).").arg(name, what), crash, true};
    judgement.shown = QStringLiteral("%1 crashed last time (%2): %3").arg(name, what, crash);
    judgement.told = QStringLiteral("Zentoro crashed during its previous run while running %1: %2. ").arg(what, crash) +
                     readLogHint;
    return judgement;
}

Judgement crashedWhileStarting(const RuntimeState &state, int version,
                               const std::optional<CrashLog::PreviousCrash> &crash, const QString &name)
{
    Judgement judgement{state, true};
    judgement.state.markCrashed(version);
    judgement.state.loading.reset();
    judgement.state.current = fallback(state, version);
    const QString target = judgement.state.current ? QStringLiteral("version %1").arg(*judgement.state.current)
                                                   : QStringLiteral("an empty window");
    const bool hung = crash && crash->hung;
    const std::optional<QString> text = crash ? std::optional(crash->text) : std::nullopt;
    const QString what = hung ? QStringLiteral("hung") : QStringLiteral("crashed");
    judgement.banner = Banner{
        QStringLiteral("Version %1 %2 while starting, so %3 went back to %4.").arg(version).arg(what, name, target),
        text, true};
    judgement.shown = QStringLiteral("Version %1 %2 while starting; running %3.").arg(version).arg(what, target);
    judgement.told = QStringLiteral("Version %1 %2 the app while it was starting (%3). Zentoro fell back to %4. "
                                    "The source files still contain version %1's code. ")
                         .arg(version)
                         .arg(what, text.value_or(QStringLiteral("no details")), target) +
                     (hung ? readPreviousHint : readLogHint);
    return judgement;
}

} // namespace

std::optional<int> fallback(const RuntimeState &state, int crashed)
{
    if (!state.lastGood)
        return std::nullopt;
    if (*state.lastGood != crashed)
        return state.lastGood;
    for (auto record = state.versions.crbegin(); record != state.versions.crend(); ++record) {
        if (!record->crashed && record->number != crashed)
            return record->number;
    }
    return std::nullopt;
}

Judgement judge(const RuntimeState &state, const std::optional<CrashLog::PreviousCrash> &crash, const QString &name)
{
    if (state.loading)
        return crashedWhileStarting(state, *state.loading, crash, name);
    // A window held later in a run that then ended well is no crash.
    if (crash && !crash->hung)
        return crashedLater(state, crash->text, name);
    return Judgement{state};
}

} // namespace zentoro::CrashFallback
