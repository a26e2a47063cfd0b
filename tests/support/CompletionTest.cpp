#include "support/Completion.h"
#include "support/Sleep.h"
#include "testkit/VirtualClock.h"

#include <coroutine>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace stavelin::support {
namespace {

using namespace std::chrono_literals;

/// A coroutine that starts at once and ends by itself.
struct Started
{
    struct promise_type
    {
        Started get_return_object() { return {}; }
        std::suspend_never initial_suspend() noexcept { return {}; }
        std::suspend_never final_suspend() noexcept { return {}; }
        void return_void() {}
        void unhandled_exception() { std::terminate(); }
    };
};

Started append(Completion<std::string> completion, std::vector<std::string> &received)
{
    std::string value = co_await completion;
    received.push_back(std::move(value));
}

Started appendAfter(Clock &clock, std::chrono::nanoseconds delay, std::vector<std::string> &received,
                    std::string what)
{
    SleepAwaiter pause = sleep(clock, delay);
    co_await pause;
    received.push_back(std::move(what));
}

TEST(Completion, resumesTheOneThatWaits)
{
    std::vector<std::string> received;
    const Completion<std::string> completion;
    append(completion, received);
    EXPECT_TRUE(received.empty());
    completion.complete("value");
    EXPECT_EQ(received, std::vector<std::string>{"value"});
}

TEST(Completion, thatCameFirstDoesNotSuspend)
{
    std::vector<std::string> received;
    const Completion<std::string> completion;
    completion.complete("early");
    append(completion, received);
    EXPECT_EQ(received, std::vector<std::string>{"early"});
}

TEST(Completion, countsOnlyOnce)
{
    std::vector<std::string> received;
    const Completion<std::string> completion;
    append(completion, received);
    completion.complete("first");
    completion.complete("second");
    EXPECT_EQ(received, std::vector<std::string>{"first"});
    EXPECT_TRUE(completion.isComplete());
}

TEST(Completion, mayBeDestroyedByWhatItResumes)
{
    std::vector<std::string> received;
    auto owner = std::make_unique<Completion<std::string>>();
    [](Completion<std::string> completion, std::unique_ptr<Completion<std::string>> &owned,
       std::vector<std::string> &values) -> Started {
        std::string value = co_await completion;
        owned.reset();
        values.push_back(std::move(value));
    }(*owner, owner, received);
    owner->complete("value");
    EXPECT_EQ(owner, nullptr);
    EXPECT_EQ(received, std::vector<std::string>{"value"});
}

TEST(Sleep, resumesWhenTheClockGetsThere)
{
    testkit::VirtualClock clock;
    std::vector<std::string> received;
    appendAfter(clock, 50ms, received, "late");
    appendAfter(clock, 10ms, received, "early");
    clock.advance(49ms);
    EXPECT_EQ(received, std::vector<std::string>{"early"});
    clock.advance(1ms);
    EXPECT_EQ(received, (std::vector<std::string>{"early", "late"}));
}

} // namespace
} // namespace stavelin::support
