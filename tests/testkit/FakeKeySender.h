#pragma once

#include "platform/KeySender.h"

#include <functional>
#include <vector>

namespace stavelin::testkit {

/// Keeps the keys, and lets the test play the application that receives them.
class FakeKeySender final : public platform::KeySender
{
public:
    void simulateKeyPress(std::int64_t keyCode) override
    {
        keyCodes.push_back(keyCode);
        if (onKeyPress)
            onKeyPress(keyCode);
    }

    std::vector<std::int64_t> keyCodes;
    std::function<void(std::int64_t keyCode)> onKeyPress;
};

} // namespace stavelin::testkit
