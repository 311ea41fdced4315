#pragma once

#include "core/MainTask.h"

#include <QByteArray>
#include <QNetworkRequest>

#include <QCoroTask>

// Plain requests to the sign-in service and the plan's model list, answered whole.
namespace zentoro::Http {

struct Reply {
    // The HTTP status; 0 for an answer that isn't HTTP.
    int status = 0;
    QByteArray body;
};

// Sends `verb` with `body`, waiting at most `timeoutMilliseconds`. Raises NetworkError for a
// transport failure, and with OperationCanceledError when `task` is cancelled.
QCoro::Task<Reply> send(TaskHandle task, QNetworkRequest request, QByteArray verb, QByteArray body = {},
                        int timeoutMilliseconds = 60'000);

} // namespace zentoro::Http
