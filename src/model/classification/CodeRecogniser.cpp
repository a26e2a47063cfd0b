#include "model/classification/LanguageRecogniser.h"
#include "model/classification/Recognisers.h"

namespace stavelin::model::classification {

namespace {

bool contains(std::string_view text, char byte)
{
    return text.find(byte) != std::string_view::npos;
}

bool containsTwice(std::string_view text, char byte)
{
    return text.find(byte) != text.rfind(byte);
}

bool hasShapeOfCode(std::string_view text)
{
    const bool hasBlock = contains(text, '{') && contains(text, '}');
    return contains(text, '\n') && (hasBlock || containsTwice(text, ';'));
}

} // namespace

std::optional<ContentClassification> recogniseCode(std::string_view text)
{
    if (recogniseLanguage(text)) {
        // The badge says "code" by its icon; the rules are too coarse to name a language to a person.
        return ContentClassification{ContentType::code, std::nullopt};
    }
    if (hasShapeOfCode(text)) {
        return ContentClassification{ContentType::code, "Code"};
    }
    return std::nullopt;
}

} // namespace stavelin::model::classification
