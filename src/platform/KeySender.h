#pragma once

#include <cstdint>

namespace stavelin::platform {

/// Types for the user.
class KeySender
{
public:
    virtual ~KeySender() = default;

    /// Presses and releases Command with this key (KeyVocabulary.h; c copies, v pastes) for the application
    /// in front, as the chord that its focused window understands. Keys that the user holds neither leak into
    /// it nor are lost. Returns before the keys are sent; what fails is logged by the back-end.
    virtual void simulateKeyPress(std::int64_t keyCode) = 0;
};

} // namespace stavelin::platform
