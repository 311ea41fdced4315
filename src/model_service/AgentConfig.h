#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace zentoro::AgentConfig {

inline constexpr auto defaultModel = "gpt-6.1-sol";

// "openai-key" in the support folder that all copies share.
QString keyPath();

// The key saved in the key file, without surrounding white space; absent when the file
// is missing, unreadable or blank.
std::optional<QString> savedKey();
// `OPENAI_API_KEY`, trimmed; absent when unset or blank.
std::optional<QString> environmentKey();
// The key that requests use: the saved one wins over the environment's.
std::optional<QString> effectiveKey();

// Replaces the saved key; absent or blank text removes it. The file is readable by its
// owner alone from the moment it exists. Raises Failure when it can't be
// written, and the old key is gone then too.
void saveAPIKey(const std::optional<QString> &key);

// The model slug that requests ask for: the "model" setting, or the default.
QString model();
// Stores the "model" setting as typed; the next request reads it.
void setModel(const QString &model);
// The ids offered with an API key, in the order of the menu.
QStringList apiKeyModels();

// The "reasoningEffort" setting: empty for the model's default, "low", "medium" or "high".
QString reasoningEffort();
void setReasoningEffort(const QString &effort);
// The values, the model's default first.
QStringList reasoningEfforts();

} // namespace zentoro::AgentConfig
