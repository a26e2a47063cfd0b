#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

struct xcb_connection_t;

namespace stavelin::testkit {

/// One key event as an application sees it.
struct SeenKey
{
    bool isPress = false;
    std::uint8_t keycode = 0;
    std::uint16_t state = 0; ///< the modifiers before the event, as the core protocol numbers them
    friend bool operator==(const SeenKey &, const SeenKey &) = default;
};

/// Stands for "the other application": a window with the input focus that keeps the keys it gets.
class WitnessWindow
{
public:
    /// Shows the window and focuses it. An empty class means a window without WM_CLASS.
    explicit WitnessWindow(const std::string &display, const std::string &windowClass = "witness");
    ~WitnessWindow();
    WitnessWindow(const WitnessWindow &) = delete;
    WitnessWindow &operator=(const WitnessWindow &) = delete;

    /// Every event so far up to a press of this key, or all that came until the time was over.
    std::vector<SeenKey> keysUntil(std::uint8_t keycode,
                                   std::chrono::milliseconds patience = std::chrono::seconds(8));
    /// As keysUntil(), but until the release.
    std::vector<SeenKey> keysUntilReleaseOf(std::uint8_t keycode,
                                            std::chrono::milliseconds patience = std::chrono::seconds(8));
    /// Forgets what came so far.
    void forget();
    void setFocus();
    /// The keys that the server holds to be down, ascending.
    [[nodiscard]] std::vector<std::uint8_t> keysDown();
    /// The window, as the server numbers it.
    [[nodiscard]] std::uint32_t window() const { return m_window; }
    [[nodiscard]] xcb_connection_t *connection() const { return m_connection; }

private:
    std::vector<SeenKey> keysUntil(bool isPress, std::uint8_t keycode, std::chrono::milliseconds patience);

    xcb_connection_t *m_connection;
    std::uint32_t m_window = 0;
};

/// Only the presses.
[[nodiscard]] std::vector<SeenKey> presses(const std::vector<SeenKey> &keys);

} // namespace stavelin::testkit
