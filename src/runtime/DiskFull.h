#pragma once

#include "runtime/Banner.h"

#include <QString>

namespace zentoro::DiskFull {

// The window's strip when `what` ("this conversation") couldn't be saved for want of space;
// it goes away once a save of the same thing succeeds again.
Banner banner(const QString &what);

// Whether a failed build ran out of space: the compiler's words, or a folder left with
// almost no room. The model is then told so instead of being sent to fix its code.
bool explainsBuildFailure(const QString &output, const QString &folder);

// What the model and the user read for such a build.
QString buildFailure();

} // namespace zentoro::DiskFull
