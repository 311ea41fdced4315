#pragma once

#include "agent/ChatItem.h"

#include <QString>

#include <optional>

namespace zentoro {

class Agent;
struct Workspace;

// The agent's tools on the source folder. `path` is as the model gave it: rows and
// activity show it unchanged, and every file is reached through `Workspace::resolve`.
// Each runs to its end without suspending and answers a failure as a failed result.
namespace FileTools {

// The model gets a file's whole text. Only a file far larger than any source (a stray
// data dump, say) is refused, with its size: held as text in every save and request,
// it would exhaust memory before the model could use it.
inline constexpr qint64 readLimit = qint64(16) << 20;

// The lines of the file at `file` as the model is told them, counted the same way by
// `list_files` and the state note; none when it isn't UTF-8 text. Any size is counted,
// without holding the text.
std::optional<qsizetype> linesIn(const QString &file);

// The source files as the model is told them, "<path> (<n> lines)", the unreadable ones with
// `unreadableLines`. Past `listedLimit` files the rest are counted in one last entry: a
// folder of thousands would fill every request and take seconds to count.
inline constexpr qsizetype listedLimit = 1000;
QStringList described(const Workspace &workspace, qsizetype unreadableLines);

ToolResult listFiles(Agent &agent, const Workspace &workspace);
ToolResult readFile(Agent &agent, const Workspace &workspace, const QString &path);
ToolResult writeFile(Agent &agent, const Workspace &workspace, const QString &path, const QString &content);
ToolResult editFile(Agent &agent, const Workspace &workspace, const QString &path, const QString &oldText,
                    const QString &newText);
ToolResult deleteFile(const Workspace &workspace, const QString &path);

} // namespace FileTools
} // namespace zentoro
