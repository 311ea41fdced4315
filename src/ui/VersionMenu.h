#pragma once

#include "runtime/RuntimeState.h"

#include <QString>
#include <QStringList>

class QMenu;
class QWidget;

namespace zentoro {

class Runtime;

namespace VersionMenu {

// "<n>. <summary> (<time>)": the summary cut to 57 characters and "…" beyond 60, the time of
// the build in the short local format, without the date.
QString title(const VersionRecord &record);
// The toolbar's label: "Version <n>", "Safe Mode" or "No Version".
QString label(const Runtime &runtime);

// One entry per version, newest first, each going back to its version; the loaded one carries
// a check mark, a crashed one a warning.
void addVersions(QMenu *menu, Runtime &runtime);
// The toolbar's menu: the versions, or "No versions yet", then the source folder and the reset.
void fill(QMenu *menu, Runtime &runtime, QWidget *dialogParent);

} // namespace VersionMenu

namespace Reset {
// Asks whether to reset to the starter app; true when the user chose "Reset".
bool ask(QWidget *parent);
// Asks, then resets in a task on the main thread.
void confirm(QWidget *parent, Runtime &runtime);
} // namespace Reset

namespace FileManager {
// Shows `path` selected in the desktop's file manager, or opens its folder where none answers,
// without waiting for either.
void reveal(const QString &path);
// The arguments of the dbus-send call that asks the file manager to show `path`.
QStringList showItemsCall(const QString &path);
} // namespace FileManager

} // namespace zentoro
