#include "platform/linux/ProcProcessTable.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

namespace stavelin::platform {

namespace {

constexpr std::size_t longestCommandName = 15;

/// Empty when it cannot be read, as for a process of another user.
std::string executableName(const std::filesystem::path &process)
{
    std::error_code error;
    std::string name = std::filesystem::read_symlink(process / "exe", error).filename().native();
    constexpr std::string_view deletedMark = " (deleted)"; // the package was updated while the program ran
    if (name.ends_with(deletedMark))
        name.resize(name.size() - deletedMark.size());
    return name;
}

struct Status
{
    std::string commandName;
    char state;
};

/// From a line such as "123 (name) S 1 ..."; the name may itself hold parentheses and spaces.
std::optional<Status> readStatus(const std::filesystem::path &process)
{
    std::ifstream file(process / "stat");
    std::string line;
    std::getline(file, line, '\0');
    const auto open = line.find('(');
    const auto close = line.rfind(')');
    if (open == std::string::npos || close == std::string::npos || close + 2 >= line.size())
        return std::nullopt;
    return Status{.commandName = line.substr(open + 1, close - open - 1), .state = line[close + 2]};
}

bool isNamed(const std::filesystem::path &process, std::string_view name)
{
    const auto status = readStatus(process);
    if (!status || status->state == 'Z' || status->state == 'X')
        return false;
    const std::string executable = executableName(process);
    if (executable == name)
        return true;
    const bool isCutShort = name.size() == longestCommandName && executable.starts_with(name);
    return status->commandName == name && !isCutShort;
}

bool isProcessFolder(const std::filesystem::path &path)
{
    return std::ranges::all_of(path.filename().native(), [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

bool ProcProcessTable::isProcessRunning(std::string_view exactName)
{
    std::error_code error;
    std::filesystem::directory_iterator entry(m_root, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (isProcessFolder(entry->path()) && isNamed(entry->path(), exactName))
            return true;
    }
    return false;
}

} // namespace stavelin::platform
