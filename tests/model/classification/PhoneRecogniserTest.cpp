#include "model/classification/Described.h"
#include "model/classification/Recognisers.h"

#include <gtest/gtest.h>

namespace stavelin::model::classification {
namespace {

TEST(PhoneRecogniser, numbersAreKnown)
{
    for (const std::string_view text : {
             "555-123-4567",
             "555.123.4567",
             "555 123 4567",
             "555 123-4567",
             "5551234567",
             "15551234567",
             "+15551234567",
             "1 555 123 4567",
             "-555-123-4567",
             "(555) 123-4567",
             "(555)123-4567",
             "(555 123 4567",
             "555) 123 4567",
             "+1 (555) 123-4567",
             "+(555)123-4567",
             "+44 20 7946 0958",
             "+49-30-1-2",
             "+1234",
             "+999 9999 9999 999999999",
             "+99999999999999999999",
         }) {
        EXPECT_EQ(described(recognisePhone(text)), "phone") << text;
    }
}

TEST(PhoneRecogniser, whatIsNotANumberFromEndToEndIsNone)
{
    for (const std::string_view text : {
             "",
             "+",
             "+1",
             "+12",
             "+123",
             "123",
             "555-1234",
             "555-123-456",
             "555-123-45678",
             "25551234567",
             "555--123-4567",
             "555 - 123 - 4567",
             "((555) 123-4567",
             "(555)) 123-4567",
             "(1555) 123-4567",
             "++15551234567",
             "44 20 7946 0958",
             "+44  20 7946 0958",
             "+44 (20) 7946 0958",
             "+4420 79460 95812 3",
             "+999999999999999999999",
             "555-123-4567x",
             "tel:555-123-4567",
             "555/123/4567",
         }) {
        EXPECT_EQ(described(recognisePhone(text)), "nothing") << text;
    }
}

TEST(PhoneRecogniser, digitsOfOtherScriptsAndTheNoBreakSpaceWillDo)
{
    EXPECT_EQ(described(recognisePhone("+44\u00A020\u00A07946\u00A00958")), "phone");
    EXPECT_EQ(described(recognisePhone("٥٥٥-١٢٣-٤٥٦٧")), "phone");
    EXPECT_EQ(described(recognisePhone("１５５５-123-4567")), "nothing") << "the country code is an ASCII 1";
}

TEST(PhoneRecogniser, aNumberWithALineFeedIsNone)
{
    EXPECT_EQ(described(recognisePhone("555\n123\n4567")), "nothing");
    EXPECT_EQ(described(recognisePhone("555-123-4567\n")), "nothing");
    EXPECT_EQ(described(recognisePhone("555\r123\t4567")), "phone");
}

} // namespace
} // namespace stavelin::model::classification
