#pragma once

#include <chrono>

namespace zentoro::QuitSignals {

// How long an orderly quit asked for by a signal may take before the signal's own action ends
// the process: the event loop may be stuck in a hosted app's code.
inline constexpr std::chrono::seconds grace{3};

// Turns SIGTERM, SIGINT and SIGHUP (a session logging out, `kill`, a closed terminal) into an
// orderly quit through the event loop, so that they count as a quit and not a crash. A second
// signal, or a quit that hasn't ended the process within `grace`, takes the signal's default
// action; that watch runs on a thread of its own, not on the event loop.
void install();

} // namespace zentoro::QuitSignals
