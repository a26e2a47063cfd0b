#include "platform/linux/XdgStandardPaths.h"

#include <cstdlib>
#include <pwd.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace stavelin::platform {

namespace {

std::optional<std::filesystem::path> absolutePath(const char *text)
{
    if (!text || text[0] != '/')
        return std::nullopt;
    return text;
}

std::optional<std::filesystem::path> homeInUserDatabase()
{
    constexpr std::size_t roomForOneEntry = 16 * 1024;
    std::vector<char> buffer(roomForOneEntry);
    passwd entry{};
    passwd *found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return std::nullopt;
    return absolutePath(found->pw_dir);
}

} // namespace

XdgStandardPaths::XdgStandardPaths(const std::filesystem::path &executable)
    : m_ownFolder(executable.parent_path()), m_prefix(m_ownFolder.parent_path())
{}

std::optional<std::filesystem::path> XdgStandardPaths::resource(std::string_view name) const
{
    return installedOrBeside(m_prefix / "share" / "stavelin", name);
}

std::optional<std::filesystem::path> XdgStandardPaths::auxiliaryExecutable(std::string_view name) const
{
    return installedOrBeside(m_prefix / "libexec" / "stavelin", name);
}

std::optional<std::filesystem::path> XdgStandardPaths::home() const
{
    if (auto home = absolutePath(std::getenv("HOME")))
        return home;
    return homeInUserDatabase();
}

std::optional<std::filesystem::path> XdgStandardPaths::applicationSupport() const
{
    if (auto dataHome = absolutePath(std::getenv("XDG_DATA_HOME")))
        return dataHome;
    const auto homeFolder = home();
    if (!homeFolder)
        return std::nullopt;
    return *homeFolder / ".local" / "share";
}

std::filesystem::path XdgStandardPaths::installedOrBeside(const std::filesystem::path &installed,
                                                          std::string_view name) const
{
    std::error_code error;
    if (std::filesystem::exists(installed / name, error))
        return installed / name;
    return m_ownFolder / name;
}

} // namespace stavelin::platform
