#include "server/store/StoreLock.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace stavelin::server {

std::expected<StoreLock, StoreLock::Held> StoreLock::take(const std::filesystem::path &folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder.parent_path(), error);
    ::mkdir(folder.c_str(), S_IRWXU);
    const std::filesystem::path file = folder / "daemon.lock";
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        return StoreLock(-1);
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        ::close(descriptor);
        return std::unexpected(Held{});
    }
    return StoreLock(descriptor);
}

StoreLock::~StoreLock()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

} // namespace stavelin::server
