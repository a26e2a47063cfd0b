#pragma once

#include <string>

namespace stavelin::server {

/// A random UUID (RFC 9562, version 4) in its canonical form with upper-case digits. Any thread.
[[nodiscard]] std::string makeUuid();

} // namespace stavelin::server
