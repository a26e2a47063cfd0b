#include "daemon/link/WebSocketUrl.h"

#include <gtest/gtest.h>

namespace stavelin::daemon {
namespace {

TEST(WebSocketUrl, aHostAndAPortAreRead)
{
    const auto url = WebSocketUrl::parse("ws://127.0.0.1:9847");
    ASSERT_TRUE(url);
    EXPECT_EQ(url->host, "127.0.0.1");
    EXPECT_EQ(url->port, 9847);
}

TEST(WebSocketUrl, anythingElseIsNotAnAddress)
{
    for (const char *text : {"", "ws://", "127.0.0.1:9847", "http://127.0.0.1:9847", "wss://127.0.0.1:9847",
                             "ws://127.0.0.1", "ws://127.0.0.1:", "ws://:9847", "ws://127.0.0.1:0",
                             "ws://127.0.0.1:65536", "ws://127.0.0.1:99999999999999999999",
                             "ws://127.0.0.1:9847/", "ws://127.0.0.1:+1", "ws://::1:9847"})
        EXPECT_FALSE(WebSocketUrl::parse(text)) << text;
}

} // namespace
} // namespace stavelin::daemon
