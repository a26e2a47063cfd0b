#include "daemon/WireDecoder.h"
#include "daemon/WireEncoder.h"

#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace stavelin::daemon {
namespace {

using Object = AnyCodable::Object;
using Array = AnyCodable::Array;

constexpr double twoTo63 = 9223372036854775808.0;

AnyCodable value(AnyCodable::Value held)
{
    return {std::move(held)};
}

std::string nested(std::size_t levels, std::string_view innermost)
{
    std::string json(levels, '[');
    json += innermost;
    json.append(levels, ']');
    return json;
}

/// Both readers must give the same for every input.
class JsonReaders : public testing::TestWithParam<WireDecoder::Reader>
{
protected:
    std::expected<AnyCodable, DecodingError> read(std::string_view json)
    {
        return m_decoder.decodeValue(json);
    }
    void expectRefused(std::string_view json)
    {
        const auto read = this->read(json);
        ASSERT_FALSE(read) << "accepted: " << json.substr(0, 40);
        EXPECT_EQ(read.error().description, "Unable to decode value");
    }
    void expectValue(std::string_view json, const AnyCodable &expected)
    {
        const auto read = this->read(json);
        ASSERT_TRUE(read) << "refused: " << json.substr(0, 40);
        EXPECT_EQ(*read, expected) << json.substr(0, 40);
    }

private:
    WireDecoder m_decoder{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(, JsonReaders,
                         testing::Values(WireDecoder::Reader::fast, WireDecoder::Reader::exact),
                         [](const auto &reader) {
                             return reader.param == WireDecoder::Reader::fast ? "fast" : "exact";
                         });

TEST_P(JsonReaders, everyKindOfValueIsRead)
{
    expectValue("null", value({}));
    expectValue("true", value(true));
    expectValue("false", value(false));
    expectValue("\"text\"", value(std::string("text")));
    expectValue("[]", value(Array{}));
    expectValue("{}", value(Object{}));
    expectValue(
        R"( { "a" : [ 1 , "b" , null ] } )",
        value(Object{{"a", value(Array{value(std::int64_t{1}), value(std::string("b")), value({})})}}));
}

TEST_P(JsonReaders, aNumberWithoutFractionOrExponentThatFits64BitsIsAnInteger)
{
    expectValue("3", value(std::int64_t{3}));
    expectValue("-3", value(std::int64_t{-3}));
    expectValue("0", value(std::int64_t{0}));
    expectValue("-0", value(std::int64_t{0}));
    expectValue("9223372036854775807", value(std::numeric_limits<std::int64_t>::max()));
    expectValue("-9223372036854775808", value(std::numeric_limits<std::int64_t>::min()));
}

TEST_P(JsonReaders, aNumberWithFractionOrExponentIsADouble)
{
    expectValue("3.5", value(3.5));
    expectValue("3.0", value(3.0));
    expectValue("1e2", value(100.0));
    expectValue("-2.5E-1", value(-0.25));
}

TEST_P(JsonReaders, anIntegerOutside64BitsIsADouble)
{
    expectValue("9223372036854775808", value(twoTo63));
    expectValue("-9223372036854775809", value(-twoTo63));
    expectValue("18446744073709551615", value(2 * twoTo63));
    expectValue("18446744073709551616", value(2 * twoTo63));
    expectValue("100000000000000000000000000000", value(1e29));
    expectValue(R"({"a":[100000000000000000000000000000,1]})",
                value(Object{{"a", value(Array{value(1e29), value(std::int64_t{1})})}}));
}

TEST_P(JsonReaders, aNumberThatNoDoubleHoldsIsRefused)
{
    expectRefused("1e400");
    expectRefused("-1e400");
    expectRefused(std::string(400, '9'));
}

TEST_P(JsonReaders, ofMembersWithTheSameNameTheLastCounts)
{
    expectValue(R"({"a":1,"a":2})", value(Object{{"a", value(std::int64_t{2})}}));
    expectValue(R"({"a":1,"\u0061":"x"})", value(Object{{"a", value(std::string("x"))}}));
}

TEST_P(JsonReaders, escapesAreRead)
{
    expectValue(R"("\"\\\/\b\f\n\r\t\u00e9\ud83d\ude00")", value(std::string("\"\\/\b\f\n\r\té😀")));
    expectValue(R"("\u0000")", value(std::string(1, '\0')));
}

TEST_P(JsonReaders, whatIsNotStrictJsonIsRefused)
{
    for (const std::string_view json :
         {"",         " ",     "nul",     "tru",       "True",       "01",        "1.",
          ".5",       "+1",    "-",       "1e",        "0x1",        "NaN",       "Infinity",
          "'a'",      "[1,]",  "[,1]",    "[1 2]",     "{\"a\":1,}", "{a:1}",     "{\"a\" 1}",
          "{\"a\":}", "{1:2}", "[",       "]",         "{",          "\"abc",     "{} {}",
          "1 2",      "[1]x",  "// c\n1", "/* c */ 1", R"("\x")",    R"("\u12")", R"("\u12g4")"})
        expectRefused(json);
}

TEST_P(JsonReaders, aControlCharacterMustBeEscaped)
{
    expectRefused("\"a\nb\"");
    expectRefused("\"a\tb\"");
    expectRefused("\"a\x01"
                  "b\"");
    expectRefused(std::string_view("\"a\0b\"", 5));
}

TEST_P(JsonReaders, aLoneSurrogateIsRefused)
{
    expectRefused(R"("\ud800")");
    expectRefused(R"("\udc00")");
    expectRefused(R"("\ud800x")");
    expectRefused(R"("\ud800\u0041")");
    expectRefused(R"("\ud800\ud800")");
    expectRefused(R"({"\udc00":1})");
}

TEST_P(JsonReaders, malformedUtf8IsRefused)
{
    for (const std::string_view bytes :
         {"\xff", "\x80", "\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80"})
        expectRefused("\"" + std::string(bytes) + "\"");
}

TEST_P(JsonReaders, aByteOrderMarkIsRefused)
{
    expectRefused("\xEF\xBB\xBF{}");
}

TEST_P(JsonReaders, aNulBehindTheValueIsRefused)
{
    expectRefused(std::string_view("{}\0", 3));
    expectRefused(std::string_view("{}\0{}", 5));
}

TEST_P(JsonReaders, oneThousandAndTwentyFourLevelsAreReadAndOneMoreIsRefused)
{
    EXPECT_TRUE(read(nested(1024, "1")));
    expectRefused(nested(1025, "1"));
    EXPECT_TRUE(read(nested(1024, "[]")));
    expectRefused(nested(1025, "[]"));
    expectRefused(nested(200'000, "1"));
}

TEST_P(JsonReaders, oneReaderServesManyFrames)
{
    expectValue(nested(3, std::string(1'000'000, '1').insert(0, "\"").append("\"")).c_str(),
                value(Array{value(Array{value(Array{value(std::string(1'000'000, '1'))})})}));
    expectRefused("{");
    expectValue("[1]", value(Array{value(std::int64_t{1})}));
}

TEST_P(JsonReaders, whatIsWrittenIsReadAsTheSameValue)
{
    const AnyCodable whole =
        value(Object{{"integer", value(std::int64_t{-7})},
                     {"double", value(0.1)},
                     {"whole double", value(3.0)},
                     {"large", value(1e300)},
                     {"text", value(std::string("a\"\\\n\x01 é 😀"))},
                     {"list", value(Array{value(true), value({}), value(Array{}), value(Object{})})}});
    const auto json = encode(whole);
    ASSERT_TRUE(json);
    expectValue(*json, whole);
}

} // namespace
} // namespace stavelin::daemon
