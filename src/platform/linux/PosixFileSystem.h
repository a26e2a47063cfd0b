#pragma once

#include "platform/FileSystem.h"

namespace stavelin::platform {

class PosixFileSystem final : public FileSystem
{
public:
    [[nodiscard]] bool isExecutableFile(const std::filesystem::path &path) const override;
    /// Folders that exist keep their mode; the new ones get 0700 whatever the umask.
    bool createDirectories(const std::filesystem::path &path) override;
};

} // namespace stavelin::platform
