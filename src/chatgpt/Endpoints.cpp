#include "chatgpt/Endpoints.h"

#include "model_service/OpenAI.h"

namespace zentoro {

namespace {

QString origin(const char *variable, const QString &fallback)
{
    QString configured = qEnvironmentVariable(variable).trimmed();
    if (configured.isEmpty())
        return fallback;
    while (configured.endsWith(u'/'))
        configured.chop(1);
    return configured;
}

} // namespace

ChatGPTEndpoints ChatGPTEndpoints::standard()
{
    return ChatGPTEndpoints{origin("ZENTORO_AUTH_BASE", QStringLiteral("https://auth.openai.com")),
                            origin("ZENTORO_CHATGPT_BASE", QStringLiteral("https://chatgpt.com")), OpenAI::origin()};
}

} // namespace zentoro
