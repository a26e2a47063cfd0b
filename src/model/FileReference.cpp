#include "model/FileReference.h"

#include "support/Base64.h"
#include "support/IsoDate.h"

#include <algorithm>
#include <utility>

namespace stavelin::model {

FileReference makeFileReference(daemon::FileReferenceData data, support::Timestamp now)
{
    FileReference file{.id = std::move(data.id),
                       .filePath = std::move(data.file_path),
                       .fileName = std::move(data.file_name),
                       .fileSize = data.file_size,
                       .fileType = std::move(data.file_type),
                       .isImage = data.is_image,
                       .sortOrder = data.sort_order,
                       .addedAt = support::parseIsoDate(data.added_at).value_or(now)};
    if (data.thumbnail)
        file.thumbnailData = support::decodeBase64(*data.thumbnail);
    return file;
}

std::vector<FileReference> makeFileReferences(std::vector<daemon::FileReferenceData> data,
                                              support::Timestamp now)
{
    std::vector<FileReference> files;
    files.reserve(data.size());
    for (daemon::FileReferenceData &file : data)
        files.push_back(makeFileReference(std::move(file), now));
    return files;
}

bool sameFileReferences(const std::vector<FileReference> &a, const std::vector<FileReference> &b)
{
    return std::ranges::equal(a, b, [](const FileReference &x, const FileReference &y) {
        return x.id == y.id && x.filePath == y.filePath &&
               x.thumbnailData.has_value() == y.thumbnailData.has_value();
    });
}

} // namespace stavelin::model
