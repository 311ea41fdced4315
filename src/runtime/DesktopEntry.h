#pragma once

#include <QString>

namespace zentoro::DesktopEntry {

// What a copy's entry in the applications menu says: its name, the program it starts (with
// "Start in Safe Mode" as an action) and its icon, a theme name or a file.
struct Entry {
    QString name;
    QString program;
    QString icon;

    bool operator==(const Entry &) const = default;
};

// The entry's text, every value escaped and the program quoted as the desktop entry format
// asks, so any name and any path survive a launcher.
QString text(const Entry &entry);

// "dev.vantu.zentoro.app.<the name's letters>_<digest>": the id of the entry "New App…" makes
// for a copy. The digest keeps names that differ only outside ASCII letters apart.
QString idForCopy(const QString &name);

// The desktop file name a copy shows itself under, so the desktop matches its windows to the
// right entry: its own entry's id once there is one, else the program's.
QString desktopFileNameFor(const QString &name);

// `$XDG_DATA_HOME/applications`, where the user's own entries live.
QString userFolder();

// One argument of an Exec line: quoted, with the characters the format reserves escaped.
QString execArgument(const QString &argument);

} // namespace zentoro::DesktopEntry
