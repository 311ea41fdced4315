#include "KitTestSupport.h"

#include "support/Await.h"
#include "support/Files.h"

#include "runtime/Workspace.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace zentoro;

TEST(KitBuild, CachesTheKitPerCompilerWithTheFlagsAppsNeed)
{
    ZENTORO_REQUIRE_SWIFTC();
    const Kit::Build &build = test::sharedKit();
    ASSERT_TRUE(build.ok()) << build.error.toStdString();
    const QString folder = Kit::cacheFolder(QStringLiteral("Swift test"));
    EXPECT_TRUE(folder.startsWith(Workspace::support() + QStringLiteral("/KitCache/") + Kit::version() + u'-'));
    EXPECT_TRUE(QFile::exists(folder + QStringLiteral("/libSwiftUI.so")));
    EXPECT_TRUE(QFile::exists(folder + QStringLiteral("/SwiftUI.swiftmodule")));
    EXPECT_TRUE(QFile::exists(folder + QStringLiteral("/include/zentoro_host.h")));
    EXPECT_EQ(build.arguments, Kit::appArguments(folder));
    EXPECT_TRUE(build.arguments.contains(QStringLiteral("-lSwiftUI")));

    // A second request finds the cache and does not run the compiler, so a bad path is no matter.
    const Kit::Build again = test::await(Kit::ensureBuilt({}, QStringLiteral("/nonexistent/swiftc"), QStringLiteral("Swift test")));
    EXPECT_EQ(again, build);
}

TEST(KitBuild, AFailedBuildSaysSoAndLeavesNoCache)
{
    const Kit::Build build = test::await(Kit::ensureBuilt({}, QStringLiteral("/nonexistent/swiftc"), QStringLiteral("missing")));
    EXPECT_FALSE(build.ok());
    EXPECT_TRUE(build.arguments.isEmpty());
    EXPECT_TRUE(build.error.startsWith(QStringLiteral("The UI kit didn't build"))) << build.error.toStdString();
    EXPECT_FALSE(QFile::exists(Kit::cacheFolder(QStringLiteral("missing"))));
    // Compiler names become safe folder names.
    EXPECT_TRUE(Kit::cacheFolder(QStringLiteral("Swift 6.3.1 (x/y)")).endsWith(QStringLiteral("-Swift_6.3.1__x_y_")));
}

// The kit `make` prepared beside the program is taken as it is for its own compiler; for any
// other, the ordinary cache is built.
TEST(KitBuild, APreparedKitBesideTheProgramIsUsedOnlyForItsCompiler)
{
    const QString prepared = Kit::preparedFolder(QStringLiteral("Prepared 1.0"));
    EXPECT_TRUE(prepared.startsWith(QCoreApplication::applicationDirPath() + QStringLiteral("/KitCache/")));
    for (const QString &file : {QStringLiteral("/libSwiftUI.so"), QStringLiteral("/SwiftUI.swiftmodule")})
        test::writeFile(prepared + file, "prepared");
    const Kit::Build found = test::await(Kit::ensureBuilt({}, QStringLiteral("/nonexistent/swiftc"), QStringLiteral("Prepared 1.0")));
    EXPECT_EQ(found, (Kit::Build{Kit::appArguments(prepared), {}}));
    const Kit::Build other = test::await(Kit::ensureBuilt({}, QStringLiteral("/nonexistent/swiftc"), QStringLiteral("Prepared 2.0")));
    EXPECT_TRUE(other.error.startsWith(QStringLiteral("The UI kit didn't build"))) << other.error.toStdString();
    QDir(prepared).removeRecursively();
}
