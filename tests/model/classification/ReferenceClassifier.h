#pragma once

#include "model/ContentClassification.h"

#include <optional>
#include <string>
#include <vector>

/// The classifier once more, written to be seen right at a glance and not to be fast: one search per marker,
/// a library for each pattern, whole texts copied at every step.
namespace stavelin::testkit {

[[nodiscard]] model::ContentClassification referenceClassify(const std::string &utf8);

/// The recogniser of languages for a trimmed, well-formed text.
[[nodiscard]] std::optional<std::string> referenceLanguage(const std::string &text);

/// All markers of all languages.
[[nodiscard]] std::vector<std::string> referenceMarkers();

/// User-perceived characters as ICU's break iterator tells them apart.
[[nodiscard]] std::vector<std::string> referenceCharacters(const std::string &utf8);

} // namespace stavelin::testkit
