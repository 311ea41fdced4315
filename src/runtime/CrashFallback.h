#pragma once

#include "runtime/Banner.h"
#include "runtime/CrashLog.h"
#include "runtime/RuntimeState.h"

#include <QString>

#include <optional>

namespace zentoro {

// How a start judges the run before it, from "state.json" and that run's crash text.
namespace CrashFallback {

struct Judgement {
    RuntimeState state;           // what this start goes on with
    bool saveState = false;       // the state changed and must be on disk
    std::optional<Banner> banner; // none when the last run ended well
    QString shown;                // the line for the chat; empty when there is nothing to tell
    QString told;                 // the note for the model
    bool operator==(const Judgement &) const = default;
};

// The version to run instead of `crashed`: the last good one when that is another, or,
// when the crashed version itself was the last good one, the newest other version that
// never crashed. None is an empty window.
std::optional<int> fallback(const RuntimeState &state, int crashed);

// A version still loading when the run ended crashed (or hung) while starting: it is marked
// crashed and the fallback becomes current. A crash text alone is a crash later in a run,
// which changes nothing on disk; a held window alone is nothing. `name` is the copy's name.
Judgement judge(const RuntimeState &state, const std::optional<CrashLog::PreviousCrash> &crash, const QString &name);

} // namespace CrashFallback
} // namespace zentoro
