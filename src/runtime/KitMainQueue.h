#pragma once

#include "runtime/KitEntryPoints.h"

#include <memory>

namespace zentoro {

// Keeps the kit's main queue and main run loop going inside Qt's event loop: watches the
// queue's descriptor and wakes up for the run loop's next timer. One per process, started
// by the first hosted view.
namespace KitMainQueue {
void start(const std::shared_ptr<const KitEntryPoints> &kit);
// Runs what is due now; called after every call into the kit.
void service();
} // namespace KitMainQueue

} // namespace zentoro
