#pragma once

namespace zentoro {

// The process: its start-up order, its window and its event loop.
namespace ZentoroApp {
int run(int argc, char **argv);
}

} // namespace zentoro
