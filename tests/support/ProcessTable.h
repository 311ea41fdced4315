#pragma once

#include <QList>
#include <QString>

#include <chrono>

#include <sys/types.h>

namespace zentoro::test {

// Processes found through /proc by what their command line holds: the programs of one copy
// (their executable's path, which a restart's waiting script carries too) or the compilers a
// build started (the copy's folder). These outlive the process that started them, so a test
// that starts programs finds and ends them here rather than through its own children.
namespace ProcessTable {

// Live processes other than this one whose command line contains `text`.
QList<pid_t> mentioning(const QString &text);
// False once the process has ended, also while it waits to be reaped.
bool isAlive(pid_t pid);
// Processes whose parent is `pid`, also those that have ended and wait to be reaped.
QList<pid_t> childrenOf(pid_t pid);
// Kills every process whose command line contains one of `texts`, again and again until none
// is left or `timeout` passes; true when none is left.
bool killAll(const QStringList &texts, std::chrono::milliseconds timeout = std::chrono::seconds(10));

} // namespace ProcessTable
} // namespace zentoro::test
