#pragma once

#include <QString>

namespace zentoro::AppName {

// Shows the process under this copy's name: the application's display name, which the desktop
// uses for its windows and task switcher, and the desktop file name of the copy's own entry
// when "New App…" made one. Titles that name the program are built from the same
// name wherever they are made.
void apply(const QString &name);

} // namespace zentoro::AppName
