#pragma once

#include <bitset>
#include <cstdint>
#include <mutex>
#include <vector>

namespace stavelin::platform::x11 {

/// What the key sender and the event tap tell each other, so that the tap lets the sender's own chords
/// through to the application and the sender knows which keys the user still holds after the tap has
/// swallowed them. Key codes and modifier masks are the core protocol's. Any thread.
class X11ExpectedKeys
{
public:
    using Keycodes = std::bitset<256>;

    /// A send begins: what earlier ones announced no longer counts.
    void begin();
    /// A press of this key with these modifiers held, locks aside, is about to be synthesized.
    void announce(std::uint8_t keycode, std::uint16_t modifiers);

    /// Whether a press that a grab caught is an announced one; each announcement is good for one press.
    [[nodiscard]] bool takePress(std::uint8_t keycode, std::uint16_t modifiers);
    /// The same for a raw press, which comes beside the other and knows no modifiers.
    [[nodiscard]] bool takeRawPress(std::uint8_t keycode);

    /// The keys that were swallowed and are still held.
    void setSwallowed(const Keycodes &keycodes);
    [[nodiscard]] Keycodes swallowed() const;

private:
    struct Announcement
    {
        std::uint8_t keycode;
        std::uint16_t modifiers;
        bool isPressPending;
        bool isRawPressPending;
    };

    mutable std::mutex m_mutex;
    std::vector<Announcement> m_announcements;
    Keycodes m_swallowed;
};

} // namespace stavelin::platform::x11
