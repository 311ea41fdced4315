#pragma once

#include "core/DescribedError.h"

#include <QNetworkReply>
#include <QString>

#include <exception>
#include <optional>

namespace zentoro {

namespace OpenAI {
// A failed model request, in the service's words.
struct Failure : DescribedError {
    int status = 0;
    std::optional<QString> code;
    std::optional<QString> param;
    QString message;

    Failure(int status, std::optional<QString> code, std::optional<QString> param, QString message)
        : status(status), code(std::move(code)), param(std::move(param)), message(std::move(message))
    {
    }
    // "OpenAI error <status>: <message>", or the message alone when status is 0.
    QString errorDescription() const override
    {
        return status == 0 ? message : QStringLiteral("OpenAI error %1: %2").arg(status).arg(message);
    }
    bool operator==(const Failure &other) const
    {
        return status == other.status && code == other.code && param == other.param && message == other.message;
    }
};
} // namespace OpenAI

// A transport failure: no answer, a reset connection, a time-out, or a cancelled request.
struct NetworkError : DescribedError {
    QNetworkReply::NetworkError code = QNetworkReply::UnknownNetworkError;
    QString message;

    NetworkError(QNetworkReply::NetworkError code, QString message) : code(code), message(std::move(message)) {}
    bool isCancelled() const { return code == QNetworkReply::OperationCanceledError; }
    QString errorDescription() const override { return message; }
};

} // namespace zentoro
