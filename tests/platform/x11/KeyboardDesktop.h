#pragma once

#include "platform/x11/X11EventTapFactory.h"
#include "platform/x11/X11ExpectedKeys.h"
#include "testkit/NestedX.h"
#include "testkit/RecordingLog.h"
#include "testkit/WitnessWindow.h"

#include "GestureClient.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace stavelin::platform::x11 {

namespace keycode = testkit::keycode;

/// A user with a real keyboard, an application that has the focus, and the tap in between.
class KeyboardDesktop : public testing::Test
{
protected:
    void SetUp() override
    {
        ::setenv("DISPLAY", user.innerDisplay().c_str(), 1);
        ::unsetenv("WAYLAND_DISPLAY");
        ::unsetenv("XDG_SESSION_TYPE");
    }
    void showApplication(const std::string &windowClass = "witness")
    {
        application.reset();
        application.emplace(user.innerDisplay(), windowClass);
    }
    void startTap(ModifierRoles roles = ModifierRoles::byUse)
    {
        if (!application)
            showApplication();
        X11EventTapFactory factory(log, roles, expectedKeys);
        auto made = factory.createTap(client);
        ASSERT_TRUE(made) << made.error().description;
        tap = std::move(*made);
    }
    /// Runs a program on the user's display to its end.
    void run(const std::string &command) const { ASSERT_EQ(std::system(command.c_str()), 0) << command; }

    /// The keys that the application got, in order: presses as they are, releases negative. Types F12 to know
    /// where the end is.
    std::vector<int> seen()
    {
        user.tap(keycode::f12);
        const auto all = application->keysUntilReleaseOf(keycode::f12);
        EXPECT_TRUE(!all.empty() && all.back().keycode == keycode::f12) << "F12 did not arrive";
        std::vector<int> keys;
        for (const testkit::SeenKey &key : all) {
            if (key.keycode != keycode::f12)
                keys.push_back(key.isPress ? key.keycode : -key.keycode);
        }
        return keys;
    }

    /// Taps a key that the tap swallows, and waits until it has done with it.
    void tapSwallowed(std::uint8_t key)
    {
        user.press(key);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(8);
        while (!expectedKeys->swallowed()[key] && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        EXPECT_TRUE(expectedKeys->swallowed()[key]);
        user.release(key);
        waitForReleases();
    }
    /// Waits until the tap has seen the releases of all that it has swallowed.
    void waitForReleases() const
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(8);
        while (expectedKeys->swallowed().any() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        EXPECT_TRUE(expectedKeys->swallowed().none());
    }

    testkit::NestedX user;
    testkit::RecordingLog log;
    GestureClient client;
    std::shared_ptr<X11ExpectedKeys> expectedKeys = std::make_shared<X11ExpectedKeys>();
    std::optional<testkit::WitnessWindow> application;
    std::unique_ptr<EventTap> tap;
};

} // namespace stavelin::platform::x11
