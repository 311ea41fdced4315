#pragma once

namespace zentoro {

// The repairs already tried in one run of the agent; every limit counts for the whole run.
struct Recovery {
    bool refresh = false;
    bool refreshed = false;
    bool droppedResponse = false;
    bool droppedReasoning = false;
    int trims = 0;
    int waits = 0;

    bool operator==(const Recovery &) const = default;
};

} // namespace zentoro
