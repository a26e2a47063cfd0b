#pragma once

#include "daemon/FileReferenceData.h"
#include "support/Clock.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace stavelin::model {

/// One file that is pinned on the board.
struct FileReference
{
    std::string id;                         ///< the daemon's; the application never makes one
    std::string filePath;                   ///< absolute
    std::string fileName;                   ///< for display
    std::optional<std::int64_t> fileSize{}; ///< bytes
    std::optional<std::string> fileType{};
    bool isImage = false;
    std::optional<std::vector<std::byte>> thumbnailData{}; ///< an encoded image
    std::int64_t sortOrder = 0;
    support::Timestamp addedAt;

    friend bool operator==(const FileReference &, const FileReference &) = default;
};

/// Never fails: a thumbnail that is not strict base64 is absent, a date that does not parse becomes `now`.
[[nodiscard]] FileReference makeFileReference(daemon::FileReferenceData data, support::Timestamp now);

/// Keeps the order of the wire.
[[nodiscard]] std::vector<FileReference> makeFileReferences(std::vector<daemon::FileReferenceData> data,
                                                            support::Timestamp now);

/// Whether the board looks the same: same length and, place by place, the same id and filePath, and a
/// thumbnail in both or in neither. Nothing else is compared, on purpose: a new size or new thumbnail bytes
/// redraw nothing.
[[nodiscard]] bool sameFileReferences(const std::vector<FileReference> &a,
                                      const std::vector<FileReference> &b);

} // namespace stavelin::model
