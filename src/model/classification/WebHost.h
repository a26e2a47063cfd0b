#pragma once

#include <optional>
#include <string_view>

namespace stavelin::model::classification {

/// The host of a web address, of which `afterScheme` is what stands behind "https://"; an IPv6 address
/// without its brackets. Nothing when there is no host, or when user, host and port do not stand as RFC 3986,
/// section 3.2, has it; letters outside of ASCII may stand there as they are (RFC 3987). The path, the query
/// and the fragment are not looked at: whatever stands there, people see where the address leads.
[[nodiscard]] std::optional<std::string_view> webHost(std::string_view afterScheme);

} // namespace stavelin::model::classification
