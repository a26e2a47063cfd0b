#include "server/HandshakeRules.h"

#include <gtest/gtest.h>

TEST(HandshakeRules, knowThisComputerByItsLoopbackNamesOnly)
{
    struct Row
    {
        const char *host;
        bool isLoopback;
    };
    const Row rows[]{
        {"127.0.0.1:9847", true},
        {"127.0.0.1", true},
        {"localhost:9847", true},
        {"LocalHost", true},
        {"[::1]:9847", true},
        {"[::1]", true},
        {"", false},
        {"127.0.0.1:80", false},
        {"127.0.0.1:", false},
        {"127.0.0.10:9847", false},
        {"127.0.0.1.example:9847", false},
        {"localhost.example", false},
        {"example.org:9847", false},
        {"::1", false},
        {"0.0.0.0:9847", false},
        {"127.0.0.1:9847 ", false},
        {"localhost:9847:9847", false},
    };
    for (const Row &row : rows)
        EXPECT_EQ(stavelin::server::isLoopbackHost(row.host, 9847), row.isLoopback) << row.host;
}
