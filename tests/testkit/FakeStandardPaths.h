#pragma once

#include "platform/StandardPaths.h"

namespace stavelin::testkit {

/// Folders that the test names; what is left empty cannot be determined.
class FakeStandardPaths final : public platform::StandardPaths
{
public:
    std::optional<std::filesystem::path> resourceFolder;
    std::optional<std::filesystem::path> auxiliaryFolder;
    std::optional<std::filesystem::path> homeFolder;
    std::optional<std::filesystem::path> applicationSupportFolder;

    [[nodiscard]] std::optional<std::filesystem::path> resource(std::string_view name) const override
    {
        return join(resourceFolder, name);
    }
    [[nodiscard]] std::optional<std::filesystem::path>
    auxiliaryExecutable(std::string_view name) const override
    {
        return join(auxiliaryFolder, name);
    }
    [[nodiscard]] std::optional<std::filesystem::path> home() const override { return homeFolder; }
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupport() const override
    {
        return applicationSupportFolder;
    }

private:
    static std::optional<std::filesystem::path> join(const std::optional<std::filesystem::path> &folder,
                                                     std::string_view name)
    {
        if (!folder)
            return std::nullopt;
        return *folder / name;
    }
};

} // namespace stavelin::testkit
