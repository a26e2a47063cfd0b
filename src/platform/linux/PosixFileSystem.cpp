#include "platform/linux/PosixFileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace stavelin::platform {

bool PosixFileSystem::isExecutableFile(const std::filesystem::path &path) const
{
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) &&
           ::faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

bool PosixFileSystem::createDirectories(const std::filesystem::path &path)
{
    constexpr mode_t forThisUserAlone = S_IRWXU;
    std::filesystem::path folder;
    for (const auto &part : path) {
        folder /= part;
        // The umask may take rights away, but it is only the new folder that gets them back.
        if (::mkdir(folder.c_str(), forThisUserAlone) == 0)
            ::chmod(folder.c_str(), forThisUserAlone);
    }
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

} // namespace stavelin::platform
