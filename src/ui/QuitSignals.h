#pragma once

namespace zentoro::QuitSignals {

// How long an orderly quit may take once a quit signal came before the signal ends the process.
inline constexpr unsigned orderlySeconds = 5;

// Turns SIGTERM, SIGINT and SIGHUP (a session logging out, `kill`, a closed terminal) into
// an orderly quit through the event loop, so that they count as a quit and not a crash. A
// second signal, or an event loop that doesn't quit within `orderlySeconds` (the hosted
// app's code holding the main thread), ends the process as the signal does by default.
void install();

} // namespace zentoro::QuitSignals
