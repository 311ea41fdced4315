#pragma once

#include "agent/AgentOperations.h"

namespace zentoro {

class Agent;

// The program's own operations for `agent`'s runs, each holding the agent weakly.
AgentOperations programOperations(Agent &agent);

} // namespace zentoro
