#include "platform/linux/PosixTerminationSignals.h"
#include "platform/linux/ProcessPreparation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

namespace stavelin::platform {

namespace {

bool isReadable(int descriptor)
{
    pollfd entry{descriptor, POLLIN, 0};
    return ::poll(&entry, 1, 0) == 1;
}

} // namespace

TEST(PosixTerminationSignals, eachOfTheThreeSignalsIsAWishToEnd)
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        const PosixTerminationSignals signals;
        EXPECT_FALSE(isReadable(signals.descriptor()));
        ::raise(number);
        EXPECT_TRUE(isReadable(signals.descriptor())) << number;
    }
}

TEST(PosixTerminationSignals, theSecondWishEndsTheProgramAtOnce)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const PosixTerminationSignals signals;
            ::raise(SIGTERM);
            ::raise(SIGTERM);
            std::exit(0);
        },
        testing::KilledBySignal(SIGTERM), "");
}

TEST(PosixTerminationSignals, afterwardsTheSignalsHaveTheirDefaultActionAgain)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            {
                const PosixTerminationSignals signals;
            }
            ::raise(SIGINT);
            std::exit(0);
        },
        testing::KilledBySignal(SIGINT), "");
}

TEST(ProcessPreparation, afterItThereAreNoCoreDumps)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            prepareProcess();
            rlimit limit{};
            ::getrlimit(RLIMIT_CORE, &limit);
            std::_Exit(limit.rlim_cur == 0 && limit.rlim_max == 0 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(ProcessPreparation, afterItAClosedPipeEndsNothing)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            prepareProcess();
            int ends[2];
            const bool isOpen = ::pipe2(ends, O_CLOEXEC) == 0;
            ::close(ends[0]);
            std::_Exit(isOpen && ::write(ends[1], "x", 1) == -1 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace stavelin::platform
