#pragma once

#include "agent/Agent.h"
#include "runtime/Runtime.h"
#include "ui/MainWindow.h"

#include <memory>

namespace zentoro {

// The process: its start-up order, its window and its event loop.
namespace ZentoroApp {

int run(int argc, char **argv);

// What lives as long as the process once it holds the copy's lock, made in the start-up
// order: the runtime, the agent hooked to its events, the launch, the agent's resumption,
// and only then the window.
class Session {
public:
    Session();

    Runtime runtime;
    Agent agent;
    std::unique_ptr<MainWindow> window;
};

} // namespace ZentoroApp

} // namespace zentoro
