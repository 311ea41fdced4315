#pragma once

#include "agent/ChatItem.h"
#include "agent/Tools.h"
#include "core/JSON.h"
#include "runtime/BuildOutcome.h"

#include <QCoroTask>

#include <chrono>

namespace zentoro {

class Agent;
class Runtime;
struct Workspace;

// The tools that close the agent's loop: it compiles what it wrote, looks at the result
// and reads what the running app printed.
namespace BuildTools {

// The largest width of a picture for the model, in pixels.
inline constexpr double screenshotWidth = 1400;
// Time given to the app to settle before a capture.
inline constexpr std::chrono::milliseconds screenshotDelay{600};

// Builds the sources as the next version and reports how it went; a failed build is the
// tool's normal answer, with the compiler's words, not an error.
QCoro::Task<ToolResult> build(Agent &agent, Runtime &runtime);
// A picture of what the window shows, stored under "Build/Screenshots" and handed to the
// model by reference.
QCoro::Task<ToolResult> screenshot(Agent &agent, Runtime &runtime);
// The end of the log that `which` names ("current", "previous" or "crash").
ToolResult readLog(const Workspace &workspace, const QString &which);

// The result of a finished build as the model and the user see it.
ToolResult buildResult(const BuildOutcome &outcome);
// The result of a capture: `png` stored in `folder` when it can be written, else inline.
ToolResult screenshotResult(const QByteArray &png, const QString &folder);

// The three tools for the dispatch, each working on `runtime` while it lives.
Tools::RuntimeTools runtimeTools(Runtime &runtime);

} // namespace BuildTools
} // namespace zentoro
