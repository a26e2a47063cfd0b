#pragma once

#include "model/classification/TextTraits.h"

#include <string_view>

namespace stavelin::model::classification {

/// All traits of `text`, found in one pass. The pass ends early at a sign of TypeScript, the language that is
/// asked for first; the set then lacks what stands behind it.
[[nodiscard]] TextTraits scanMarkers(std::string_view text);

} // namespace stavelin::model::classification
