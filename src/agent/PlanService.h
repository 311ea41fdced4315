#pragma once

#include <QUrl>

#include <chrono>

namespace zentoro {

// What recovery needs of the ChatGPT plan's service: where its usage is managed, and how
// long a busy plan is given before each new attempt (the first wait one unit, the second two).
struct PlanService {
    QUrl usageURL;
    std::chrono::milliseconds busyWait{5000};

    // The service's own usage page, under $ZENTORO_CHATGPT_BASE when that is set.
    static PlanService standard();
};

} // namespace zentoro
