#include "model/classification/MarkerScan.h"

#include "model/classification/AsciiUpperCase.h"
#include "model/classification/CodePoints.h"
#include "model/classification/LanguageMarkers.h"
#include "model/classification/MarkerAutomaton.h"

#include <span>
#include <vector>

namespace stavelin::model::classification {

namespace {

using Marker = MarkerAutomaton::Marker;

void append(std::vector<Marker> &markers, TextTrait trait, std::span<const std::string_view> texts)
{
    for (const std::string_view text : texts) {
        markers.push_back({text, trait});
    }
}

MarkerAutomaton makeCaseSensitiveSearch()
{
    std::vector<Marker> markers{
        {":", TextTrait::colon},
        {";", TextTrait::semicolon},
        {"{", TextTrait::openingBrace},
        {"}", TextTrait::closingBrace},
        {"    ", TextTrait::fourBlanks},
        {":{", TextTrait::braceAfterColon},
        {": {", TextTrait::braceAfterColon},
        {"func ", TextTrait::swiftDeclaration},
        {"guard ", TextTrait::swiftDeclaration},
        {"@State", TextTrait::swiftDeclaration},
        {"@Binding", TextTrait::swiftDeclaration},
        {"package ", TextTrait::goDeclaration},
        {":= ", TextTrait::goDeclaration},
        {"func ", TextTrait::goDeclaration},
        {"guard ", TextTrait::foreignToGo},
        {"@State", TextTrait::foreignToGo},
        {"end", TextTrait::end},
        {"def ", TextTrait::rubyBlock},
        {"do ", TextTrait::rubyBlock},
    };
    append(markers, TextTrait::typeScript, typeScriptMarkers);
    append(markers, TextTrait::javaScript, javaScriptMarkers);
    append(markers, TextTrait::python, pythonMarkers);
    append(markers, TextTrait::swift, swiftMarkers);
    append(markers, TextTrait::rust, rustMarkers);
    append(markers, TextTrait::go, goMarkers);
    append(markers, TextTrait::kotlin, kotlinMarkers);
    append(markers, TextTrait::java, javaMarkers);
    append(markers, TextTrait::cPlusPlus, cPlusPlusMarkers);
    append(markers, TextTrait::c, cMarkers);
    append(markers, TextTrait::ruby, rubyMarkers);
    append(markers, TextTrait::html, htmlMarkers);
    append(markers, TextTrait::css, cssMarkers);
    append(markers, TextTrait::yaml, yamlMarkers);
    append(markers, TextTrait::shell, shellMarkers);
    return {markers, MarkerAutomaton::LetterCase::exact};
}

MarkerAutomaton makeSqlSearch()
{
    std::vector<Marker> markers;
    append(markers, TextTrait::sql, sqlMarkers);
    return {markers, MarkerAutomaton::LetterCase::ignoredForAscii};
}

/// Where the bytes end, from `offset` on, that are neither ASCII nor may have an upper-case form within.
std::size_t endOfForeignLetters(std::string_view text, std::size_t offset)
{
    while (offset < text.size() && !isAscii(text[offset]) && !mayReachIntoAscii(text[offset])) {
        ++offset;
    }
    return offset;
}

} // namespace

TextTraits scanMarkers(std::string_view text)
{
    static const MarkerAutomaton markers = makeCaseSensitiveSearch();
    static const MarkerAutomaton sqlWords = makeSqlSearch();

    TextTraits traits;
    auto state = MarkerAutomaton::start;
    auto sqlState = MarkerAutomaton::start;
    std::size_t offset = 0;
    while (offset < text.size()) {
        const char byte = text[offset];
        if (!isAscii(byte)) {
            // No marker goes beyond ASCII, but a few letters outside of it have upper-case forms within.
            state = MarkerAutomaton::start;
            if (!mayReachIntoAscii(byte)) {
                sqlState = MarkerAutomaton::start;
                offset = endOfForeignLetters(text, offset + 1);
                continue;
            }
            for (const char upper : asciiUpperCase(nextCodePoint(text, offset))) {
                sqlState = sqlWords.next(sqlState, upper);
                if (sqlWords.isMatch(sqlState)) {
                    traits |= sqlWords.found(sqlState);
                }
            }
            continue;
        }
        ++offset;
        state = markers.next(state, byte);
        sqlState = sqlWords.next(sqlState, byte);
        if (markers.isMatch(state)) {
            traits |= markers.found(state);
            if (traits.has(TextTrait::typeScript)) {
                return traits;
            }
        }
        if (sqlWords.isMatch(sqlState)) {
            traits |= sqlWords.found(sqlState);
        }
    }
    return traits;
}

} // namespace stavelin::model::classification
