#pragma once

namespace stavelin::platform {

class Beeper
{
public:
    virtual ~Beeper() = default;
    virtual void beep() = 0;
};

} // namespace stavelin::platform
