#pragma once

#include "platform/FloatingWindow.h"

#include <functional>
#include <vector>

namespace stavelin::testkit {

/// Keeps which windows were prepared, and tells the test of it.
class FakeFloatingWindow final : public platform::FloatingWindow
{
public:
    void prepareToShow(std::uintptr_t windowId) override
    {
        prepared.push_back(windowId);
        if (onPrepare)
            onPrepare();
    }

    std::vector<std::uintptr_t> prepared;
    std::function<void()> onPrepare;
};

} // namespace stavelin::testkit
