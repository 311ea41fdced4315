#pragma once

#include <QString>

namespace zentoro {

// Where this copy keeps its things. A copy is named by the file it was started as.
struct Workspace {
    QString name;
    QString root;

    // The copy's name from the program's file name: `argv0`'s file name without its
    // extension, or the AppImage's when one is running.
    static QString nameFromExecutable(const QString &argv0, const QString &appImage);
    static Workspace forName(const QString &name);
    // `$XDG_DATA_HOME/Zentoro`, shared by all copies.
    static QString support();
    // The Workspace of the running process; set up by `initShared` at start.
    static const Workspace &shared();
    static void initShared(const QString &argv0);

    bool operator==(const Workspace &) const = default;
};

} // namespace zentoro
