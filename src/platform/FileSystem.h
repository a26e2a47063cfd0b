#pragma once

#include <filesystem>

namespace stavelin::platform {

class FileSystem
{
public:
    virtual ~FileSystem() = default;

    /// A regular file that this user may execute.
    [[nodiscard]] virtual bool isExecutableFile(const std::filesystem::path &path) const = 0;
    /// Makes the folder with any missing parents, for this user alone (0700). False on failure.
    virtual bool createDirectories(const std::filesystem::path &path) = 0;
};

} // namespace stavelin::platform
