#include "server/LogLevel.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <string>
#include <utility>

namespace stavelin::server {

namespace {

constexpr std::array<std::pair<std::string_view, LogLevel>, 6> levels{{
    {"OFF", LogLevel::off},
    {"ERROR", LogLevel::error},
    {"WARN", LogLevel::warn},
    {"INFO", LogLevel::info},
    {"DEBUG", LogLevel::debug},
    {"TRACE", LogLevel::trace},
}};

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

std::optional<LogLevel> levelNamed(std::string_view text)
{
    std::string upper(trimmed(text));
    std::ranges::transform(upper, upper.begin(), [](unsigned char c) { return std::toupper(c); });
    const auto found = std::ranges::find(levels, upper, [](const auto &entry) { return entry.first; });
    return found == levels.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

std::string_view name(LogLevel level)
{
    return levels.at(static_cast<std::size_t>(level)).first;
}

LogLevel logLevelFromFilter(std::string_view filter)
{
    std::optional<LogLevel> forAll;
    std::optional<LogLevel> forThis;
    while (!filter.empty()) {
        const std::size_t comma = filter.find(',');
        const std::string_view directive = filter.substr(0, comma);
        filter = comma == std::string_view::npos ? std::string_view{} : filter.substr(comma + 1);

        const std::size_t equals = directive.find('=');
        if (equals == std::string_view::npos) {
            if (const auto level = levelNamed(directive))
                forAll = level;
            continue;
        }
        const std::string_view program = trimmed(directive.substr(0, equals));
        if (program != "stavelin_daemon" && program != "stavelin-daemon")
            continue;
        if (const auto level = levelNamed(directive.substr(equals + 1)))
            forThis = level;
    }
    return forThis.value_or(forAll.value_or(LogLevel::info));
}

} // namespace stavelin::server
