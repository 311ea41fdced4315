#include "model_service/Failures.h"

namespace zentoro {

QString OpenAI::Failure::errorDescription() const
{
    if (status == 0)
        return message;
    return QStringLiteral("OpenAI error %1: %2").arg(status).arg(message);
}

} // namespace zentoro
