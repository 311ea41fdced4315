#pragma once

#include "core/Failure.h"

#include <QString>
#include <QStringList>
#include <QUuid>

namespace zentoro {

// Where this copy keeps its things. A copy is named by the file it was started as;
// every path of its folder is built here and nowhere else.
struct Workspace {
    using Failure = zentoro::Failure;

    QString name;
    QString root;

    // The copy's name from the program's file name: `argv0`'s file name without its
    // extension, or the AppImage's when one is running.
    static QString nameFromExecutable(const QString &argv0, const QString &appImage);
    static Workspace forName(const QString &name);
    // `$XDG_DATA_HOME/Zentoro`, shared by all copies.
    static QString support();
    // The copy of the process started as `argv0` (or as the running AppImage).
    static Workspace forExecutable(const QString &argv0);

    QString sources() const { return root + QStringLiteral("/Sources"); }
    QString versions() const { return root + QStringLiteral("/Versions"); }
    QString build() const { return root + QStringLiteral("/Build"); }
    QString logs() const { return root + QStringLiteral("/Logs"); }
    QString data() const { return root + QStringLiteral("/Data"); }
    QString stateFile() const { return root + QStringLiteral("/state.json"); }
    // Where `replaceSources` builds the new tree, and where it puts the old one aside.
    QString incomingSources() const { return root + QStringLiteral("/.Sources-incoming"); }
    QString outgoingSources() const { return root + QStringLiteral("/.Sources-outgoing"); }
    // "Conversations/<UUID in upper case>.json" under root.
    QString conversation(const QUuid &id) const;
    QString version(int number) const;
    QString dylib(int number) const;
    // "kit.json" in `version(number)`: what its library was built against.
    QString kitStamp(int number) const;
    // The hosted app's own settings suite: "dev.vantu.zentoro.app.<name>".
    QString defaultsSuite() const;

    // Makes sure the folders exist and that there are sources; throws Failure on the first
    // failure. An existing "Sources", even an empty one, is left alone.
    void prepare() const;
    // Replaces "Sources" by the starter app carried in the program's resources.
    void installSeed() const;
    // Replaces "Sources" by a copy of `folder`. The copy is made beside the old tree first,
    // so a copy that fails leaves the old sources in place; then the old tree is renamed
    // aside, the new one in, and the old one removed.
    void replaceSources(const QString &folder) const;
    // Run by `prepare` at start: completes a replacement that a process ended between its two
    // renames, and removes what one left beside "Sources", so the sources are never lost and
    // never silently reseeded.
    void finishReplacingSources() const;

    // Every regular file under "Sources", absolute paths sorted by `relativePath`. Hidden
    // items and symbolic links are left out; this is the order the compiler and the agent see.
    QStringList files() const;
    // The files whose extension is exactly "swift".
    QStringList swiftFiles() const;
    // The same for another source tree, such as a version's copy of the sources.
    static QStringList swiftFiles(const QString &folder);
    // Turns a path the agent gave into an absolute path inside "Sources", or throws Failure.
    // Beyond the textual rule, a path that passes through a symbolic link leading out of
    // "Sources" is refused, so no tool can reach the rest of the disk.
    QString resolve(const QString &path) const;
    // The path of `location` relative to "Sources"; the whole path when it lies elsewhere.
    QString relativePath(const QString &location) const;
    // Takes the copy's lock and keeps it for the life of the process; false when another
    // process holds it. A copy whose lock file can't be opened runs without a lock.
    bool lock() const;

    bool operator==(const Workspace &) const = default;
};

inline constexpr auto bundleIdentifier = "dev.vantu.zentoro";

} // namespace zentoro
