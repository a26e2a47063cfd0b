#pragma once

#include "e2e/VirtualDesktop.h"

#include <gtest/gtest.h>

namespace stavelin::e2e {

/// A test on a virtual desktop. When it fails, the programs' output is printed, and a picture of the screen
/// is left in the folder e2e-failures beside the test programs.
class DesktopTest : public testing::Test
{
protected:
    void TearDown() override;

    VirtualDesktop desktop;
};

} // namespace stavelin::e2e
