#pragma once

#include "platform/Beeper.h"

namespace stavelin::platform::qt {

/// The desktop's bell, as the toolkit rings it. Main thread.
class ApplicationBeeper final : public Beeper
{
public:
    void beep() override;
};

} // namespace stavelin::platform::qt
