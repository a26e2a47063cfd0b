#pragma once

#include <string_view>

namespace stavelin::platform {

/// Looks at the processes of this machine.
class ProcessTable
{
public:
    virtual ~ProcessTable() = default;

    /// Whether a process with exactly this name is alive. False also when the processes cannot be read.
    [[nodiscard]] virtual bool isProcessRunning(std::string_view exactName) = 0;
};

} // namespace stavelin::platform
