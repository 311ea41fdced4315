#pragma once

#include <QString>

#include <optional>

// How a conversation refers to a screenshot stored on disk: a `file:` URL in its fully
// encoded form, so a copy's folder named with blanks, `#`, `%`, `?` or any letter at all
// reads back as the same file.
namespace zentoro::ScreenshotReference {

QString fromFile(const QString &path);

// The file that `address` names; none when it isn't a `file:` URL. A `file:` URL that
// names no local file gives an empty path, which no read can open: such a picture is
// reported gone rather than sent as an address the service can't fetch.
std::optional<QString> file(const QString &address);

} // namespace zentoro::ScreenshotReference
