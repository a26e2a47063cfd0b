#include "model/ContentType.h"

#include <gtest/gtest.h>

namespace stavelin::model {
namespace {

TEST(ContentType, hasSevenCasesWhoseRawValuesAreTheirNames)
{
    const std::array<std::string_view, 7> raw{"code", "url", "command", "email", "phone", "apiKey", "text"};
    ASSERT_EQ(allContentTypes.size(), raw.size());
    for (std::size_t i = 0; i < raw.size(); ++i) {
        EXPECT_EQ(rawValue(allContentTypes[i]), raw[i]);
        EXPECT_EQ(contentTypeFromRawValue(raw[i]), allContentTypes[i]);
    }
}

TEST(ContentType, isNotMadeFromARawValueInOtherLetterCaseOrAnyOtherText)
{
    for (const auto *raw : {"Code", "URL", "apikey", "APIKEY", "apiKey ", "", "image"})
        EXPECT_FALSE(contentTypeFromRawValue(raw)) << raw;
}

} // namespace
} // namespace stavelin::model
