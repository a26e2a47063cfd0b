#pragma once

#include <cstddef>
#include <string_view>

namespace stavelin::model::classification {

/// What kinds of user-perceived characters a text is made of. A character is what its first code point is.
struct CharacterCensus
{
    std::size_t characters = 0;
    std::size_t tokenCharacters = 0; ///< letters, digits, "-" and "_", of any script
    bool hasUpperCase = false;
    bool hasLowerCase = false;
    bool hasDigit = false;
};

[[nodiscard]] CharacterCensus takeCensus(std::string_view text);

} // namespace stavelin::model::classification
