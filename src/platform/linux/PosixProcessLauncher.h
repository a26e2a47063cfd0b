#pragma once

#include "platform/ProcessLauncher.h"

namespace stavelin::platform {

/// Starts children with posix_spawn. The child is this process's own child, so that it can find its starter's
/// session through its parent's id; its session is a new one, so that no signal to this process's group
/// reaches it. Its signal mask is empty, all signals have their default action, and standard input is empty.
class PosixProcessLauncher final : public ProcessLauncher
{
public:
    [[nodiscard]] std::expected<int, LaunchError> launch(const LaunchRequest &request) override;
};

} // namespace stavelin::platform
