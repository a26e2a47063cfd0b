#include "support/IsoDate.h"

#include <gtest/gtest.h>

namespace stavelin::support {
namespace {

using namespace std::chrono;

TEST(IsoDate, aDateTimeInUtcIsParsed)
{
    EXPECT_EQ(parseIsoDate("2024-05-01T10:00:00Z"), sys_days(2024y / May / 1) + 10h);
    EXPECT_EQ(parseIsoDate("1970-01-01T00:00:00Z"), Timestamp());
    EXPECT_EQ(parseIsoDate("1969-12-31T23:59:59Z"), Timestamp() - 1s);
    EXPECT_EQ(parseIsoDate("2024-02-29T23:59:59Z"), sys_days(2024y / March / 1) - 1s);
}

TEST(IsoDate, aNumericOffsetIsTakenIntoAccount)
{
    EXPECT_EQ(parseIsoDate("2024-05-01T12:00:00+02:00"), parseIsoDate("2024-05-01T10:00:00Z"));
    EXPECT_EQ(parseIsoDate("2024-05-01T12:00:00+0200"), parseIsoDate("2024-05-01T10:00:00Z"));
    EXPECT_EQ(parseIsoDate("2024-05-01T04:30:00-05:30"), parseIsoDate("2024-05-01T10:00:00Z"));
    EXPECT_EQ(parseIsoDate("2024-01-01T00:00:00+23:59"), parseIsoDate("2023-12-31T00:01:00Z"));
}

TEST(IsoDate, fractionalSecondsDoNotParse)
{
    EXPECT_FALSE(parseIsoDate("2024-05-01T10:00:00.123Z"));
    EXPECT_FALSE(parseIsoDate("2024-05-01T10:00:00.Z"));
    EXPECT_FALSE(parseIsoDate("2024-05-01T10:00:00,5Z"));
}

TEST(IsoDate, anythingElseDoesNotParse)
{
    for (const std::string_view text : {"",
                                        "2024-05-01",
                                        "2024-05-01T10:00:00",
                                        "2024-05-01T10:00Z",
                                        "2024-05-01 10:00:00Z",
                                        "2024-05-01t10:00:00Z",
                                        "2024-05-01T10:00:00z",
                                        "2024-05-01T10:00:00Z ",
                                        " 2024-05-01T10:00:00Z",
                                        "20240501T100000Z",
                                        "2024-5-1T10:00:00Z",
                                        "24-05-01T10:00:00Z",
                                        "+2024-05-01T10:00:00Z",
                                        "2024-13-01T10:00:00Z",
                                        "2024-00-01T10:00:00Z",
                                        "2024-05-00T10:00:00Z",
                                        "2024-04-31T10:00:00Z",
                                        "2023-02-29T10:00:00Z",
                                        "2024-05-01T24:00:00Z",
                                        "2024-05-01T10:60:00Z",
                                        "2024-05-01T10:00:60Z",
                                        "2024-05-01T10:00:00+24:00",
                                        "2024-05-01T10:00:00+02:60",
                                        "2024-05-01T10:00:00+2:00",
                                        "2024-05-01T10:00:00+02",
                                        "2024-05-01T10:00:00ZZ",
                                        "2024-05-01T1a:00:00Z",
                                        "today"})
        EXPECT_FALSE(parseIsoDate(text)) << text;
}

TEST(IsoDate, aMomentThatNoTimestampHoldsDoesNotParse)
{
    for (const std::string_view text :
         {"0000-01-01T00:00:00Z", "1677-09-21T00:12:43Z", "2262-04-11T23:47:17Z", "9999-12-31T23:59:59Z",
          "9999-12-31T23:59:59-23:59"})
        EXPECT_FALSE(parseIsoDate(text)) << text;
    EXPECT_EQ(parseIsoDate("1677-09-21T00:12:44Z"), ceil<seconds>(Timestamp::min()));
    EXPECT_EQ(parseIsoDate("2262-04-11T23:47:16Z"), floor<seconds>(Timestamp::max()));
}

TEST(IsoDate, isWrittenInUtcAndCutToWholeSeconds)
{
    EXPECT_EQ(formatIsoDate(sys_days(2024y / May / 1) + 10h + 999ms), "2024-05-01T10:00:00Z");
    EXPECT_EQ(formatIsoDate(Timestamp() - 1ms), "1969-12-31T23:59:59Z");
    EXPECT_EQ(formatIsoDate(sys_days(2024y / February / 29) + 23h + 5min + 7s), "2024-02-29T23:05:07Z");
}

TEST(IsoDate, whatIsWrittenIsParsedAsTheSameMoment)
{
    for (Timestamp time = sys_days(1999y / December / 30); time < sys_days(2025y / January / 3);
         time += 7h * 91 + 13s)
        EXPECT_EQ(parseIsoDate(formatIsoDate(time)), time);
}

} // namespace
} // namespace stavelin::support
