#pragma once

#include "platform/Beeper.h"

namespace stavelin::testkit {

/// Counts the beeps.
class FakeBeeper final : public platform::Beeper
{
public:
    void beep() override { ++beeps; }

    int beeps = 0;
};

} // namespace stavelin::testkit
