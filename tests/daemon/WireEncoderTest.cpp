#include "daemon/WireEncoder.h"

#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace stavelin::daemon {
namespace {

using Array = AnyCodable::Array;
using Object = AnyCodable::Object;

AnyCodable value(AnyCodable::Value held)
{
    return {std::move(held)};
}

TEST(WireEncoder, writesEveryKindOfValueWithoutWhiteSpace)
{
    EXPECT_EQ(encode(value({})), "null");
    EXPECT_EQ(encode(value(true)), "true");
    EXPECT_EQ(encode(value(false)), "false");
    EXPECT_EQ(encode(value(std::numeric_limits<std::int64_t>::min())), "-9223372036854775808");
    EXPECT_EQ(encode(value(Array{value(std::int64_t{1}), value(Array{}), value(Object{})})), "[1,[],{}]");
    EXPECT_EQ(encode(value(Object{{"a", value(std::int64_t{1})}, {"b", value(std::string("c"))}})),
              R"({"a":1,"b":"c"})");
}

TEST(WireEncoder, writesADoubleSoThatItIsReadAsADouble)
{
    EXPECT_EQ(encode(value(3.0)), "3.0");
    EXPECT_EQ(encode(value(-0.0)), "-0.0");
    EXPECT_EQ(encode(value(0.1)), "0.1");
    EXPECT_EQ(encode(value(1e300)), "1e+300");
}

TEST(WireEncoder, escapesWhatJsonDemandsAndNothingElse)
{
    EXPECT_EQ(encode(value(std::string("\"\\/\n\r\t\b\f\x01\x1f\x7f é 😀"))),
              "\"\\\"\\\\/\\n\\r\\t\\u0008\\u000c\\u0001\\u001f\x7f é 😀\"");
    EXPECT_EQ(encode(value(std::string(1, '\0'))), R"("\u0000")");
    EXPECT_EQ(encode(value(Object{{"a\"b", value({})}})), R"({"a\"b":null})");
}

TEST(WireEncoder, aNumberThatIsNotFiniteFailsWithItsPath)
{
    const auto failed = encode(value(Object{{"list", value(Array{value(1.0), value(std::nan(""))})}}));
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error(),
              (EncodingError{.description = "Unable to encode value", .codingPath = {"list", "1"}}));
    EXPECT_FALSE(encode(value(std::numeric_limits<double>::infinity())));
}

TEST(WireEncoder, aTextThatIsNotUtf8FailsWithItsPath)
{
    const ProtocolMessage request{.id = "X",
                                  .type = MessageType::request,
                                  .method = "clipboard.set_slot",
                                  .payload = value(Object{{"content", value(std::string("a\xff"))}})};
    const auto failed = encode(request);
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error(),
              (EncodingError{.description = "Unable to encode value", .codingPath = {"payload", "content"}}));
}

TEST(WireEncoder, theFirstOfTwoFailuresIsNamed)
{
    const auto failed = encode(value(Array{value(std::string("\xff")), value(std::nan(""))}));
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().codingPath, std::vector<std::string>{"0"});
}

} // namespace
} // namespace stavelin::daemon
