#pragma once

#include <QString>

#include <optional>

namespace zentoro {

// The two ways of reaching the model.
enum class Provider { ChatGPT, APIKey };

// The stored texts: "chatgpt" and "apiKey".
QString providerText(Provider provider);
std::optional<Provider> providerFromText(const QString &text);

} // namespace zentoro
