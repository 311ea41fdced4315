#pragma once

#include <QLoggingCategory>

namespace zentoro {

// The program's log, one category per subsystem. Messages go to standard error, which a
// copy's process sends on to "Logs/current.log"; warnings and notices are on, details
// ("debug") are off until QT_LOGGING_RULES turns them on, e.g. "zentoro.*.debug=true".
Q_DECLARE_LOGGING_CATEGORY(logCore)    // zentoro.core: tasks and other primitives
Q_DECLARE_LOGGING_CATEGORY(logModel)   // zentoro.model: requests to the model service
Q_DECLARE_LOGGING_CATEGORY(logRuntime) // zentoro.runtime: builds, versions, launches
Q_DECLARE_LOGGING_CATEGORY(logKit)     // zentoro.kit: the UI kit's library and hosted views
Q_DECLARE_LOGGING_CATEGORY(logAgent)   // zentoro.agent: the agent's runs
Q_DECLARE_LOGGING_CATEGORY(logUI)      // zentoro.ui: the window
Q_DECLARE_LOGGING_CATEGORY(logChatGPT) // zentoro.chatgpt: sign-in and the plan's tokens, never the tokens themselves

} // namespace zentoro
