#include "runtime/CrashFallback.h"

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

// Versions given as (number, crashed), then the running, loading and last good numbers.
RuntimeState withVersions(std::initializer_list<std::pair<int, bool>> versions, std::optional<int> current = {},
                          std::optional<int> loading = {}, std::optional<int> lastGood = {})
{
    RuntimeState state;
    for (auto [number, crashed] : versions) {
        state.versions.append(VersionRecord{number, {}, QStringLiteral("v%1").arg(number), crashed});
        state.nextNumber = number + 1;
    }
    state.current = current;
    state.loading = loading;
    state.lastGood = lastGood;
    return state;
}

const CrashLog::PreviousCrash fatal{QStringLiteral("Fatal error: Unexpectedly found nil")};
const QString timer = QStringLiteral("Timer");

} // namespace

// The shown notes of each case are the crash end-to-end test's; here, the state and the
// words for the agent, which must send it to the crash log.
TEST(CrashFallback, ACrashLaterInARunRunsTheSameVersionAgain)
{
    const RuntimeState state = withVersions({{1, false}, {2, false}}, 2, {}, 2);
    const auto judgement = CrashFallback::judge(state, fatal, timer);
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
    auto judgement = CrashFallback::judge(withVersions({{1, false}}, 1, 1), fatal, timer);
    EXPECT_TRUE(judgement.saveState);
    EXPECT_TRUE(judgement.state.versions[0].crashed);
    EXPECT_EQ(judgement.state.current, std::nullopt);
    EXPECT_EQ(judgement.state.loading, std::nullopt);
    EXPECT_EQ(judgement.banner->title,
              QStringLiteral("Version 1 crashed while starting, so Timer went back to an empty window."));
    EXPECT_TRUE(judgement.told.endsWith(
        QStringLiteral("read_log with which=\"crash\" shows that run's output and backtrace.")));

    // Killed, so without details.
    judgement = CrashFallback::judge(withVersions({{1, false}, {2, false}, {3, false}}, 3, 3, 2), std::nullopt, timer);
    EXPECT_EQ(judgement.state.current, 2);
    EXPECT_TRUE(judgement.state.versions[2].crashed);
    EXPECT_EQ(judgement.banner->detail, std::nullopt);
    EXPECT_TRUE(
        judgement.told.startsWith(QStringLiteral("Version 3 crashed the app while it was starting (no details). "
                                                 "Zentoro fell back to version 2.")));

    // A loading number without a record still falls back.
    judgement = CrashFallback::judge(withVersions({{1, false}}, 7, 7, 1), std::nullopt, timer);
    EXPECT_EQ(judgement.state.current, 1);
    EXPECT_FALSE(judgement.state.versions[0].crashed);
    EXPECT_EQ(judgement.banner->title,
              QStringLiteral("Version 7 crashed while starting, so Timer went back to version 1."));
}

// The watchdog saw the app's code hold the window: while starting, that falls back like a
// crash, and the agent is sent to the run's log; later in a run that ended, it is nothing.
TEST(CrashFallback, AStartThatHeldTheWindowFallsBackAndAHeldWindowLaterIsNoCrash)
{
    const CrashLog::PreviousCrash held{QStringLiteral("the app's code has kept the window from responding for 10 "
                                                      "seconds"),
                                       true};
    auto judgement = CrashFallback::judge(withVersions({{1, false}, {2, false}}, 2, 2, 1), held, timer);
    EXPECT_EQ(judgement.state.current, 1);
    EXPECT_TRUE(judgement.state.versions[1].crashed);
    EXPECT_EQ(judgement.banner,
              (Banner{QStringLiteral("Version 2 hung while starting, so Timer went back to version 1."), held.text,
                      true}));
    EXPECT_EQ(judgement.told,
              QStringLiteral("Version 2 hung the app while it was starting (the app's code has kept the window from "
                             "responding for 10 seconds). Zentoro fell back to version 1. The source files still "
                             "contain version 2's code. read_log with which=\"previous\" shows that run's output."));

    const RuntimeState settled = withVersions({{1, false}, {2, false}}, 2, {}, 2);
    EXPECT_EQ(CrashFallback::judge(settled, held, timer), CrashFallback::Judgement{settled});
}

TEST(CrashFallback, TheFallbackIsTheLastGoodVersionOrTheNewestThatNeverCrashed)
{
    // The last good version alone counts when it isn't the one that crashed.
    EXPECT_EQ(CrashFallback::fallback(withVersions({{1, false}, {2, false}, {3, false}}, {}, {}, 1), 3), 1);
    // A once-good version that crashes now: the newest other version that never crashed.
    RuntimeState state = withVersions({{1, false}, {2, true}, {3, false}, {4, false}}, {}, {}, 3);
    EXPECT_EQ(CrashFallback::fallback(state, 3), 4);
    state.versions[3].crashed = true;
    EXPECT_EQ(CrashFallback::fallback(state, 3), 1);
    state.versions[0].crashed = true;
    EXPECT_EQ(CrashFallback::fallback(state, 3), std::nullopt);
    // Older versions are not tried without a last good one.
    EXPECT_EQ(CrashFallback::fallback(withVersions({{1, false}, {2, false}}), 2), std::nullopt);
}
