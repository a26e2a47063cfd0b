#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace stavelin::daemon {

/// A pinned file as the daemon writes it; the members are named as on the wire.
struct FileReferenceData
{
    std::string id;
    std::string file_path;                   ///< absolute
    std::string file_name;                   ///< for display
    std::optional<std::int64_t> file_size{}; ///< bytes
    std::optional<std::string> file_type{};
    bool is_image = false;
    std::optional<std::string> thumbnail{}; ///< an encoded image in standard base64
    std::int64_t sort_order = 0;
    std::string added_at; ///< as ClipboardSlotData::updated_at

    friend bool operator==(const FileReferenceData &, const FileReferenceData &) = default;
};

} // namespace stavelin::daemon
