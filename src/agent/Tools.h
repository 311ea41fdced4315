#pragma once

#include "agent/ChatItem.h"
#include "core/JSON.h"

#include <QCoroTask>
#include <QString>

#include <functional>

namespace zentoro {

class Agent;
struct Workspace;

namespace Tools {

// A row's detail is for people and is cut short; the model always gets the whole text.
inline constexpr qsizetype detailLimit = 6000;

// The tools that reach the running app rather than the source folder. The runtime fills
// these in; a tool left empty answers with an error, so nothing pretends to work.
struct RuntimeTools {
    using Tool = std::function<QCoro::Task<ToolResult>(Agent &agent, const JSON &arguments)>;
    Tool build;
    Tool screenshot;
    Tool readLog;
};

// The failed result: "Error: <message>" for the model, a failed row titled `title`.
ToolResult fail(const QString &message, const QString &title);
// `detail` whole up to the limit; past it, the first 6000 characters and "\n…".
QString limited(const QString &detail);
// The pieces a text falls into at each line feed, empty ones included: "" has 1, "a\n" has 2.
qsizetype lineCount(const QString &text);

// Carries out one function call of the model. Never raises: whatever goes wrong is an
// error text for the model and a failed row. `restart_app` is the run's own business and
// never comes here. The caller keeps the arguments alive until the result is in.
QCoro::Task<ToolResult> perform(Agent &agent, const Workspace &workspace, const RuntimeTools &runtime,
                                const QString &name, const JSON &arguments);

} // namespace Tools
} // namespace zentoro
