#include "runtime/PluginContainerView.h"
#include "runtime/Runtime.h"
#include "runtime/Watchdog.h"

#include "support/Await.h"
#include "support/Files.h"
#include "support/VersionLibrary.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryFile>
#include <QThread>

#include <gtest/gtest.h>

using namespace zentoro;
using namespace std::chrono_literals;

namespace {

// Loading needs nothing of Swift: a C library that exports the factory stands in for a
// version's library here, built by the system's C compiler.
class RuntimeLoad : public ::testing::Test {
protected:
    void SetUp() override
    {
        cc_ = test::cCompiler();
        if (cc_.isEmpty())
            GTEST_SKIP() << "No C compiler to make a test library with.";
        workspace_ = Workspace::forName(QStringLiteral("Load ") +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
        QDir(workspace_.root).removeRecursively();
    }

    void makeVersion(int number, const QByteArray &body = test::standInLibrary())
    {
        test::buildVersionLibrary(cc_, workspace_, number, body);
    }

    RuntimeState onDisk() const { return RuntimeState::read(workspace_.stateFile()); }

    QString cc_;
    Workspace workspace_;
};

} // namespace

TEST_F(RuntimeLoad, StateIsOnDiskBeforeTheLibraryOpensAndTheVersionProvesItselfFourSecondsAfterItsFirstFrame)
{
    makeVersion(1);
    Runtime runtime(workspace_);
    PluginContainerView container(&runtime);
    container.resize(200, 100);
    EXPECT_EQ(container.shownGeneration(), 0);

    int generations = 0;
    QObject::connect(&runtime, &Runtime::generationChanged, [&] { ++generations; });
    EXPECT_EQ(runtime.load(1), std::nullopt);
    EXPECT_EQ(runtime.loadedVersion(), 1);
    EXPECT_EQ(generations, 1);
    EXPECT_EQ(onDisk().loading, 1);
    EXPECT_EQ(onDisk().current, 1);
    // The container follows in its next pass, not inside `load`; a null view shows nothing.
    EXPECT_EQ(container.shownGeneration(), 0);
    ASSERT_TRUE(test::spinUntil([&] { return container.shownGeneration() == 1; }));
    EXPECT_EQ(container.content(), nullptr);

    // Not on screen yet, however long it takes: not proved.
    test::spinUntil([] { return false; }, 4500ms);
    EXPECT_EQ(runtime.state().lastGood, std::nullopt);
    EXPECT_EQ(onDisk().loading, 1);

    QElapsedTimer clock;
    clock.start();
    container.show();
    ASSERT_TRUE(test::spinUntil([&] { return runtime.state().lastGood == 1; }, 8s));
    EXPECT_GE(clock.elapsed(), 3990);
    EXPECT_EQ(runtime.state().loading, std::nullopt);
    EXPECT_EQ(onDisk(), runtime.state());
}

TEST_F(RuntimeLoad, AFailedLoadLeavesTheRunningVersionAndTheScreenAsTheyWere)
{
    Runtime runtime(workspace_);
    // Nothing running: `current` goes back to none.
    const std::optional<QString> missing = runtime.load(9);
    ASSERT_TRUE(missing);
    EXPECT_TRUE(missing->contains(QStringLiteral("libZentoroApp9.so"))) << missing->toStdString();
    EXPECT_EQ(onDisk().current, std::nullopt);
    EXPECT_EQ(onDisk().loading, std::nullopt);

    makeVersion(1);
    makeVersion(2, "int zentoro_something_else(void) { return 2; }\n");
    ASSERT_EQ(runtime.load(1), std::nullopt);
    const Runtime::Factory factory = runtime.factory();

    EXPECT_EQ(runtime.load(2), QStringLiteral("The library has no zentoro_make_root_view."));
    // A library built against a kit this host can't speak to fails here, not blank in the window.
    makeVersion(3, test::standInLibrary(ZENTORO_HOST_INTERFACE_VERSION - 1));
    EXPECT_EQ(runtime.load(3), QStringLiteral("The library uses UI kit interface %1; this Zentoro speaks %2.")
                                   .arg(ZENTORO_HOST_INTERFACE_VERSION - 1)
                                   .arg(ZENTORO_HOST_INTERFACE_VERSION));
    makeVersion(4, "void *zentoro_make_root_view(void) { return 0; }\n");
    EXPECT_EQ(runtime.load(4), QStringLiteral("The library has no zentoro_kit_interface_version; it was not built "
                                              "against Zentoro's UI kit."));
    EXPECT_EQ(runtime.generation(), 1);
    EXPECT_EQ(runtime.factory(), factory);
    EXPECT_EQ(onDisk().current, 1);
    EXPECT_EQ(onDisk().loading, std::nullopt);
}

TEST_F(RuntimeLoad, ALaterLoadWithinTheProvingTimeOwnsTheState)
{
    makeVersion(1);
    makeVersion(2);
    Runtime runtime(workspace_);
    PluginContainerView container(&runtime);
    container.resize(200, 100);
    container.show();
    QList<int> lastGoods;
    QObject::connect(&runtime, &Runtime::stateChanged, [&] {
        if (runtime.state().lastGood && (lastGoods.isEmpty() || lastGoods.last() != *runtime.state().lastGood))
            lastGoods.append(*runtime.state().lastGood);
    });
    ASSERT_EQ(runtime.load(1), std::nullopt);
    test::spinUntil([] { return false; }, 1500ms);
    ASSERT_EQ(runtime.load(2), std::nullopt);
    ASSERT_TRUE(test::spinUntil([&] { return runtime.state().lastGood.has_value(); }, 8s));
    EXPECT_EQ(lastGoods, QList<int>{2});
    // Loading the running version again makes a fresh generation from the same factory.
    const int before = runtime.generation();
    ASSERT_EQ(runtime.load(2), std::nullopt);
    EXPECT_EQ(runtime.generation(), before + 1);
}

// The app's code held the main thread while the version was on probation: it is never proved,
// and stays loading on disk, so the next start takes it for a crash while starting.
TEST_F(RuntimeLoad, AVersionThatHeldTheWindowWhileStartingIsNeverProved)
{
    makeVersion(1);
    QTemporaryFile log;
    ASSERT_TRUE(log.open());
    Watchdog watchdog(log.handle(), {300ms, qint64(1) << 30});
    Runtime runtime(workspace_);
    PluginContainerView container(&runtime);
    container.resize(200, 100);
    container.show();
    ASSERT_EQ(runtime.load(1), std::nullopt);
    ASSERT_TRUE(test::spinUntil([&] { return container.shownGeneration() == 1; }));
    QThread::msleep(800);
    test::spinUntil([] { return false; }, 5s);
    EXPECT_EQ(runtime.state().lastGood, std::nullopt);
    EXPECT_EQ(onDisk().loading, 1);
    EXPECT_TRUE(test::readText(log.fileName()).startsWith(QString::fromLatin1(Watchdog::stuckLine)));
}
