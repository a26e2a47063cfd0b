#pragma once

#include <QString>

#include <string_view>

namespace stavelin::views {

/// One line that stands for a slot's text in a list: its beginning, without leading blanks, every run of
/// blanks, line breaks and other control characters as a single space. At most 200 characters, then an
/// ellipsis. Characters that turn the reading direction are left out: they would reorder what stands around
/// the text. Empty when there is nothing to see in the text. Costs the same however long the text is.
[[nodiscard]] QString slotPreview(std::string_view utf8);

} // namespace stavelin::views
