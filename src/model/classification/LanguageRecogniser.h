#pragma once

#include <optional>
#include <string_view>

namespace stavelin::model::classification {

/// The name of the first language, in the fixed order of the rules, that the trimmed text shows signs of:
/// "TypeScript", "C++", "SQL"... Nothing when no rule fires.
[[nodiscard]] std::optional<std::string_view> recogniseLanguage(std::string_view text);

} // namespace stavelin::model::classification
