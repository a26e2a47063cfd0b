#pragma once

#include "e2e/DesktopProcess.h"

#include <memory>
#include <string>

#include <xcb/xcb.h>

namespace stavelin::e2e {

/// A real program of somebody else on the virtual desktop, with one window that a person types into.
class Application
{
public:
    Application(std::string name, std::unique_ptr<DesktopProcess> process, xcb_window_t window)
        : m_name(std::move(name)), m_process(std::move(process)), m_window(window)
    {}
    virtual ~Application() = default;
    Application(const Application &) = delete;
    Application &operator=(const Application &) = delete;

    [[nodiscard]] const std::string &name() const { return m_name; }
    [[nodiscard]] DesktopProcess &process() const { return *m_process; }
    [[nodiscard]] xcb_window_t window() const { return m_window; }

    /// The text in it as far as it can be seen now.
    [[nodiscard]] virtual std::string text() = 0;

private:
    std::string m_name;
    std::unique_ptr<DesktopProcess> m_process;
    xcb_window_t m_window;
};

} // namespace stavelin::e2e
