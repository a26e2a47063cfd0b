#pragma once

#include "e2e/Application.h"

#include <filesystem>

namespace stavelin::e2e {

/// A terminal in which a program collects every line that is entered, and says when it is interrupted. The
/// text is what was entered: a line is seen once Return was pressed.
class Xterm final : public Application
{
public:
    Xterm(std::filesystem::path lines, std::filesystem::path interruptions,
          std::unique_ptr<DesktopProcess> process, xcb_window_t window)
        : Application("xterm", std::move(process), window), m_lines(std::move(lines)),
          m_interruptions(std::move(interruptions))
    {}

    [[nodiscard]] std::string text() override { return contentOf(m_lines); }

    /// One line for each Ctrl+C that interrupted.
    [[nodiscard]] std::string interruptions() const { return contentOf(m_interruptions); }

private:
    std::filesystem::path m_lines;
    std::filesystem::path m_interruptions;
};

} // namespace stavelin::e2e
