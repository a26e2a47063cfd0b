#include "platform/qt/QtClock.h"
#include "testkit/EventLoop.h"
#include "testkit/VirtualClock.h"

#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <vector>

namespace stavelin {

using namespace std::chrono_literals;

namespace {

/// The real clock, moved by an event loop.
class RealTime
{
public:
    support::Clock &clock() { return m_clock; }
    bool passUntil(const std::function<bool()> &condition) { return testkit::runEventLoopUntil(condition); }
    std::chrono::nanoseconds elapsed() const { return std::chrono::steady_clock::now() - m_start; }

private:
    platform::qt::QtClock m_clock;
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

/// The tests' clock, moved by the millisecond.
class VirtualTime
{
public:
    support::Clock &clock() { return m_clock; }
    bool passUntil(const std::function<bool()> &condition)
    {
        for (int step = 0; step < 10'000 && !condition(); ++step)
            m_clock.advance(1ms);
        return condition();
    }
    std::chrono::nanoseconds elapsed() const { return m_clock.now() - m_start; }

private:
    testkit::VirtualClock m_clock;
    support::Timestamp m_start = m_clock.now();
};

struct TimeNames
{
    template <typename Time>
    static std::string GetName(int)
    {
        return std::is_same_v<Time, RealTime> ? "QtClock" : "VirtualClock";
    }
};

} // namespace

template <typename Time>
class ClockContract : public testing::Test
{
protected:
    support::TimerHandle note(std::chrono::nanoseconds delay, const std::string &word)
    {
        return time.clock().after(delay, [this, word] { words.push_back(word); });
    }
    /// Lets time pass until this many words are there.
    bool passUntilWords(std::size_t count)
    {
        return time.passUntil([&] { return words.size() >= count; });
    }

    Time time;
    std::vector<std::string> words;
};

using Times = testing::Types<RealTime, VirtualTime>;
TYPED_TEST_SUITE(ClockContract, Times, TimeNames);

TYPED_TEST(ClockContract, anActionRunsOnceAndNotBeforeItsDelayHasPassed)
{
    std::vector<std::chrono::nanoseconds> runs;
    const auto asked = this->time.elapsed();
    this->time.clock().after(15ms, [&] { runs.push_back(this->time.elapsed()); });
    this->note(60ms, "end");
    ASSERT_TRUE(this->passUntilWords(1));
    ASSERT_EQ(runs.size(), 1U);
    EXPECT_GE(runs.front() - asked, 15ms);
}

TYPED_TEST(ClockContract, anActionWithoutDelayDoesNotRunInsideTheCall)
{
    this->note(0ms, "now");
    EXPECT_TRUE(this->words.empty());
    ASSERT_TRUE(this->passUntilWords(1));
}

TYPED_TEST(ClockContract, theShorterDelayComesFirst)
{
    this->note(40ms, "late");
    this->note(5ms, "early");
    this->note(20ms, "middle");
    ASSERT_TRUE(this->passUntilWords(3));
    EXPECT_THAT(this->words, testing::ElementsAre("early", "middle", "late"));
}

TYPED_TEST(ClockContract, equalDelaysRunInTheOrderOfAsking)
{
    for (const char *word : {"first", "second", "third", "fourth"})
        this->note(10ms, word);
    ASSERT_TRUE(this->passUntilWords(4));
    EXPECT_THAT(this->words, testing::ElementsAre("first", "second", "third", "fourth"));
}

TYPED_TEST(ClockContract, aCancelledActionNeverRuns)
{
    support::TimerHandle handle = this->note(5ms, "cancelled");
    EXPECT_TRUE(handle.isPending());
    handle.cancel();
    EXPECT_FALSE(handle.isPending());
    handle.cancel();
    this->note(30ms, "end");
    ASSERT_TRUE(this->passUntilWords(1));
    EXPECT_THAT(this->words, testing::ElementsAre("end"));
}

TYPED_TEST(ClockContract, anActionCanCancelOneThatIsDueWithIt)
{
    support::TimerHandle second;
    this->time.clock().after(10ms, [&] { second.cancel(); });
    second = this->note(10ms, "cancelled");
    this->note(40ms, "end");
    ASSERT_TRUE(this->passUntilWords(1));
    EXPECT_THAT(this->words, testing::ElementsAre("end"));
}

TYPED_TEST(ClockContract, aDroppedHandleLeavesItsActionPending)
{
    {
        const support::TimerHandle handle = this->note(5ms, "run");
    }
    ASSERT_TRUE(this->passUntilWords(1));
}

TYPED_TEST(ClockContract, anActionThatRunsIsNoLongerPendingAndCancellingItIsHarmless)
{
    support::TimerHandle handle;
    bool pendingInside = true;
    handle = this->time.clock().after(5ms, [&] {
        pendingInside = handle.isPending();
        handle.cancel();
        this->words.push_back("run");
    });
    ASSERT_TRUE(this->passUntilWords(1));
    EXPECT_FALSE(pendingInside);
    EXPECT_FALSE(handle.isPending());
}

TYPED_TEST(ClockContract, whatAnActionAsksForRunsAfterIt)
{
    this->time.clock().after(5ms, [&] {
        this->note(0ms, "inner");
        this->words.push_back("outer");
    });
    ASSERT_TRUE(this->passUntilWords(2));
    EXPECT_THAT(this->words, testing::ElementsAre("outer", "inner"));
}

} // namespace stavelin
