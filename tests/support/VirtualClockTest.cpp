#include "testkit/VirtualClock.h"

#include <vector>

#include <gtest/gtest.h>

namespace stavelin::testkit {
namespace {

using namespace std::chrono_literals;

TEST(VirtualClock, standsStillUntilItIsMoved)
{
    VirtualClock clock;
    const auto begin = clock.now();
    EXPECT_EQ(clock.now(), begin);
    clock.advance(3s);
    EXPECT_EQ(clock.now(), begin + 3s);
}

TEST(VirtualClock, runsWhatFallsDueInOrderAndEachAtItsOwnMoment)
{
    VirtualClock clock;
    const auto begin = clock.now();
    std::vector<std::pair<int, std::chrono::nanoseconds>> ran;
    const auto note = [&](int number) {
        return [&, number] { ran.emplace_back(number, clock.now() - begin); };
    };
    clock.after(2s, note(3));
    clock.after(1s, note(1));
    clock.after(1s, note(2));
    clock.after(5s, note(4));
    clock.advance(2s);
    EXPECT_EQ(ran, (std::vector<std::pair<int, std::chrono::nanoseconds>>{{1, 1s}, {2, 1s}, {3, 2s}}));
    EXPECT_EQ(clock.pendingCount(), 1U);
}

TEST(VirtualClock, runsNothingInsideTheCallThatAsksForIt)
{
    VirtualClock clock;
    bool ran = false;
    clock.after(0s, [&] { ran = true; });
    EXPECT_FALSE(ran);
    clock.advance(0s);
    EXPECT_TRUE(ran);
}

TEST(VirtualClock, runsAlsoWhatIsAskedForOnTheWay)
{
    VirtualClock clock;
    int ran = 0;
    clock.after(1s, [&] { clock.after(1s, [&] { ++ran; }); });
    clock.advance(2s);
    EXPECT_EQ(ran, 1);
}

TEST(VirtualClock, aCancelledActionNeverRuns)
{
    VirtualClock clock;
    bool ran = false;
    support::TimerHandle handle = clock.after(1s, [&] { ran = true; });
    EXPECT_TRUE(handle.isPending());
    handle.cancel();
    EXPECT_FALSE(handle.isPending());
    EXPECT_EQ(clock.pendingCount(), 0U);
    clock.advance(1h);
    EXPECT_FALSE(ran);
}

TEST(VirtualClock, aDroppedHandleLeavesTheActionPending)
{
    VirtualClock clock;
    bool ran = false;
    (void)clock.after(1s, [&] { ran = true; });
    clock.advance(1s);
    EXPECT_TRUE(ran);
}

TEST(VirtualClock, anActionIsNotPendingAnyMoreWhileItRuns)
{
    VirtualClock clock;
    support::TimerHandle handle;
    bool wasPending = true;
    handle = clock.after(1s, [&] { wasPending = handle.isPending(); });
    clock.advance(1s);
    EXPECT_FALSE(wasPending);
}

} // namespace
} // namespace stavelin::testkit
