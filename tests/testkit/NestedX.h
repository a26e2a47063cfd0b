#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace stavelin::testkit {

/// Key codes by position on a PC keyboard, as X servers number them.
namespace keycode {
inline constexpr std::uint8_t escape = 9, digit1 = 10, digit2 = 11, digit3 = 12, digit9 = 18, digit0 = 19;
inline constexpr std::uint8_t leftControl = 37, leftShift = 50, leftAlt = 64, leftSuper = 133, rightAlt = 108;
inline constexpr std::uint8_t capsLock = 66, numLock = 77;
inline constexpr std::uint8_t enter = 36, a = 38, s = 39, x = 53, c = 54, v = 55, f12 = 96, keypad3 = 89;
} // namespace keycode

/// A virtual screen with a real keyboard: Xephyr in an Xvfb. What is typed and clicked here happens on the
/// outer server and reaches the inner one from "Xephyr virtual keyboard", a device apart from the one on
/// which programs in the inner server synthesize keys; plain Xvfb has one device for both and hides what goes
/// wrong between the two.
///
/// Programs under test run on innerDisplay(). Both servers end with this object, or with the process.
class NestedX
{
public:
    /// Starts both servers and waits until they answer. Throws std::runtime_error when they do not.
    explicit NestedX(int width = 800, int height = 600);
    ~NestedX();
    NestedX(const NestedX &) = delete;
    NestedX &operator=(const NestedX &) = delete;

    [[nodiscard]] const std::string &outerDisplay() const; ///< ":50"
    [[nodiscard]] const std::string &innerDisplay() const; ///< ":51"

    /// The user's fingers. Each call returns when the inner server has been told. Keys do not repeat by
    /// themselves.
    void press(std::uint8_t keycode);
    void release(std::uint8_t keycode);
    void tap(std::uint8_t keycode);
    /// Presses all in order, releases them in the opposite order.
    void chord(const std::vector<std::uint8_t> &keycodes);

    /// Pointer, in pixels of the inner screen; buttons as X numbers them, 1 is the left one.
    void movePointer(int x, int y);
    void pressButton(std::uint8_t button);
    void releaseButton(std::uint8_t button);

private:
    struct Private;
    std::unique_ptr<Private> m_private;
};

} // namespace stavelin::testkit
