#include "platform/qt/QtClock.h"

#include "testkit/EventLoop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>

#include <gtest/gtest.h>

#include <thread>

namespace stavelin::platform::qt {

using namespace std::chrono_literals;

namespace {

/// Counts the timer events that objects of this thread get.
class TimerEventCounter final : public QObject
{
public:
    TimerEventCounter() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        count += event->type() == QEvent::Timer ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }

    int count = 0;
};

} // namespace

TEST(QtClock, noTimerRunsWhileNothingPends)
{
    QtClock clock;
    TimerEventCounter timerEvents;
    bool done = false;
    clock.after(2ms, [&] { done = true; });
    support::TimerHandle cancelled = clock.after(3ms, [] {});
    cancelled.cancel();
    ASSERT_TRUE(testkit::runEventLoopUntil([&] { return done; }));

    const int before = timerEvents.count;
    EXPECT_GT(before, 0); // or this counts nothing at all
    const auto end = std::chrono::steady_clock::now() + 50ms;
    ASSERT_TRUE(testkit::runEventLoopUntil([&] { return std::chrono::steady_clock::now() > end; }));
    EXPECT_EQ(timerEvents.count, before);
}

TEST(QtClock, anActionThatNestsAnEventLoopDoesNotHoldUpTheOthers)
{
    QtClock clock;
    bool otherRan = false;
    bool otherRanInside = false;
    bool done = false;
    clock.after(2ms, [&] {
        otherRanInside = testkit::runEventLoopUntil([&] { return otherRan; });
        done = true;
    });
    clock.after(4ms, [&] { otherRan = true; });
    ASSERT_TRUE(testkit::runEventLoopUntil([&] { return done; }));
    EXPECT_TRUE(otherRanInside);
}

TEST(QtClock, nowIsTheWallClocksTimeOnAnyThread)
{
    const QtClock clock;
    const support::Timestamp before = std::chrono::system_clock::now();
    support::Timestamp told;
    std::thread other([&] { told = clock.now(); });
    other.join();
    EXPECT_GE(told, before);
    EXPECT_LE(told, std::chrono::system_clock::now());
}

TEST(QtClock, aDelayBelowZeroIsNoDelay)
{
    QtClock clock;
    bool done = false;
    clock.after(-5s, [&] { done = true; });
    EXPECT_FALSE(done);
    EXPECT_TRUE(testkit::runEventLoopUntil([&] { return done; }));
}

} // namespace stavelin::platform::qt
