#include "server/OutgoingQueue.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using stavelin::server::OutgoingQueue;

namespace {

OutgoingQueue::Frame frame(const char *text)
{
    return std::make_shared<const std::string>(text);
}

std::vector<std::string> drained(OutgoingQueue &queue)
{
    std::vector<std::string> texts;
    while (const auto next = queue.pop())
        texts.push_back(*next);
    return texts;
}

} // namespace

TEST(OutgoingQueue, keepsTheOrderOfStatesAndAnswers)
{
    OutgoingQueue queue;
    queue.pushState(frame("state 1"));
    queue.pushAnswer(frame("answer 1"));
    EXPECT_THAT(drained(queue), testing::ElementsAre("state 1", "answer 1"));
}

TEST(OutgoingQueue, keepsEveryAnswerAndOnlyTheNewestStateAheadOfThem)
{
    OutgoingQueue queue;
    queue.pushState(frame("state 1"));
    queue.pushAnswer(frame("answer 1"));
    queue.pushState(frame("state 2"));
    queue.pushAnswer(frame("answer 2"));
    EXPECT_EQ(queue.answers(), 2U);
    EXPECT_THAT(drained(queue), testing::ElementsAre("state 2", "answer 1", "answer 2"));
    EXPECT_EQ(queue.answers(), 0U);
}

TEST(OutgoingQueue, neverPutsAnAnswerAheadOfTheStateOfItsChange)
{
    OutgoingQueue queue;
    queue.pushAnswer(frame("answer 0"));
    queue.pushState(frame("state 1"));
    queue.pushAnswer(frame("answer 1"));
    EXPECT_THAT(drained(queue), testing::ElementsAre("answer 0", "state 1", "answer 1"));
}

TEST(OutgoingQueue, sendsAStateThatCameAfterTheLastOneLeft)
{
    OutgoingQueue queue;
    queue.pushState(frame("state 1"));
    EXPECT_EQ(*queue.pop(), "state 1");
    queue.pushState(frame("state 2"));
    EXPECT_THAT(drained(queue), testing::ElementsAre("state 2"));
}
