#pragma once

#include "model/ContentClassification.h"

#include <string_view>

namespace stavelin::model {

/// Tells what kind of text `utf8` is, and gives the short label that belongs to it:
///   apiKey   "Sensitive"
///   email    none
///   phone    none
///   url      a well-known service's name, else the host, else none
///   command  the command word, or "script"
///   code     none for a recognised language, else "Code"
///   text     the number of user-perceived characters, as "42 chars"; none for a text that is only white
///   space
/// White space at both ends does not count. Bytes that are not UTF-8 are safe: each ill-formed sequence
/// counts as one character that matches nothing. A pure function, linear in the length, callable on any
/// thread.
[[nodiscard]] ContentClassification classify(std::string_view utf8);

} // namespace stavelin::model
