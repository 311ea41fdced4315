#pragma once

#include "agent/ChatItem.h"

#include <QString>

namespace zentoro {

class Agent;
struct Workspace;

// The agent's tools on the source folder. `path` is as the model gave it: rows and
// activity show it unchanged, and every file is reached through `Workspace::resolve`.
// Each runs to its end without suspending and answers a failure as a failed result.
namespace FileTools {

// Files larger than this are refused, not read: no source file is this big, and the
// whole text would go to the model.
inline constexpr qint64 readLimit = 1024 * 1024;

ToolResult listFiles(Agent &agent, const Workspace &workspace);
ToolResult readFile(Agent &agent, const Workspace &workspace, const QString &path);
ToolResult writeFile(Agent &agent, const Workspace &workspace, const QString &path, const QString &content);
ToolResult editFile(Agent &agent, const Workspace &workspace, const QString &path, const QString &oldText,
                    const QString &newText);
ToolResult deleteFile(const Workspace &workspace, const QString &path);

} // namespace FileTools
} // namespace zentoro
