#pragma once

#include "chatgpt/Account.h"

#include <QString>

#include <QCoroTask>

#include <functional>
#include <optional>

// "chatgpt.json" in the folder that all copies share: the one truth about the signed-in
// accounts, re-read often because another running copy may have changed it.
namespace zentoro::CredentialStore {

QString path(const QString &folder);
QString lockPath(const QString &folder);

// The file's credentials; absent when it is missing or doesn't decode.
std::optional<ChatGPTCredentials> read(const QString &folder);
// Writes `credentials` whole, readable by the owner alone from the start. Raises Failure
// "Couldn't save the ChatGPT sign-in to <path>." and leaves the old file as it was.
void write(const QString &folder, const ChatGPTCredentials &credentials);
// Reads the file (a fresh set when there is none), applies `change`, writes and returns the result.
ChatGPTCredentials update(const QString &folder, const std::function<void(ChatGPTCredentials &)> &change);

// Waits off the main thread for the exclusive lock that all copies take around a token
// refresh. Returns its descriptor, negative when the lock file can't be opened: the caller
// then goes on without it. A cancelled caller doesn't cut the wait short.
QCoro::Task<int> lock(const QString &folder);
// Releases what `lock` returned; nothing for a negative descriptor.
void unlock(int descriptor);

} // namespace zentoro::CredentialStore
