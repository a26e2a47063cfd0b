#pragma once

#include <optional>
#include <string_view>

namespace stavelin::model::classification {

/// The name of the service whose public web host is `host` (in lower case) or one that `host` lies below. Of
/// several the longest wins: "docs.google.com" is not just "Google".
[[nodiscard]] std::optional<std::string_view> wellKnownService(std::string_view host);

} // namespace stavelin::model::classification
