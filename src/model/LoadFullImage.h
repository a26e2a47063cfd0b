#pragma once

#include "model/FileReference.h"

#include <string>

namespace stavelin::model {

/// The full-size image of a pinned file: nothing unless a file is at its path and the daemon judged it an
/// image, else what `decode(path)` makes of it, which is an optional of the caller's image type. Reads the
/// disk every time.
template <typename FileExists, typename Decode>
auto loadFullImage(const FileReference &file, FileExists fileExists, Decode decode)
    -> decltype(decode(file.filePath))
{
    if (!file.isImage || !fileExists(file.filePath))
        return {};
    return decode(file.filePath);
}

} // namespace stavelin::model
