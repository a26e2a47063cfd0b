#pragma once

#include <string_view>

namespace stavelin::model::classification {

/// Whether Unicode's property White_Space holds: blanks, tabs, line and paragraph ends, the no-break space...
[[nodiscard]] bool isWhiteSpace(char32_t codePoint);

/// `text` without the white space at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

} // namespace stavelin::model::classification
