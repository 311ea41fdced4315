#pragma once

namespace zentoro::QuitSignals {

// Turns SIGTERM, SIGINT and SIGHUP (a session logging out, `kill`, a closed terminal) into
// an orderly quit through the event loop, so that they count as a quit and not a crash.
void install();

} // namespace zentoro::QuitSignals
