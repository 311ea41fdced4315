#include "runtime/Toolchain.h"
#include "runtime/DiskFull.h"
#include "runtime/Runtime.h"

#include "core/Defaults.h"

#include "support/Await.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace zentoro;

TEST(Toolchain, TextsAreReadFromTheCompilersWords)
{
    const QString swift631 = QStringLiteral(
        "Swift version 6.3.1 (swift-6.3.1-RELEASE)\nTarget: x86_64-unknown-linux-gnu\n");
    EXPECT_EQ(Toolchain::versionText(swift631), QStringLiteral("Swift 6.3.1"));
    EXPECT_EQ(Toolchain::versionText(QStringLiteral("warning: odd\n\nApple Swift version 6.2 (swift-6.2-RELEASE)")),
              QStringLiteral("Swift 6.2"));
    // Nothing after "version": the whole line stands.
    EXPECT_EQ(Toolchain::versionText(QStringLiteral("Swift version")), QStringLiteral("Swift version"));
    EXPECT_EQ(Toolchain::versionText(QStringLiteral("clang version 17\n")), QStringLiteral("Swift"));
    EXPECT_EQ(Toolchain::versionText(QString()), QStringLiteral("Swift"));
    // A toolchain manager may warn before it prints the toolchain's location.
    EXPECT_EQ(Toolchain::lastLine(QStringLiteral("warning: a\nwarning: b\n  /opt/swift  \n\n")),
              QStringLiteral("/opt/swift"));
    const Toolchain ready = Toolchain::ready({QStringLiteral("/opt/swift/usr/bin/swiftc"), QStringLiteral("/"),
                                              QStringLiteral("Swift 6.3.1"), QStringLiteral("/opt/swift")});
    EXPECT_EQ(ready.description(), QStringLiteral("Swift 6.3.1 at /opt/swift"));
}

namespace {

// Puts only `folder` on PATH for the life of the object.
class PathOverride {
public:
    explicit PathOverride(const QString &folder) : saved_(qgetenv("PATH")) { qputenv("PATH", folder.toUtf8()); }
    ~PathOverride() { qputenv("PATH", saved_); }

private:
    QByteArray saved_;
};

void writeScript(const QString &path, const QByteArray &body)
{
    test::writeFile(path, "#!/bin/sh\n" + body);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace

TEST(Toolchain, ACompilerThatFailsIsBrokenWithItsWords)
{
    QTemporaryDir bin;
    PathOverride path(bin.path());
    writeScript(bin.path() + QStringLiteral("/swiftc"), "exit 1\n");
    EXPECT_EQ(test::await(Toolchain::detect()), Toolchain::broken(QStringLiteral("swiftc failed.")));

    // Its words explain the failure, without the blank lines around them.
    writeScript(bin.path() + QStringLiteral("/swiftc"),
                "echo 'error: cannot find libstdc++  ' >&2\necho >&2\nexit 2\n");
    EXPECT_EQ(test::await(Toolchain::detect()), Toolchain::broken(QStringLiteral("error: cannot find libstdc++")));
}

TEST(Toolchain, FindsTheInstalledCompilerAndItsRoot)
{
    if (!QFile::exists(QStringLiteral("/opt/swift/usr/bin/swiftc")))
        GTEST_SKIP() << "No Swift toolchain in /opt/swift on this machine.";
    // Not on PATH: the usual install folders are searched next.
    PathOverride path(QStringLiteral("/nonexistent"));
    const Toolchain found = test::await(Toolchain::detect());
    ASSERT_TRUE(found.isReady()) << found.description().toStdString();
    EXPECT_EQ(found.compiler()->swiftc, QStringLiteral("/opt/swift/usr/bin/swiftc"));
    EXPECT_EQ(found.compiler()->developerDir, QStringLiteral("/opt/swift"));
    EXPECT_EQ(found.compiler()->sdk, QStringLiteral("/"));
    EXPECT_TRUE(found.compiler()->version.startsWith(QStringLiteral("Swift 6")))
        << found.compiler()->version.toStdString();
}

TEST(Toolchain, SimulatedMissingToolsWinOverAWorkingCompiler)
{
    QTemporaryDir bin;
    PathOverride path(bin.path());
    writeScript(bin.path() + QStringLiteral("/swiftc"), "echo 'Swift version 6.3.1 (swift-6.3.1-RELEASE)'\n");
    ASSERT_TRUE(test::await(Toolchain::detect()).isReady());

    Defaults::setValue(QStringLiteral("ZentoroSimulateMissingTools"), true);
    const Toolchain simulated = test::await(Toolchain::detect());
    Defaults::remove(QStringLiteral("ZentoroSimulateMissingTools"));
    EXPECT_EQ(simulated, Toolchain::missing());
}

// Just after a start the compiler is still being looked for; a build asked for then waits for
// the answer instead of calling the compiler unavailable.
TEST(Toolchain, ABuildAskedForDuringTheCheckWaitsForIt)
{
    QTemporaryDir bin;
    PathOverride path(bin.path());
    writeScript(bin.path() + QStringLiteral("/swiftc"),
                "/bin/sleep 0.3\necho 'Swift version 6.3.1 (swift-6.3.1-RELEASE)'\n");
    QTemporaryDir dir;
    const Workspace workspace{QStringLiteral("Early"), dir.path() + QStringLiteral("/Apps/Early")};
    QDir().mkpath(workspace.sources());
    Runtime runtime(workspace);
    const TaskHandle checking = startTask(
        [&runtime](TaskHandle) -> QCoro::Task<> { co_await runtime.checkToolchain(); });
    ASSERT_EQ(runtime.toolchain().kind(), Toolchain::Case::Checking);
    const BuildOutcome outcome = test::await(runtime.build(QStringLiteral("Early")));
    EXPECT_TRUE(checking.isFinished());
    ASSERT_TRUE(outcome.failure());
    EXPECT_EQ(outcome.failure()->text, QStringLiteral("There are no .swift files in the source folder."));
}

TEST(Toolchain, ABuildThatRanOutOfSpaceIsToldAsAFullDiskNotAsACompilerError)
{
    QTemporaryDir bin;
    PathOverride path(bin.path());
    writeScript(bin.path() + QStringLiteral("/swiftc"),
                "case \"$1\" in --version) echo 'Swift version 6.3.1 (swift-6.3.1-RELEASE)';;\n"
                "*) echo 'error: unable to write module: No space left on device' >&2; exit 1;; esac\n");
    QTemporaryDir dir;
    const Workspace workspace{QStringLiteral("Full"), dir.path() + QStringLiteral("/Apps/Full")};
    test::writeFile(workspace.sources() + QStringLiteral("/AppRoot.swift"), "struct AppRoot {}");
    workspace.prepare();
    Runtime runtime(workspace);
    test::await(runtime.checkToolchain());
    const BuildOutcome outcome = test::await(runtime.build(QStringLiteral("Full")));
    ASSERT_TRUE(outcome.failure());
    EXPECT_EQ(outcome.failure()->text, DiskFull::buildFailure());
}
