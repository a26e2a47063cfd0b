#include "model/classification/Described.h"
#include "model/classification/Recognisers.h"

#include <gtest/gtest.h>

namespace stavelin::model::classification {
namespace {

TEST(EmailRecogniser, addressesAreKnown)
{
    for (const std::string_view text : {"someone@example.org", "a@b.cd", "First.Last+tag@sub.example.co.uk",
                                        "100%_-@x.io", ".@-.ab", "a@.b.cd", "a@b..cd", "A@B.CD"}) {
        EXPECT_EQ(described(recogniseEmail(text)), "email") << text;
    }
}

TEST(EmailRecogniser, whatIsNotAnAddressFromEndToEndIsNone)
{
    for (const std::string_view text : {"",
                                        "@",
                                        "someone",
                                        "@example.org",
                                        "someone@",
                                        "someone@org",
                                        "someone@.org",
                                        "someone@example.",
                                        "someone@example.o",
                                        "someone@example.o1",
                                        "someone@example.or_g",
                                        "some one@example.org",
                                        "someone@exa mple.org",
                                        "someone@@example.org",
                                        "a@b@example.org",
                                        "someone@example.org.",
                                        "<someone@example.org>",
                                        "mailto:someone@example.org",
                                        "sömeone@example.org",
                                        "someone@exämple.org",
                                        "someone@example.örg",
                                        "someone@example_x.org"}) {
        EXPECT_EQ(described(recogniseEmail(text)), "nothing") << text;
    }
}

TEST(EmailRecogniser, anAddressWithASecondLineIsNone)
{
    EXPECT_EQ(described(recogniseEmail("someone@example.org\nmore")), "nothing");
    EXPECT_EQ(described(recogniseEmail("someone@example.org\n")), "nothing");
    EXPECT_EQ(described(recogniseEmail("x\nsomeone@example.org")), "nothing");
}

} // namespace
} // namespace stavelin::model::classification
