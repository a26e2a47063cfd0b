#include "model/classification/Classifier.h"
#include "model/classification/Described.h"
#include "model/classification/RandomTexts.h"
#include "model/classification/ReferenceClassifier.h"

#include <gtest/gtest.h>

#include <set>

namespace stavelin::model {
namespace {

constexpr int textsPerKind = 4000;

class ClassifierDifference : public testing::TestWithParam<int>
{};

TEST_P(ClassifierDifference, randomTextsAreOfTheKindThatTheSlowClassifierSays)
{
    using Kind = testkit::RandomTexts::Kind;
    testkit::RandomTexts texts(static_cast<std::uint32_t>(GetParam()) + 1);
    std::set<std::string> kindsSeen;
    for (int i = 0; i < textsPerKind; ++i) {
        const std::string text = texts.next(static_cast<Kind>(GetParam()));
        const ContentClassification expected = testkit::referenceClassify(text);
        kindsSeen.insert(std::string(rawValue(expected.type)));
        ASSERT_EQ(described(classify(text)), described(expected)) << "for " << testing::PrintToString(text);
    }
    // Texts that all fall into one kind would prove little.
    EXPECT_GE(kindsSeen.size(), 2u);
}

INSTANTIATE_TEST_SUITE_P(ofEachMake, ClassifierDifference,
                         testing::Range(0, testkit::RandomTexts::kindCount));

TEST(ClassifierMarkers, eachMarkerAloneIsWhatTheSlowClassifierSays)
{
    for (const std::string &marker : testkit::referenceMarkers()) {
        for (const std::string &text : {marker, "Qx" + marker + "Qx", "ü" + marker + "ü", marker + "{\n:}end",
                                        marker + "{\ndo : {", "    " + marker + "guard "}) {
            EXPECT_EQ(described(classify(text)), described(testkit::referenceClassify(text)))
                << "for " << testing::PrintToString(text);
        }
    }
}

TEST(ClassifierMarkers, eachPairOfMarkersIsWhatTheSlowClassifierSays)
{
    const auto markers = testkit::referenceMarkers();
    for (std::size_t first = 0; first < markers.size(); ++first) {
        for (std::size_t second = first % 3; second < markers.size(); second += 3) {
            const std::string text = markers[first] + markers[second];
            ASSERT_EQ(described(classify(text)), described(testkit::referenceClassify(text)))
                << "for " << testing::PrintToString(text);
        }
    }
}

} // namespace
} // namespace stavelin::model
