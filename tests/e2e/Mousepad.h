#pragma once

#include "e2e/Application.h"

#include <filesystem>

namespace stavelin::e2e {

class VirtualDesktop;

/// The GTK text editor, on a file of its own. Its text is read by saving the file, so it must have the focus.
class Mousepad final : public Application
{
public:
    Mousepad(VirtualDesktop &desktop, std::filesystem::path file, std::unique_ptr<DesktopProcess> process,
             xcb_window_t window);

    [[nodiscard]] std::string text() override;

private:
    VirtualDesktop &m_desktop;
    std::filesystem::path m_file;
};

} // namespace stavelin::e2e
