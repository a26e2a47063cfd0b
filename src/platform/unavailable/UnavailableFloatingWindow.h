#pragma once

#include "platform/FloatingWindow.h"

namespace stavelin::platform::unavailable {

/// For desktops where a program has no say in which desktop its windows stand on.
class UnavailableFloatingWindow final : public FloatingWindow
{
public:
    void prepareToShow(std::uintptr_t) override {}
};

} // namespace stavelin::platform::unavailable
