#include "runtime/CrashFallback.h"

namespace zentoro::CrashFallback {

namespace {

const QString readLogHint = QStringLiteral("read_log with which=\"crash\" shows that run's output and backtrace.");

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

Judgement crashedWhileStarting(const RuntimeState &state, int version, const std::optional<QString> &crash,
                               const QString &name)
{
    Judgement judgement{state, true};
    judgement.state.markCrashed(version);
    judgement.state.loading.reset();
    judgement.state.current = fallback(state, version);
    const QString target = judgement.state.current ? QStringLiteral("version %1").arg(*judgement.state.current)
                                                   : QStringLiteral("an empty window");
    judgement.banner = Banner{
        QStringLiteral("Version %1 crashed while starting, so %2 went back to %3.").arg(version).arg(name, target),
        crash, true};
    judgement.shown = QStringLiteral("Version %1 crashed while starting; running %2.").arg(version).arg(target);
    judgement.told = QStringLiteral("Version %1 crashed the app while it was starting (%2). Zentoro fell back to %3. "
                                    "The source files still contain version %1's code. ")
                         .arg(version)
                         .arg(crash.value_or(QStringLiteral("no details")), target) +
                     readLogHint;
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
    const std::optional<QString> text = crash ? std::optional(crash->text) : std::nullopt;
    if (state.loading)
        return crashedWhileStarting(state, *state.loading, text, name);
    if (text)
        return crashedLater(state, *text, name);
    return Judgement{state};
}

} // namespace zentoro::CrashFallback
