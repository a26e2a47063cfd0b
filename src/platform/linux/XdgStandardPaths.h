#pragma once

#include "platform/StandardPaths.h"

namespace stavelin::platform {

/// Where things are on a freedesktop system (XDG Base Directory Specification 0.8). The application's own
/// files are found from where its executable stands: in <prefix>/bin when it is installed, in a build folder
/// otherwise.
class XdgStandardPaths final : public StandardPaths
{
public:
    /// `executable` is the absolute path of this program.
    explicit XdgStandardPaths(const std::filesystem::path &executable);

    /// <prefix>/share/stavelin/NAME if it exists, else NAME beside the executable.
    [[nodiscard]] std::optional<std::filesystem::path> resource(std::string_view name) const override;
    /// <prefix>/libexec/stavelin/NAME if it exists, else NAME beside the executable.
    [[nodiscard]] std::optional<std::filesystem::path>
    auxiliaryExecutable(std::string_view name) const override;
    /// HOME if it is an absolute path, else the folder that the user database names.
    [[nodiscard]] std::optional<std::filesystem::path> home() const override;
    /// XDG_DATA_HOME if it is an absolute path, else .local/share in the home folder.
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupport() const override;

private:
    [[nodiscard]] std::filesystem::path installedOrBeside(const std::filesystem::path &installed,
                                                          std::string_view name) const;

    std::filesystem::path m_ownFolder;
    std::filesystem::path m_prefix;
};

} // namespace stavelin::platform
