#pragma once

#include "platform/ProcessTable.h"

#include <filesystem>
#include <utility>

namespace stavelin::platform {

/// Reads the processes from the proc file system (proc(5)).
///
/// A process has a name if its command name or the file name of its executable is exactly that name. The
/// kernel cuts the command name to 15 bytes, so one of that length is not believed when the executable's name
/// goes on after it. Dead processes that nobody has waited for do not count.
class ProcProcessTable final : public ProcessTable
{
public:
    /// `root` is where the proc file system is mounted.
    explicit ProcProcessTable(std::filesystem::path root = "/proc") : m_root(std::move(root)) {}

    [[nodiscard]] bool isProcessRunning(std::string_view exactName) override;

private:
    std::filesystem::path m_root;
};

} // namespace stavelin::platform
