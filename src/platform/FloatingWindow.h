#pragma once

#include <cstdint>

namespace stavelin::platform {

/// What a window manager must be told about a floating panel beyond what the toolkit tells it.
class FloatingWindow
{
public:
    virtual ~FloatingWindow() = default;

    /// Puts the window on every desktop. To be called before each showing, while it is hidden: window
    /// managers forget what was asked of a window as soon as it is withdrawn. `windowId` is the native
    /// window's. Main thread.
    virtual void prepareToShow(std::uintptr_t windowId) = 0;
};

} // namespace stavelin::platform
