#pragma once

#include <QString>

#include <optional>

// Where requests to the model service go: OpenAI's own origin, or any server that speaks the
// Responses interface, such as a model server on this machine.
namespace zentoro::ServiceOrigin {

inline constexpr auto standard = "https://api.openai.com";

// `ZENTORO_API_BASE` without blanks or a closing slash; absent when unset or blank. It wins
// over the saved origin for the run it is set in.
std::optional<QString> environment();
// The origin saved for every copy; absent when none is.
std::optional<QString> saved();
// The origin requests use: the environment's, else the saved one, else the standard one.
QString inUse();

// The address as it would be saved: trimmed, without closing slashes. Raises Failure with
// words for the user when it isn't the address of a server.
QString normalized(const QString &text);
// Saves `text` for every copy; blank text removes the saved origin. Raises as `normalized`.
void save(const QString &text);

} // namespace zentoro::ServiceOrigin
