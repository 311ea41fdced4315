#include "model_service/Provider.h"

namespace zentoro {

QString providerText(Provider provider)
{
    return provider == Provider::ChatGPT ? QStringLiteral("chatgpt") : QStringLiteral("apiKey");
}

std::optional<Provider> providerFromText(const QString &text)
{
    if (text == u"chatgpt")
        return Provider::ChatGPT;
    if (text == u"apiKey")
        return Provider::APIKey;
    return std::nullopt;
}

} // namespace zentoro
