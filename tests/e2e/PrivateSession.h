#pragma once

#include "e2e/DesktopProcess.h"

#include <filesystem>
#include <memory>

namespace stavelin::e2e {

/// A user's session of its own: home and XDG folders (0700) below a new temporary folder, and a message bus
/// that starts no service by itself. The destructor ends the bus and removes the folders.
class PrivateSession
{
public:
    PrivateSession();
    ~PrivateSession();
    PrivateSession(const PrivateSession &) = delete;
    PrivateSession &operator=(const PrivateSession &) = delete;

    /// What a program of this session finds in its environment; DISPLAY is the caller's to add.
    [[nodiscard]] const Environment &environment() const { return m_environment; }

    [[nodiscard]] std::filesystem::path home() const { return m_root / "home"; }
    [[nodiscard]] std::filesystem::path documents() const { return home() / "Documents"; }
    [[nodiscard]] std::filesystem::path logs() const { return m_root / "logs"; }

private:
    std::filesystem::path m_root;
    Environment m_environment;
    std::unique_ptr<DesktopProcess> m_bus;
};

} // namespace stavelin::e2e
