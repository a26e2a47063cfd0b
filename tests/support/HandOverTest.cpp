#include "support/HandOver.h"

#include <memory>
#include <thread>
#include <vector>

#include <poll.h>

#include <gtest/gtest.h>

namespace stavelin::support {
namespace {

bool isReadable(int descriptor, int milliseconds = 0)
{
    pollfd watched{.fd = descriptor, .events = POLLIN, .revents = 0};
    return poll(&watched, 1, milliseconds) == 1;
}

TEST(HandOver, runsTasksInTheOrderOfPosting)
{
    HandOver queue;
    std::vector<int> ran;
    for (int i = 0; i < 5; ++i)
        queue.post([&ran, i] { ran.push_back(i); });
    EXPECT_TRUE(ran.empty());
    queue.run();
    EXPECT_EQ(ran, (std::vector{0, 1, 2, 3, 4}));
}

TEST(HandOver, isReadableExactlyWhileTasksWait)
{
    HandOver queue;
    EXPECT_FALSE(isReadable(queue.descriptor()));
    queue.post([] {});
    EXPECT_TRUE(isReadable(queue.descriptor()));
    queue.run();
    EXPECT_FALSE(isReadable(queue.descriptor()));
}

TEST(HandOver, whatATaskPostsRunsAtTheNextCall)
{
    HandOver queue;
    int ran = 0;
    queue.post([&] { queue.post([&] { ++ran; }); });
    queue.run();
    EXPECT_EQ(ran, 0);
    EXPECT_TRUE(isReadable(queue.descriptor()));
    queue.run();
    EXPECT_EQ(ran, 1);
}

TEST(HandOver, carriesTasksThatCanOnlyBeMoved)
{
    HandOver queue;
    int received = 0;
    queue.post([value = std::make_unique<int>(7), &received] { received = *value; });
    queue.run();
    EXPECT_EQ(received, 7);
}

TEST(HandOver, whatATaskHeldGoesBeforeTheNextOneRuns)
{
    HandOver queue;
    const auto held = std::make_shared<int>(1);
    long users = 0;
    queue.post([copy = held] { (void)copy; });
    queue.post([&] { users = held.use_count(); });
    queue.run();
    EXPECT_EQ(users, 1);
}

TEST(HandOver, losesNothingBetweenThreads)
{
    constexpr int perThread = 20'000;
    HandOver queue;
    std::vector<int> last(3, -1);
    int received = 0;
    bool isInOrder = true;
    std::vector<std::jthread> senders;
    for (std::size_t sender = 0; sender < last.size(); ++sender) {
        senders.emplace_back([&, sender] {
            for (int i = 0; i < perThread; ++i) {
                queue.post([&, sender, i] {
                    isInOrder = isInOrder && last[sender] == i - 1;
                    last[sender] = i;
                    ++received;
                });
            }
        });
    }
    while (received < 3 * perThread) {
        ASSERT_TRUE(isReadable(queue.descriptor(), 10'000));
        queue.run();
    }
    EXPECT_TRUE(isInOrder);
}

} // namespace
} // namespace stavelin::support
