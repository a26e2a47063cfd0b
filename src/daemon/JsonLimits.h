#pragma once

#include <cstddef>
#include <string_view>

namespace stavelin::daemon {

/// How deep arrays and objects may stand in one another, the outermost counted, an empty one not.
inline constexpr std::size_t maximumJsonDepth = 1024;

/// RFC 8259 forbids it at the beginning of what is sent; libraries differ in what they make of it.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace stavelin::daemon
