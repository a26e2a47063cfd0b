#include "model/classification/LanguageRecogniser.h"

#include "model/classification/MarkerScan.h"

namespace stavelin::model::classification {

namespace {

using enum TextTrait;

bool isPython(TextTraits traits)
{
    return traits.has(python) && (traits.has(colon) || traits.has(fourBlanks)) &&
           (!traits.has(openingBrace) || traits.has(braceAfterColon));
}

bool isSwift(TextTraits traits)
{
    return traits.has(swift) && traits.has(swiftDeclaration);
}

bool isGo(TextTraits traits)
{
    return traits.has(go) && traits.has(goDeclaration) && !traits.has(foreignToGo);
}

bool isRuby(TextTraits traits)
{
    return traits.has(ruby) && traits.has(end) && traits.has(rubyBlock);
}

bool isCss(TextTraits traits)
{
    return traits.has(css) && traits.has(openingBrace) && traits.has(closingBrace) && traits.has(colon);
}

bool isJson(TextTraits traits, std::string_view text)
{
    const bool isObject = text.starts_with('{') && text.ends_with('}');
    const bool isArray = text.starts_with('[') && text.ends_with(']');
    return (isObject || isArray) && traits.has(colon) &&
           (text.find('"') != std::string_view::npos || text.find('\'') != std::string_view::npos);
}

bool isYaml(TextTraits traits)
{
    return traits.has(yaml) && traits.has(colon) && !traits.has(openingBrace) && !traits.has(semicolon);
}

} // namespace

std::optional<std::string_view> recogniseLanguage(std::string_view text)
{
    const TextTraits traits = scanMarkers(text);
    if (traits.has(typeScript)) {
        return "TypeScript";
    }
    if (traits.has(javaScript)) {
        return "JavaScript";
    }
    if (isPython(traits)) {
        return "Python";
    }
    if (isSwift(traits)) {
        return "Swift";
    }
    if (traits.has(rust)) {
        return "Rust";
    }
    if (isGo(traits)) {
        return "Go";
    }
    if (traits.has(kotlin)) {
        return "Kotlin";
    }
    if (traits.has(java)) {
        return "Java";
    }
    if (traits.has(cPlusPlus)) {
        return "C++";
    }
    if (traits.has(c)) {
        return "C";
    }
    if (isRuby(traits)) {
        return "Ruby";
    }
    if (traits.has(html)) {
        return "HTML";
    }
    if (isCss(traits)) {
        return "CSS";
    }
    if (isJson(traits, text)) {
        return "JSON";
    }
    if (isYaml(traits)) {
        return "YAML";
    }
    if (traits.has(sql)) {
        return "SQL";
    }
    if (traits.has(shell)) {
        return "Shell";
    }
    return std::nullopt;
}

} // namespace stavelin::model::classification
