#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace stavelin::platform {

/// Where things are on this machine. Nothing when a base folder cannot be determined.
class StandardPaths
{
public:
    virtual ~StandardPaths() = default;

    /// The path that a resource of this name would have among the application's data files.
    [[nodiscard]] virtual std::optional<std::filesystem::path> resource(std::string_view name) const = 0;
    /// The path that a helper program of this name would have beside the application.
    [[nodiscard]] virtual std::optional<std::filesystem::path>
    auxiliaryExecutable(std::string_view name) const = 0;
    [[nodiscard]] virtual std::optional<std::filesystem::path> home() const = 0;
    /// Where programs keep the user's data; the application's own folder in it is "Stavelin".
    [[nodiscard]] virtual std::optional<std::filesystem::path> applicationSupport() const = 0;
};

} // namespace stavelin::platform
