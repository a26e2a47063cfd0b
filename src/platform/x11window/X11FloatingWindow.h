#pragma once

#include "platform/FloatingWindow.h"

namespace stavelin::platform::x11window {

/// Speaks to the window manager over the toolkit's own connection, so that what is asked arrives before the
/// window is mapped.
class X11FloatingWindow final : public FloatingWindow
{
public:
    void prepareToShow(std::uintptr_t windowId) override;
};

} // namespace stavelin::platform::x11window
