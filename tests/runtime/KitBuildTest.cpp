#include "KitTestSupport.h"

#include "support/Await.h"
#include "support/Files.h"

#include "runtime/Shell.h"

#include "runtime/Workspace.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace zentoro;

TEST(KitBuild, CachesTheKitPerCompilerWithTheFlagsAppsNeed)
{
    ZENTORO_REQUIRE_SWIFTC();
    const Kit::Build &build = test::sharedKit();
    ASSERT_TRUE(build.ok()) << build.error.toStdString();
    const QString folder = Kit::cacheFolder(QStringLiteral("Swift test"));
    EXPECT_TRUE(folder.startsWith(Workspace::support() + QStringLiteral("/KitCache/") + Kit::version() + u'-'));
    // Each kit and compiler has a library name, and soname, of its own.
    const QString identity = Kit::identity(QStringLiteral("Swift test"));
    EXPECT_EQ(QFileInfo(folder).fileName(), identity);
    EXPECT_TRUE(QFile::exists(folder + QStringLiteral("/libSwiftUI-") + identity + QStringLiteral(".so")));
    EXPECT_TRUE(QFile::exists(folder + QStringLiteral("/SwiftUI.swiftmodule")));
    EXPECT_TRUE(QFile::exists(folder + QStringLiteral("/include/zentoro_host.h")));
    EXPECT_EQ(build.arguments, Kit::appArguments(folder));
    EXPECT_TRUE(build.arguments.contains(QStringLiteral("-lSwiftUI-") + identity));
    const Shell::Result soname = test::await(
        Shell::run(QStringLiteral("/bin/sh"),
                   {QStringLiteral("-c"), QStringLiteral("readelf -d \"$0\" 2>/dev/null || objdump -p \"$0\""),
                    folder + u'/' + Kit::libraryName(identity)}));
    EXPECT_TRUE(soname.output.contains(Kit::libraryName(identity))) << soname.output.toStdString();

    // A second request finds the cache and does not run the compiler, so a bad path is no matter.
    const Kit::Build again = test::await(
        Kit::ensureBuilt({}, QStringLiteral("/nonexistent/swiftc"), QStringLiteral("Swift test")));
    EXPECT_EQ(again, build);
}

TEST(KitBuild, AFailedBuildSaysSoInCleanedWordsAndLeavesNoCache)
{
    const Kit::Build build = test::await(
        Kit::ensureBuilt({}, QStringLiteral("/nonexistent/swiftc"), QStringLiteral("missing")));
    EXPECT_FALSE(build.ok());
    EXPECT_TRUE(build.arguments.isEmpty());
    EXPECT_TRUE(build.error.startsWith(QStringLiteral("The UI kit didn't build"))) << build.error.toStdString();
    EXPECT_FALSE(QFile::exists(Kit::cacheFolder(QStringLiteral("missing"))));

    // A compiler that complains at length about the kit's files: the model gets the kit's own
    // paths, cut like any build output.
    QTemporaryDir folder;
    const QString swiftc = folder.filePath(QStringLiteral("swiftc"));
    test::writeFile(swiftc,
                    "#!/bin/sh\ni=0\nwhile [ $i -lt 400 ]; do\n"
                    "  echo \"$PWD/src/Sources/SwiftUI/Layout/Stacks.swift:$i:1: error: the kit went wrong here\"\n"
                    "  i=$((i+1))\ndone\nexit 1\n");
    QFile::setPermissions(swiftc, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const Kit::Build noisy = test::await(Kit::ensureBuilt({}, swiftc, QStringLiteral("noisy")));
    EXPECT_TRUE(
        noisy.error.startsWith(QStringLiteral("The UI kit didn't build:\nSources/SwiftUI/Layout/Stacks.swift:0:1: "
                                              "error: the kit went wrong here\n")))
        << noisy.error.left(300).toStdString();
    EXPECT_FALSE(noisy.error.contains(QStringLiteral(".building-")));
    EXPECT_TRUE(noisy.error.endsWith(QStringLiteral("\n… (output truncated)")));
    EXPECT_LT(noisy.error.size(), 12100);
    // Compiler names become safe folder names.
    EXPECT_TRUE(Kit::cacheFolder(QStringLiteral("Swift 6.3.1 (x/y)")).endsWith(QStringLiteral("-Swift_6.3.1__x_y_")));
}

// The kit `make` prepared beside the program is taken as it is for its own compiler; for any
// other, the ordinary cache is built.
TEST(KitBuild, APreparedKitBesideTheProgramIsUsedOnlyForItsCompiler)
{
    const QString prepared = Kit::preparedFolder(QStringLiteral("Prepared 1.0"));
    EXPECT_TRUE(prepared.startsWith(QCoreApplication::applicationDirPath() + QStringLiteral("/KitCache/")));
    for (const QString &file : {u'/' + Kit::libraryName(Kit::identity(QStringLiteral("Prepared 1.0"))),
                                QStringLiteral("/SwiftUI.swiftmodule")})
        test::writeFile(prepared + file, "prepared");
    const Kit::Build found = test::await(
        Kit::ensureBuilt({}, QStringLiteral("/nonexistent/swiftc"), QStringLiteral("Prepared 1.0")));
    EXPECT_EQ(found, (Kit::Build{Kit::appArguments(prepared), {}}));
    const Kit::Build other = test::await(
        Kit::ensureBuilt({}, QStringLiteral("/nonexistent/swiftc"), QStringLiteral("Prepared 2.0")));
    EXPECT_TRUE(other.error.startsWith(QStringLiteral("The UI kit didn't build"))) << other.error.toStdString();
    QDir(prepared).removeRecursively();
}
