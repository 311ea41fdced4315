#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace zentoro::AtomicFile {

// Writes `contents` to a temporary file beside `path` and renames it over `path`, so a
// reader or a crash sees the old file or the new one, never a part. The temporary file
// is created with `mode` (0600 for credentials), so it is never more readable than the
// result. Returns the system's words on failure; the old file is left as it was.
std::optional<QString> write(const QString &path, const QByteArray &contents, int mode = 0644);

} // namespace zentoro::AtomicFile
