#include "server/LeveledLog.h"

#include "testkit/RecordingLog.h"

#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace stavelin;
using server::LogLevel;

TEST(LogLevel, isReadFromTheFilterOfTheEnvironment)
{
    struct Row
    {
        std::string_view filter;
        LogLevel level;
    };
    const Row rows[]{
        {"", LogLevel::info},
        {"info", LogLevel::info},
        {"error", LogLevel::error},
        {"warn", LogLevel::warn},
        {"debug", LogLevel::debug},
        {"trace", LogLevel::trace},
        {"off", LogLevel::off},
        {"DEBUG", LogLevel::debug},
        {" warn ", LogLevel::warn},
        {"loud", LogLevel::info},
        {"stavelin_daemon=debug", LogLevel::debug},
        {"stavelin-daemon=debug", LogLevel::debug},
        {"other=trace", LogLevel::info},
        {"warn,other=trace", LogLevel::warn},
        {"stavelin_daemon=error,warn", LogLevel::error},
        {"warn,,debug", LogLevel::debug},
        {"stavelin_daemon=loud,warn", LogLevel::warn},
    };
    for (const Row &row : rows)
        EXPECT_EQ(server::logLevelFromFilter(row.filter), row.level) << row.filter;
}

TEST(LeveledLog, writesTheDateAndTheLevelAndLeavesOutWhatIsBeyondItsLevel)
{
    testkit::RecordingLog lines;
    server::LeveledLog log(lines, LogLevel::warn,
                           [] { return support::Timestamp{std::chrono::seconds(1714557600)}; });
    log.error("first");
    log.warn("second");
    log.info("third");
    log.debug("fourth");
    EXPECT_THAT(lines.lines(),
                testing::ElementsAre("2024-05-01T10:00:00Z ERROR first", "2024-05-01T10:00:00Z WARN second"));
}

TEST(LeveledLog, isSilentWhenItIsOff)
{
    testkit::RecordingLog lines;
    server::LeveledLog log(lines, LogLevel::off, [] { return support::Timestamp{}; });
    log.error("first");
    EXPECT_TRUE(lines.lines().empty());
}
