#pragma once

#include "core/MainTask.h"

#include <QString>
#include <QStringList>

#include <QCoroTask>

namespace zentoro {

// Runs a command and captures what it says. The main thread stays free while the child
// runs; there is no time limit, but cancelling `task` kills the child.
namespace Shell {

struct Result {
    // The exit status; the signal's number when the child was killed; -1 when it could
    // not be started.
    int status = -1;
    // Standard output and standard error as one stream, UTF-8 with invalid bytes repaired;
    // the system's words when the child could not be started.
    QString output;

    bool operator==(const Result &) const = default;
};

// Standard input is the null device and the environment is inherited. An empty
// `directory` keeps this process's working directory.
QCoro::Task<Result> run(QString executable, QStringList arguments, QString directory = {}, TaskHandle task = {});

} // namespace Shell

} // namespace zentoro
