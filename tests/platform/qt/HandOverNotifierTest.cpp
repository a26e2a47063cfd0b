#include "platform/qt/HandOverNotifier.h"

#include "testkit/EventLoop.h"

#include <gmock/gmock.h>

#include <memory>
#include <numeric>
#include <thread>
#include <utility>
#include <vector>

namespace stavelin::platform::qt {

namespace {

/// Says on which thread it was destroyed.
class DestructionWitness
{
public:
    explicit DestructionWitness(std::thread::id &where) : m_where(&where) {}
    ~DestructionWitness() { *m_where = std::this_thread::get_id(); }
    DestructionWitness(const DestructionWitness &) = delete;
    DestructionWitness &operator=(const DestructionWitness &) = delete;

private:
    std::thread::id *m_where;
};

} // namespace

TEST(HandOverNotifier, tasksOfAnotherThreadRunHereInTheOrderOfPosting)
{
    support::HandOver handOver;
    const HandOverNotifier notifier(handOver);
    constexpr int count = 2000;
    std::vector<int> order;
    int onOtherThreads = 0;
    const auto here = std::this_thread::get_id();

    std::thread other([&] {
        for (int number = 0; number < count; ++number) {
            handOver.post([&, number] {
                order.push_back(number);
                onOtherThreads += std::this_thread::get_id() == here ? 0 : 1;
            });
        }
    });
    EXPECT_TRUE(testkit::runEventLoopUntil([&] { return order.size() == count; }));
    other.join();

    std::vector<int> expected(count);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(order, expected);
    EXPECT_EQ(onOtherThreads, 0);
}

TEST(HandOverNotifier, eachOfSeveralPostingThreadsKeepsItsOrder)
{
    support::HandOver handOver;
    const HandOverNotifier notifier(handOver);
    constexpr int count = 500;
    std::vector<int> ofFirst;
    std::vector<int> ofSecond;
    const auto postAll = [&handOver](std::vector<int> &target) {
        for (int number = 0; number < count; ++number)
            handOver.post([&target, number] { target.push_back(number); });
    };
    std::thread first([&] { postAll(ofFirst); });
    std::thread second([&] { postAll(ofSecond); });
    EXPECT_TRUE(testkit::runEventLoopUntil([&] { return ofFirst.size() + ofSecond.size() == 2 * count; }));
    first.join();
    second.join();

    std::vector<int> expected(count);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(ofFirst, expected);
    EXPECT_EQ(ofSecond, expected);
}

TEST(HandOverNotifier, whatWasPostedBeforeItWasMadeRunsToo)
{
    support::HandOver handOver;
    bool done = false;
    handOver.post([&] { done = true; });
    const HandOverNotifier notifier(handOver);
    EXPECT_FALSE(done);
    EXPECT_TRUE(testkit::runEventLoopUntil([&] { return done; }));
}

TEST(HandOverNotifier, aTaskPostedByATaskRunsLater)
{
    support::HandOver handOver;
    const HandOverNotifier notifier(handOver);
    std::vector<std::string> words;
    handOver.post([&] {
        handOver.post([&] { words.emplace_back("inner"); });
        words.emplace_back("outer");
    });
    EXPECT_TRUE(testkit::runEventLoopUntil([&] { return words.size() == 2; }));
    EXPECT_THAT(words, testing::ElementsAre("outer", "inner"));
}

TEST(HandOverNotifier, whatATaskHoldsIsDestroyedOnTheReceivingThread)
{
    support::HandOver handOver;
    const HandOverNotifier notifier(handOver);
    std::thread::id destroyedOn;
    bool done = false;
    std::thread other([&] {
        auto witness = std::make_unique<DestructionWitness>(destroyedOn);
        handOver.post([witness = std::move(witness)] {});
        handOver.post([&] { done = true; });
    });
    EXPECT_TRUE(testkit::runEventLoopUntil([&] { return done; }));
    other.join();
    EXPECT_EQ(destroyedOn, std::this_thread::get_id());
}

TEST(HandOverNotifier, nothingRunsAfterTheNotifierIsGone)
{
    support::HandOver handOver;
    bool done = false;
    {
        const HandOverNotifier notifier(handOver);
    }
    handOver.post([&] { done = true; });
    for (int round = 0; round < 10; ++round)
        QCoreApplication::processEvents();
    EXPECT_FALSE(done);
    handOver.run();
    EXPECT_TRUE(done);
}

} // namespace stavelin::platform::qt
