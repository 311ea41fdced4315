#pragma once

#include "core/DescribedError.h"

#include <QString>

namespace zentoro {

// An error with one text for the user: the workspace's, the model service client's and
// the sign-in's words all travel in it.
struct Failure : DescribedError {
    QString message;
    explicit Failure(QString message) : message(std::move(message)) {}
    QString errorDescription() const override { return message; }
};

} // namespace zentoro
