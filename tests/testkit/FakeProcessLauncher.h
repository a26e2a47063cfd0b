#pragma once

#include "platform/ProcessLauncher.h"

#include <vector>

namespace stavelin::testkit {

/// Records what would be launched. The children are numbered from 1001.
class FakeProcessLauncher final : public platform::ProcessLauncher
{
public:
    std::vector<platform::LaunchRequest> launched;
    std::optional<platform::LaunchError> failure; ///< what the next launches fail with

    [[nodiscard]] std::expected<int, platform::LaunchError>
    launch(const platform::LaunchRequest &request) override
    {
        if (failure)
            return std::unexpected(*failure);
        launched.push_back(request);
        return 1000 + static_cast<int>(launched.size());
    }
};

} // namespace stavelin::testkit
