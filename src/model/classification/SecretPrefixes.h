#pragma once

#include <array>
#include <string_view>

namespace stavelin::model::classification {

/// How the keys and tokens of well-known services begin. Compared in lower case.
inline constexpr auto secretPrefixes = std::to_array<std::string_view>(
    {"sk-",   "pk_",   "sk_",   "api_", "ghp_", "gho_", "ghs_", "ghr_",    "xoxb-",
     "xoxp-", "xoxa-", "xoxr-", "AKIA", "ABIA", "ACCA", "AGPA", "AIDA",    "AIPA",
     "ANPA",  "ANVA",  "APKA",  "AROA", "ASCA", "ASIA", "eyJ",  "Bearer ", "bearer "});

static_assert(secretPrefixes.size() == 27);

} // namespace stavelin::model::classification
