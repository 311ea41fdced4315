#pragma once

#include "core/JSON.h"
#include "core/MainTask.h"
#include "model_service/Failures.h"

#include <QByteArray>
#include <QString>

#include <QCoroTask>

#include <functional>

namespace zentoro::OpenAI {

// The model service's origin: `ZENTORO_API_BASE` when set (a local server that speaks
// the Responses interface, or a test's fake), else the one saved in Settings, else
// https://api.openai.com.
QString origin();

// Posts `body` to the Responses interface and reads its event stream to the finished
// response object. `onItemStarted` runs on the main thread as each output item starts,
// in stream order. Raises Failure when the service refuses or the stream fails, and
// NetworkError for transport failures; cancelling `task` aborts the request at once and
// raises NetworkError with OperationCanceledError.
QCoro::Task<JSON> respond(const TaskHandle &task, const QString &bearer, const JSON &body,
                          const std::function<void(const JSON &item)> &onItemStarted);

// The failure that an unsuccessful `status` and its body stand for, in the service's words.
Failure failure(int status, const QByteArray &data);

// Error bodies are read up to this many bytes and one more.
inline constexpr qsizetype errorBodyLimit = 200'000;

} // namespace zentoro::OpenAI
