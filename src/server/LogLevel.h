#pragma once

#include <string_view>

namespace stavelin::server {

/// How much is said, from the least to the most; each level says also what the ones before it say.
enum class LogLevel { off, error, warn, info, debug, trace };

[[nodiscard]] std::string_view name(LogLevel level); ///< "INFO"

/// What the value of RUST_LOG asks of this program: directives separated by commas, each a level for
/// everything
/// ("info") or a level for one program ("stavelin_daemon=debug"), of which this program's own counts first
/// and the last one wins. Names of other programs are passed over; with nothing left to go by it is info.
[[nodiscard]] LogLevel logLevelFromFilter(std::string_view filter);

} // namespace stavelin::server
