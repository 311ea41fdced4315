#pragma once

#include <QString>

#include <optional>

namespace zentoro {

// The message strip of the window.
struct Banner {
    QString title;
    std::optional<QString> detail;
    bool offerFix = false; // offers to ask the agent to fix the problem

    bool operator==(const Banner &) const = default;
};

} // namespace zentoro
