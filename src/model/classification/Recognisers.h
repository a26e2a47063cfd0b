#pragma once

#include "model/ContentClassification.h"

#include <optional>
#include <string_view>

/// Each recogniser takes the trimmed text as UTF-8 and answers with a classification, or with nothing when
/// the text is not of its kind. None keeps state; all are callable on any thread.
namespace stavelin::model::classification {

/// One line that starts like a known kind of token, or that is long, dense and mixed enough to be one.
[[nodiscard]] std::optional<ContentClassification> recogniseSecret(std::string_view text);

/// One line that is an e-mail address and nothing else.
[[nodiscard]] std::optional<ContentClassification> recogniseEmail(std::string_view text);

/// One line that is a telephone number and nothing else.
[[nodiscard]] std::optional<ContentClassification> recognisePhone(std::string_view text);

/// One line that starts with "http://", "https://" or, in any letter case, "www.".
[[nodiscard]] std::optional<ContentClassification> recogniseUrl(std::string_view text);

/// A text whose first line starts with a known command, or that is a script with an interpreter line.
[[nodiscard]] std::optional<ContentClassification> recogniseCommand(std::string_view text);

/// A text in a programming language that the markers tell, or one with the braces or semicolons of code.
[[nodiscard]] std::optional<ContentClassification> recogniseCode(std::string_view text);

} // namespace stavelin::model::classification
