#pragma once

#include <QString>

namespace zentoro::LogTail {

inline constexpr qsizetype lineLimit = 200;
inline constexpr qsizetype characterLimit = 16000;

// What the agent is shown of a log's text: its last 200 lines, and of those no more than
// the last 16000 characters, with "…\n" in front when some were cut.
QString of(const QString &text);

// The same for the file at `path`, read from its end: only the part that those lines and
// characters can come from is read, so a log of any size is quick. Empty when the file
// can't be read. Bytes that aren't UTF-8 stand as replacement characters.
QString read(const QString &path);

} // namespace zentoro::LogTail
