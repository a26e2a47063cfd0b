#include "e2e/Mousepad.h"

#include "e2e/VirtualDesktop.h"
#include "e2e/Wait.h"

namespace stavelin::e2e {

Mousepad::Mousepad(VirtualDesktop &desktop, std::filesystem::path file,
                   std::unique_ptr<DesktopProcess> process, xcb_window_t window)
    : Application("Mousepad", std::move(process), window), m_desktop(desktop), m_file(std::move(file))
{}

std::string Mousepad::text()
{
    // The title begins with a star while there is something to save.
    const auto isModified = [this] { return m_desktop.screen().titleOf(window()).starts_with('*'); };
    if (isModified() && m_desktop.screen().hasFocus(window())) {
        m_desktop.press("Ctrl+S");
        waitUntil([&] { return !isModified(); }, std::chrono::seconds(1));
    }
    return contentOf(m_file);
}

} // namespace stavelin::e2e
