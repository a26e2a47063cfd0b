#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace stavelin::model {

/// What kind of text a slot holds.
enum class ContentType { code, url, command, email, phone, apiKey, text };

inline constexpr std::array allContentTypes{ContentType::code,  ContentType::url,   ContentType::command,
                                            ContentType::email, ContentType::phone, ContentType::apiKey,
                                            ContentType::text};

/// The case's own name: "code", "apiKey".
[[nodiscard]] std::string_view rawValue(ContentType type);
/// Exactly the seven raw values, case-sensitive; nothing for any other text.
[[nodiscard]] std::optional<ContentType> contentTypeFromRawValue(std::string_view raw);

} // namespace stavelin::model
