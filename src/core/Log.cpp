#include "core/Log.h"

namespace zentoro {

Q_LOGGING_CATEGORY(logCore, "zentoro.core", QtInfoMsg)
Q_LOGGING_CATEGORY(logModel, "zentoro.model", QtInfoMsg)
Q_LOGGING_CATEGORY(logRuntime, "zentoro.runtime", QtInfoMsg)
Q_LOGGING_CATEGORY(logKit, "zentoro.kit", QtInfoMsg)
Q_LOGGING_CATEGORY(logAgent, "zentoro.agent", QtInfoMsg)
Q_LOGGING_CATEGORY(logUI, "zentoro.ui", QtInfoMsg)
Q_LOGGING_CATEGORY(logChatGPT, "zentoro.chatgpt", QtInfoMsg)

} // namespace zentoro
