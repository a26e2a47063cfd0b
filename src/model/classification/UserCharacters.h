#pragma once

#include <cstddef>
#include <string_view>

namespace stavelin::model::classification {

/// How many characters a person sees in `text`: a letter with its accents, a joined emoji, a flag, a CR LF
/// are one each. Plain ASCII is counted eight bytes at a time.
[[nodiscard]] std::size_t countCharacters(std::string_view text);

/// The bytes of the first `count` user-perceived characters; the whole text if it has no more than that.
[[nodiscard]] std::string_view firstCharacters(std::string_view text, std::size_t count);

} // namespace stavelin::model::classification
