#include "services/AtomicBool.h"

#include <gtest/gtest.h>

#include <thread>

namespace stavelin::services {

TEST(AtomicBool, startsFalseAndHoldsWhatWasSetLast)
{
    AtomicBool value;
    EXPECT_FALSE(value.get());
    value.set(true);
    EXPECT_TRUE(value.get());
    value.set(false);
    EXPECT_FALSE(value.get());
}

TEST(AtomicBool, aValueSetOnOneThreadIsSeenOnAnother)
{
    AtomicBool asked;
    AtomicBool answered;
    std::thread other([&] {
        while (!asked.get())
            std::this_thread::yield();
        answered.set(true);
    });
    asked.set(true);
    other.join();
    EXPECT_TRUE(answered.get());
}

} // namespace stavelin::services
