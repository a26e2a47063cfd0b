#include "model/classification/LanguageRecogniser.h"

#include "model/classification/LanguageMarkers.h"
#include "model/classification/ReferenceClassifier.h"
#include "model/classification/ReferenceTables.h"

#include <gtest/gtest.h>

#include <span>

namespace stavelin::model::classification {
namespace {

std::string languageOf(std::string_view text)
{
    return std::string(recogniseLanguage(text).value_or("none"));
}

struct Example
{
    std::string_view text;
    std::string_view language;
};

void expectLanguages(std::initializer_list<Example> examples)
{
    for (const Example &example : examples) {
        EXPECT_EQ(languageOf(example.text), example.language) << example.text;
    }
}

TEST(LanguageRecogniser, theTablesHoldEveryMarker)
{
    const std::pair<const char *, std::span<const std::string_view>> tables[]{
        {"TypeScript", typeScriptMarkers},
        {"JavaScript", javaScriptMarkers},
        {"Python", pythonMarkers},
        {"Swift", swiftMarkers},
        {"Rust", rustMarkers},
        {"Go", goMarkers},
        {"Kotlin", kotlinMarkers},
        {"Java", javaMarkers},
        {"C++", cPlusPlusMarkers},
        {"C", cMarkers},
        {"Ruby", rubyMarkers},
        {"HTML", htmlMarkers},
        {"CSS", cssMarkers},
        {"YAML", yamlMarkers},
        {"SQL", sqlMarkers},
        {"Shell", shellMarkers}};
    EXPECT_EQ(std::size(tables), testkit::referenceLanguageMarkers.size());
    for (const auto &[language, markers] : tables) {
        EXPECT_EQ(std::vector<std::string>(markers.begin(), markers.end()),
                  testkit::referenceLanguageMarkers.at(language))
            << language;
    }
}

TEST(LanguageRecogniser, markersOfRulesWithoutConditionsSuffice)
{
    for (const char *language :
         {"TypeScript", "JavaScript", "Rust", "Kotlin", "Java", "C++", "C", "HTML", "SQL", "Shell"}) {
        for (const std::string &marker : testkit::referenceLanguageMarkers.at(language)) {
            const std::string text = "%" + marker + "%";
            EXPECT_NE(languageOf(text), "none") << marker;
            EXPECT_EQ(languageOf(text), testkit::referenceLanguage(text).value_or("none")) << marker;
        }
    }
}

TEST(LanguageRecogniser, theFirstRuleThatFiresNamesTheLanguage)
{
    expectLanguages({
        {"let x: string = 'a'", "TypeScript"},
        {"let x = 'a'", "JavaScript"},
        {"import numpy", "JavaScript"},
        {"class A:\n    pass", "Python"},
        {"func f() -> Int", "Swift"},
        {"fn main() {}", "Rust"},
        {"package main", "Go"},
        {"type T", "none"},
        {"fun main() {}", "Kotlin"},
        {"public class A {}", "Java"},
        {"std::cout << 1", "C++"},
        {"class A {}", "C++"},
        {"#include <x>", "C"},
        {"do |x| x end", "Ruby"},
        {"<p>x", "HTML"},
        {"a { color: red }", "CSS"},
        {"{\"a\": 1}", "JSON"},
        {"- a: b", "YAML"},
        {"Select * from t", "SQL"},
        {"if [ -f x ]", "Shell"},
        {"just words here", "none"},
    });
}

TEST(LanguageRecogniser, pythonNeedsAColonOrFourBlanksAndItsBracesBehindAColon)
{
    expectLanguages({
        {"def f", "none"},
        {"def f:", "Python"},
        {"def f    x", "Python"},
        {"def f   x", "none"},
        {"def f: {", "Python"},
        {"def f:{", "Python"},
        {"def f:  {", "none"},
        {"def f: }", "Python"},
    });
}

TEST(LanguageRecogniser, swiftNeedsOneOfItsDeclarations)
{
    expectLanguages({
        {"struct A", "none"},
        {"struct A @State", "Swift"},
        {"struct A @Binding", "Swift"},
        {"struct A func b", "Swift"},
        {"guard x", "Swift"},
        {"@Published", "none"},
        {"a?.b", "none"},
    });
}

TEST(LanguageRecogniser, goNeedsOneOfItsDeclarationsAndNothingOfSwift)
{
    expectLanguages({
        {"defer x", "none"},
        {"a := b", "Go"},
        {"defer x package y", "Go"},
        // a function alone is Swift, which is asked for earlier
        {"defer func ()", "Swift"},
        // with "guard " or "@State" a text is Swift too, whatever it has of Go
        {"a := b guard x", "Swift"},
        {"a := b @State", "Swift"},
    });
}

TEST(LanguageRecogniser, rubyNeedsAnEndAndABlock)
{
    expectLanguages({
        {"puts x", "none"},
        {"puts x end", "none"},
        {"puts x do y", "none"},
        {"puts x do y end", "Ruby"},
        {"def x end", "Ruby"},
        {"legend redo ", "Ruby"},
    });
}

TEST(LanguageRecogniser, cssNeedsABlockAndAColon)
{
    expectLanguages({
        {"color: red", "none"},
        {"{ color: red", "none"},
        {"color: red }", "none"},
        {"{ color: red }", "CSS"},
        {"@media { }", "none"},
        {"@media {:}", "CSS"},
    });
}

TEST(LanguageRecogniser, jsonNeedsItsBracketsAtBothEndsAColonAndAQuote)
{
    expectLanguages({
        {"{\"a\":1}", "JSON"},
        {"{'a':1}", "JSON"},
        {"[{\"a\":1}]", "JSON"},
        {"[\"a\", \"b\"]", "none"},
        {"{a:1}", "none"},
        {"{\"a\":1]", "none"},
        {"[\"a\":1}", "none"},
        {"x{\"a\":1}", "none"},
        {"{\"a\":1}x", "none"},
        {"{", "none"},
    });
}

TEST(LanguageRecogniser, yamlNeedsAColonAndNeitherBraceNorSemicolon)
{
    expectLanguages({
        {"- a", "none"},
        {"- a: b", "YAML"},
        {"---\na: b", "YAML"},
        {"a: |", "YAML"},
        {"a: >", "YAML"},
        {"- a: b {", "none"},
        {"- a: b }", "YAML"},
        {"- a: b;", "none"},
    });
}

TEST(LanguageRecogniser, sqlIsKnownInAnyLetterCase)
{
    expectLanguages({
        {"SELECT 1", "SQL"},
        {"select 1", "SQL"},
        {"SeLeCt 1", "SQL"},
        {"select", "none"},
        {"create table", "SQL"},
        {"Order By", "SQL"},
        {"write from home", "SQL"},
    });
}

TEST(LanguageRecogniser, sqlIsKnownByTheUpperCaseFormsOfLettersOutsideOfAscii)
{
    expectLanguages({
        {"\u017Felect 1", "SQL"}, // long s
        {"jo\u0131n x", "SQL"},   // dotless i
        {"jo\u0130n x", "none"},  // I with dot stays as it is
        {"order b\u1E99", "SQL"}, // y with ring above: Y and a mark
        {"o\u0149 x join\u00E9", "none"},
        {"in\u017Fert x", "SQL"},
        {"del\uFB02ete x", "none"},
        {"wh\u00E9re x", "none"},
    });
}

TEST(LanguageRecogniser, allOtherLanguagesAreCaseSensitive)
{
    expectLanguages({
        {"Const a", "none"},
        {"STD::X", "none"},
        {"<P>", "none"},
        {"null", "none"},
        {"NULL", "C"},
    });
}

TEST(LanguageRecogniser, markersAreFoundInsideWordsToo)
{
    expectLanguages({
        {"butterfly ", "none"},
        {"confine", "Shell"},
        {"authentic", "Shell"},
        {"unconst x", "JavaScript"},
        {"outlet x", "JavaScript"},
    });
}

TEST(LanguageRecogniser, aMarkerBrokenByAnotherLetterIsNone)
{
    expectLanguages({
        {"co\u00F1nst a", "none"},
        {"con\u0301st a", "none"},
        {"con\nst a", "none"},
        {"cconst a", "JavaScript"},
        {"conconst a", "JavaScript"},
        {"constconst a", "JavaScript"},
    });
}

} // namespace
} // namespace stavelin::model::classification
