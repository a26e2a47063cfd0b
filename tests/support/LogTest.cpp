#include "support/Log.h"

#include <gtest/gtest.h>

namespace stavelin::support {
namespace {

TEST(StandardOutputLog, writesEachMessageAsOneLineAtOnce)
{
    testing::internal::CaptureStdout();
    StandardOutputLog log;
    log.line("first");
    log.line("second\nwith a break\r\nand another");
    log.line("");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "first\nsecond with a break  and another\n\n");
}

} // namespace
} // namespace stavelin::support
