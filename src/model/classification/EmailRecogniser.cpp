#include "model/classification/Recognisers.h"

#include <algorithm>

/// ^[a-zA-Z0-9._%+-]+@[a-zA-Z0-9.-]+\.[a-zA-Z]{2,}$ by hand: the "@" can be but the first one, and the dot
/// but the last one, since the classes beside them do not hold them.
namespace stavelin::model::classification {

namespace {

bool isLetter(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

bool isHostCharacter(char byte)
{
    return isLetter(byte) || (byte >= '0' && byte <= '9') || byte == '.' || byte == '-';
}

bool isLocalCharacter(char byte)
{
    return isHostCharacter(byte) || byte == '_' || byte == '%' || byte == '+';
}

bool isEmailAddress(std::string_view text)
{
    const std::size_t at = text.find('@');
    if (at == 0 || at == std::string_view::npos) {
        return false;
    }
    const std::string_view host = text.substr(at + 1);
    const std::size_t dot = host.rfind('.');
    if (dot == 0 || dot == std::string_view::npos) {
        return false;
    }
    const std::string_view suffix = host.substr(dot + 1);
    return suffix.size() >= 2 && std::ranges::all_of(suffix, isLetter) &&
           std::ranges::all_of(host.substr(0, dot), isHostCharacter) &&
           std::ranges::all_of(text.substr(0, at), isLocalCharacter);
}

} // namespace

std::optional<ContentClassification> recogniseEmail(std::string_view text)
{
    if (!isEmailAddress(text)) {
        return std::nullopt;
    }
    return ContentClassification{ContentType::email, std::nullopt};
}

} // namespace stavelin::model::classification
