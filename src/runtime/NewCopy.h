#pragma once

#include <QString>

#include <optional>

namespace zentoro::NewCopy {

// Where a new copy is made: a symbolic link named by the user leading to the program, and
// its own entry in the applications menu.
struct Places {
    // The program file the link leads to, links resolved, so a copy made from another copy
    // doesn't depend on that copy's link.
    QString program;
    QString linkFolder;
    QString entryFolder;
    // The entry's icon: a theme name or a file.
    QString icon;

    bool operator==(const Places &) const = default;
};

// For the program the user started as `startedAs`: the link goes beside it when that folder
// is writable (a build folder, an AppImage's folder), else into ~/.local/bin; the entry into
// `$XDG_DATA_HOME/applications`.
Places forProgram(const QString &startedAs, const QString &icon);

// What a new copy made as `name` is: its link and its entry.
struct Copy {
    QString link;
    QString entry;

    bool operator==(const Copy &) const = default;
};
Copy copyAt(const QString &name, const Places &places);

// The words that say why `name` can't name a new copy: empty, with "/", a name that would open
// under another name, or one already in use by a copy, a file or a command. Nothing when it can.
std::optional<QString> refusal(const QString &name, const Places &places);

// Makes the link and then the entry; throws Failure with words for the user, and leaves
// nothing behind when it does.
Copy make(const QString &name, const Places &places);

// Starts the copy as a process of its own that outlives this one. The words when it didn't start.
std::optional<QString> start(const Copy &copy);

} // namespace zentoro::NewCopy
