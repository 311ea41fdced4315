#pragma once

#include "KitTestSupport.h"

#include "runtime/Workspace.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <utility>

#include <sys/types.h>

namespace zentoro::test {

// The `zentoro` program of this build folder, which the end-to-end tests start.
QString programPath();

// Empties the copy's folder and builds its starter app as version 1 with the real compiler,
// then each of `changes` (a source file and its new text) as the next version.
::testing::AssertionResult buildVersions(const Workspace &workspace,
                                         const QList<std::pair<QString, QByteArray>> &changes = {});

// Processes found through /proc by what their command line holds: the programs of one copy
// (their executable's path, which a restart's waiting script carries too) or the compilers a
// build started (the copy's folder). These outlive the process that started them, so a test
// finds and ends them here rather than through its own children.
namespace ProcessTable {
// Live processes other than this one whose command line contains `text`.
QList<pid_t> mentioning(const QString &text);
// False once the process has ended, also while it waits to be reaped.
bool isAlive(pid_t pid);
// Processes whose parent is `pid`, also those that have ended and wait to be reaped.
QList<pid_t> childrenOf(pid_t pid);
// Kills every process whose command line contains one of `texts` until none is left or
// `timeout` passes; true when none is left.
bool killAll(const QStringList &texts, std::chrono::milliseconds timeout = std::chrono::seconds(10));
// The one of `among` that holds the client end of this machine's IPv4 TCP connection from
// `clientPort` to `serverPort`; 0 when none does, as once the sender has ended.
pid_t holdingConnection(quint16 clientPort, quint16 serverPort, const QList<pid_t> &among);
} // namespace ProcessTable

// The real program started as the copy `name` (a link of that name to the executable) with the
// offscreen platform; every process of the copy is killed when this ends.
class Program {
    QTemporaryDir folder_;

public:
    explicit Program(const QString &name);
    ~Program();

    QProcessEnvironment environment;
    QProcess process;
    const Workspace workspace;
    const QString link;

    void start(const QStringList &arguments = {});
};

} // namespace zentoro::test

// Skips the test when the program or a Swift compiler is missing.
#define ZENTORO_REQUIRE_PROGRAM()                                                                                      \
    if (!QFile::exists(zentoro::test::programPath()))                                                                  \
        GTEST_SKIP() << "The zentoro program isn't built beside the tests.";                                           \
    ZENTORO_REQUIRE_SWIFTC()
