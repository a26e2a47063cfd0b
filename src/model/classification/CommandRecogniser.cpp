#include "model/classification/CommandWords.h"
#include "model/classification/Pieces.h"
#include "model/classification/Recognisers.h"

#include <string>

namespace stavelin::model::classification {

namespace {

std::string_view commandWord(std::string_view line)
{
    const std::string_view first = takePiece(line, ' ');
    if (first != "sudo" && first != "su") {
        return first;
    }
    const std::string_view second = takePiece(line, ' ');
    return second.empty() ? first : second;
}

} // namespace

std::optional<ContentClassification> recogniseCommand(std::string_view text)
{
    std::string_view rest = text;
    const std::string_view word = commandWord(takePiece(rest, '\n'));
    if (std::ranges::binary_search(commandWords, word)) {
        return ContentClassification{ContentType::command, std::string(word)};
    }
    if (text.starts_with("#!")) {
        return ContentClassification{ContentType::command, "script"};
    }
    return std::nullopt;
}

} // namespace stavelin::model::classification
