#pragma once

#include "agent/AgentOperations.h"

namespace zentoro {

class Agent;
class Runtime;

// The program's own operations for `agent`'s runs on `runtime`, each holding both weakly.
AgentOperations programOperations(Agent &agent, Runtime &runtime);

} // namespace zentoro
