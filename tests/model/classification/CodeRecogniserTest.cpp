#include "model/classification/Described.h"
#include "model/classification/Recognisers.h"

#include <gtest/gtest.h>

namespace stavelin::model::classification {
namespace {

std::string kindOf(std::string_view text)
{
    return described(recogniseCode(text));
}

TEST(CodeRecogniser, aRecognisedLanguageIsNotNamed)
{
    EXPECT_EQ(kindOf("const a = 1"), "code");
    EXPECT_EQ(kindOf("fn main() {}"), "code");
    EXPECT_EQ(kindOf("SELECT * FROM t"), "code");
}

TEST(CodeRecogniser, bracesOnSeveralLinesAreCode)
{
    EXPECT_EQ(kindOf("x {\n y }"), "code [Code]");
    EXPECT_EQ(kindOf("} x\n{"), "code [Code]");
    EXPECT_EQ(kindOf("x { y }"), "nothing");
    EXPECT_EQ(kindOf("x {\n y"), "nothing");
    EXPECT_EQ(kindOf("x }\n y"), "nothing");
}

TEST(CodeRecogniser, twoSemicolonsOnSeveralLinesAreCode)
{
    EXPECT_EQ(kindOf("a;\nb;"), "code [Code]");
    EXPECT_EQ(kindOf("a;;\nb"), "code [Code]");
    EXPECT_EQ(kindOf("a;\nb"), "nothing");
    EXPECT_EQ(kindOf("a\nb"), "nothing");
    EXPECT_EQ(kindOf("a;b;c"), "nothing");
}

} // namespace
} // namespace stavelin::model::classification
