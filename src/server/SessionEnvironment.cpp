#include "server/SessionEnvironment.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace stavelin::server {

namespace {

using Variables = SessionEnvironment::Variables;

constexpr std::array<std::string_view, 7> namesOfSession{
    "HOME",       "XDG_DATA_HOME",   "XDG_RUNTIME_DIR",         "DISPLAY",
    "XAUTHORITY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS"};

/// Takes what belongs to the session out of "NAME=value" texts.
void addVariable(Variables &variables, std::string_view entry)
{
    const std::size_t equals = entry.find('=');
    if (equals == std::string_view::npos || equals + 1 == entry.size())
        return;
    const std::string_view name = entry.substr(0, equals);
    if (std::ranges::find(namesOfSession, name) != namesOfSession.end())
        variables.emplace(name, entry.substr(equals + 1));
}

std::optional<std::string> valueIn(const Variables &variables, std::string_view name)
{
    const auto found = variables.find(name);
    return found == variables.end() || found->second.empty() ? std::nullopt : std::optional(found->second);
}

} // namespace

SessionEnvironment::Sources SessionEnvironment::sourcesOfThisProcess()
{
    Sources sources;
    for (char **entry = environ; entry != nullptr && *entry != nullptr; ++entry)
        addVariable(sources.own, *entry);
    sources.procRoot = "/proc";
    sources.parent = [] { return ::getppid(); };
    sources.uid = ::geteuid();

    passwd entry{};
    passwd *found = nullptr;
    std::array<char, 16384> texts{};
    if (::getpwuid_r(sources.uid, &entry, texts.data(), texts.size(), &found) == 0 && found != nullptr)
        sources.home = entry.pw_dir;
    return sources;
}

SessionEnvironment::SessionEnvironment(Sources sources) : m_sources(std::move(sources)) {}

std::optional<std::string> SessionEnvironment::find(std::string_view name) const
{
    if (auto value = valueIn(m_sources.own, name))
        return value;
    if (auto value = valueIn(environmentOfParent(), name))
        return value;
    if (name == "HOME" && !m_sources.home.empty())
        return m_sources.home.string();
    for (const Variables &variables : environmentsOfSession()) {
        if (auto value = valueIn(variables, name))
            return value;
    }
    return std::nullopt;
}

std::vector<SessionEnvironment::Display> SessionEnvironment::displays() const
{
    std::vector<Display> displays;
    const auto add = [&](const Variables &variables) {
        const auto name = valueIn(variables, "DISPLAY");
        if (!name)
            return;
        // A key belongs to the display beside which it was found.
        Display display{*name, authorityIn(variables)};
        if (std::ranges::find(displays, display) == displays.end())
            displays.push_back(std::move(display));
    };
    add(m_sources.own);
    add(environmentOfParent());
    for (const Variables &variables : environmentsOfSession())
        add(variables);
    return displays;
}

std::optional<std::filesystem::path> SessionEnvironment::dataFolder() const
{
    // A relative path is to be ignored (XDG Base Directory Specification).
    const auto explicitFolder = find("XDG_DATA_HOME");
    if (explicitFolder && std::filesystem::path(*explicitFolder).is_absolute())
        return std::filesystem::path(*explicitFolder);
    const auto home = find("HOME");
    if (home && std::filesystem::path(*home).is_absolute())
        return std::filesystem::path(*home) / ".local" / "share";
    return std::nullopt;
}

std::optional<Variables> SessionEnvironment::environmentOf(pid_t process) const
{
    const std::filesystem::path folder = m_sources.procRoot / std::to_string(process);
    struct stat status
    {};
    if (::stat(folder.c_str(), &status) != 0 || status.st_uid != m_sources.uid)
        return std::nullopt;
    std::ifstream file(folder / "environ", std::ios::binary);
    if (!file)
        return std::nullopt;
    Variables variables;
    for (std::string entry; std::getline(file, entry, '\0');)
        addVariable(variables, entry);
    return variables;
}

Variables SessionEnvironment::environmentOfParent() const
{
    return environmentOf(m_sources.parent()).value_or(Variables{});
}

std::vector<Variables> SessionEnvironment::environmentsOfSession() const
{
    std::map<Variables, int> counts;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(m_sources.procRoot, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        pid_t process = 0;
        const auto read = std::from_chars(name.data(), name.data() + name.size(), process);
        if (read.ec != std::errc{} || read.ptr != name.data() + name.size())
            continue;
        auto variables = environmentOf(process);
        if (variables && (variables->contains("DISPLAY") || variables->contains("WAYLAND_DISPLAY")))
            ++counts[std::move(*variables)];
    }
    std::vector<std::pair<Variables, int>> counted(counts.begin(), counts.end());
    std::ranges::stable_sort(counted, std::greater{}, [](const auto &entry) { return entry.second; });
    std::vector<Variables> environments;
    environments.reserve(counted.size());
    for (auto &entry : counted)
        environments.push_back(std::move(entry.first));
    return environments;
}

std::optional<std::filesystem::path> SessionEnvironment::authorityIn(const Variables &variables) const
{
    if (const auto named = valueIn(variables, "XAUTHORITY"))
        return std::filesystem::path(*named);
    auto home = valueIn(variables, "HOME");
    if (!home && !m_sources.home.empty())
        home = m_sources.home.string();
    if (!home)
        return std::nullopt;
    std::filesystem::path usual = std::filesystem::path(*home) / ".Xauthority";
    std::error_code error;
    return std::filesystem::exists(usual, error) ? std::optional(std::move(usual)) : std::nullopt;
}

} // namespace stavelin::server
