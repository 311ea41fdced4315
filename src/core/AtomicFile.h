#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace zentoro::AtomicFile {

// How far a finished write must have reached before `write` returns.
enum class Durability {
    // On the disk itself: the file is flushed before its rename and the folder after it, so
    // a power cut leaves the old file or the new one on any file system. For small files
    // written rarely: state, keys, accounts.
    Flushed,
    // In the system's hands: the process may die at once and the file stands, but the flush
    // is left to `flushInBackground`, so the window never waits for the disk.
    Written,
};

// Writes `contents` to a temporary file beside `path` and renames it over `path`, so a
// reader or a crash sees the old file or the new one, never a part. The temporary file
// is created with `mode` (0600 for credentials), so it is never more readable than the
// result. Returns the system's words on failure; the old file is left as it was and the
// temporary file is removed. `temporaryPath` names the temporary file where its owner has a
// form for it; it must lie beside `path`.
std::optional<QString> write(const QString &path, const QByteArray &contents, int mode = 0644,
                             Durability durability = Durability::Flushed, const QString &temporaryPath = {});

// Puts `path` and its folder on the disk from a thread of their own. Calls for a path
// whose flush hasn't started yet are taken together.
void flushInBackground(const QString &path);

// Whether an error text from `write` means the disk has no room left.
bool isDiskFull(const QString &error);

} // namespace zentoro::AtomicFile
