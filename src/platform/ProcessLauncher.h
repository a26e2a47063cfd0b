#pragma once

#include <expected>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace stavelin::platform {

struct LaunchRequest
{
    std::filesystem::path executable;
    std::map<std::string, std::string> environment; ///< all of the child's environment
    /// Takes the child's standard output and error if the file exists and can be opened for writing: from its
    /// beginning, neither created nor cut. Otherwise the child keeps this process's own.
    std::optional<std::filesystem::path> outputFile{};
};

struct LaunchError
{
    std::string description;
};

class ProcessLauncher
{
public:
    virtual ~ProcessLauncher() = default;

    /// Starts a child that outlives this process: in a session of its own, with no descriptor but the
    /// standard three, and never left behind as a zombie. Returns its process id.
    [[nodiscard]] virtual std::expected<int, LaunchError> launch(const LaunchRequest &request) = 0;
};

} // namespace stavelin::platform
