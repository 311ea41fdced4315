#pragma once

#include <QString>

namespace zentoro {

// `$XDG_DATA_HOME/Zentoro`: what every copy shares (the saved key, the sign-in, the kit cache).
QString supportFolder();

} // namespace zentoro
