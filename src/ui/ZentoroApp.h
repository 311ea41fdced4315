#pragma once

#include "agent/Agent.h"
#include "runtime/Runtime.h"
#include "ui/MainWindow.h"

#include <memory>

namespace zentoro {

// The process: its start-up order, its window and its event loop.
namespace ZentoroApp {

int run(int argc, char **argv);

// What lives as long as the process once it holds the lock of the copy in `workspace`,
// made in the start-up order: the runtime, the agent with its operations and its restored
// conversation, hooked to the runtime's events, the launch, the agent's resumption, and
// only then the window.
class Session {
public:
    explicit Session(const Workspace &workspace);

    Runtime runtime;
    Agent agent;
    std::unique_ptr<MainWindow> window;
};

} // namespace ZentoroApp

} // namespace zentoro
