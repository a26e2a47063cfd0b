#pragma once

#include <algorithm>
#include <string_view>

namespace stavelin::model::classification {

/// Takes the first non-empty piece, as split at `separator`, off the front of `text`. Empty when there is
/// none.
[[nodiscard]] constexpr std::string_view takePiece(std::string_view &text, char separator)
{
    text.remove_prefix(std::min(text.find_first_not_of(separator), text.size()));
    const std::string_view piece = text.substr(0, text.find(separator));
    text.remove_prefix(piece.size());
    return piece;
}

} // namespace stavelin::model::classification
