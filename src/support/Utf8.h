#pragma once

#include <string_view>

namespace stavelin::support {

/// Whether `bytes` is well-formed UTF-8 (Unicode, table 3-7): no overlong form, surrogate or value over
/// U+10FFFF.
[[nodiscard]] bool isValidUtf8(std::string_view bytes);

} // namespace stavelin::support
