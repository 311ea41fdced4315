#include "runtime/CrashFallback.h"

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

RuntimeState withVersions(std::initializer_list<std::pair<int, bool>> versions)
{
    RuntimeState state;
    for (auto [number, crashed] : versions) {
        VersionRecord record;
        record.number = number;
        record.summary = QStringLiteral("v%1").arg(number);
        record.crashed = crashed;
        state.versions.append(record);
        state.nextNumber = number + 1;
    }
    return state;
}

const CrashLog::PreviousCrash fatal{QStringLiteral("Fatal error: Unexpectedly found nil")};

} // namespace

// The shown notes of each case are the crash end-to-end test's; here, the state and the
// words for the agent, which must send it to the crash log.
TEST(CrashFallback, ACrashLaterInARunRunsTheSameVersionAgain)
{
    RuntimeState state = withVersions({{1, false}, {2, false}});
    state.current = 2;
    state.lastGood = 2;
    const auto judgement = CrashFallback::judge(state, fatal, QStringLiteral("Timer"));
    EXPECT_EQ(judgement.state, state);
    EXPECT_FALSE(judgement.saveState);
    EXPECT_EQ(judgement.banner,
              (Banner{QStringLiteral("Timer crashed last time it ran (version 2)."), fatal.text, true}));
    EXPECT_EQ(judgement.told, QStringLiteral("Zentoro crashed during its previous run while running version 2: Fatal "
                                             "error: Unexpectedly found nil. read_log with which=\"crash\" shows that "
                                             "run's output and backtrace."));
}

TEST(CrashFallback, ACrashWhileStartingFallsBackToTheLastGoodVersionOrAnEmptyWindow)
{
    RuntimeState state = withVersions({{1, false}});
    state.current = 1;
    state.loading = 1;
    auto judgement = CrashFallback::judge(state, fatal, QStringLiteral("Timer"));
    EXPECT_TRUE(judgement.saveState);
    EXPECT_TRUE(judgement.state.versions[0].crashed);
    EXPECT_EQ(judgement.state.current, std::nullopt);
    EXPECT_EQ(judgement.state.loading, std::nullopt);
    EXPECT_EQ(judgement.banner->title, QStringLiteral("Version 1 crashed while starting, so Timer went back to an empty window."));
    EXPECT_TRUE(judgement.told.endsWith(QStringLiteral("read_log with which=\"crash\" shows that run's output and backtrace.")));

    // Killed, so without details.
    state = withVersions({{1, false}, {2, false}, {3, false}});
    state.current = 3;
    state.loading = 3;
    state.lastGood = 2;
    judgement = CrashFallback::judge(state, std::nullopt, QStringLiteral("Timer"));
    EXPECT_EQ(judgement.state.current, 2);
    EXPECT_TRUE(judgement.state.versions[2].crashed);
    EXPECT_EQ(judgement.banner->detail, std::nullopt);
    EXPECT_TRUE(judgement.told.startsWith(QStringLiteral("Version 3 crashed the app while it was starting (no details). "
                                                         "Zentoro fell back to version 2.")));
}

TEST(CrashFallback, TheFallbackSearch)
{
    // The last good version alone counts when it isn't the one that crashed.
    RuntimeState state = withVersions({{1, false}, {2, false}, {3, false}});
    state.lastGood = 1;
    EXPECT_EQ(CrashFallback::fallback(state, 3), 1);
    // A once-good version that crashes now: the newest other version that never crashed.
    state = withVersions({{1, false}, {2, true}, {3, false}, {4, false}});
    state.lastGood = 3;
    EXPECT_EQ(CrashFallback::fallback(state, 3), 4);
    state.versions[3].crashed = true;
    EXPECT_EQ(CrashFallback::fallback(state, 3), 1);
    state.versions[0].crashed = true;
    EXPECT_EQ(CrashFallback::fallback(state, 3), std::nullopt);
    // Older versions are not tried without a last good one.
    state = withVersions({{1, false}, {2, false}});
    EXPECT_EQ(CrashFallback::fallback(state, 2), std::nullopt);
}

TEST(CrashFallback, ALoadingNumberWithoutARecordStillFallsBack)
{
    RuntimeState state = withVersions({{1, false}});
    state.lastGood = 1;
    state.current = 7;
    state.loading = 7;
    const auto judgement = CrashFallback::judge(state, std::nullopt, QStringLiteral("Timer"));
    EXPECT_EQ(judgement.state.current, 1);
    EXPECT_FALSE(judgement.state.versions[0].crashed);
    EXPECT_EQ(judgement.banner->title, QStringLiteral("Version 7 crashed while starting, so Timer went back to version 1."));
}
