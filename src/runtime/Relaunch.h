#pragma once

#include <QString>

#include <optional>

#include <sys/types.h>

namespace zentoro::Relaunch {

// A shell script that waits for process `pid` to end (a zombie has ended) and then becomes
// the program named by its `$0`, with "-ZentoroSafeMode YES" for safe mode. An API key from
// the environment is passed by reference to the shell's variable, never written into the text.
QString script(qint64 pid, bool safeMode);

// The program as the user started it: the AppImage when running from one, otherwise `argv0`
// made absolute without resolving links, so that a linked copy comes back under its own name.
QString executableFrom(const QString &argv0, const QString &appImage);
// Kept once at start, before anything can change the working folder.
void rememberExecutable(const QString &argv0);
// The remembered path; the resolved program file when nothing was remembered.
QString executable();

// Runs `/bin/sh -c <script> <program>` in a session of its own, so it outlives this process,
// without waiting for it. The error's words when it couldn't start; `pid` gets the shell's id.
std::optional<QString> start(const QString &script, const QString &program, pid_t *pid = nullptr);

} // namespace zentoro::Relaunch
