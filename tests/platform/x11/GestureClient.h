#pragma once

#include "platform/EventTap.h"
#include "platform/KeyVocabulary.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <iterator>
#include <mutex>
#include <string>
#include <vector>

namespace stavelin::platform::x11 {

/// The gestures in their shortest form, and what they have started: "paste?", "save", "panel", "slot 3",
/// "end".
class GestureClient final : public TapClient
{
public:
    TapVerdict handle(const TapEvent &event) override
    {
        const std::lock_guard lock(m_mutex);
        m_handled.push_back(event);
        const std::string gesture = gestureOf(event);
        if (!gesture.empty()) {
            m_isWaiting = m_isWaiting || gesture == "paste?";
            return note(gesture, TapVerdict::swallow);
        }
        if (!m_isWaiting)
            return TapVerdict::passThrough;
        m_isWaiting = false;
        const auto *digit = std::ranges::find(keys::digits, event.keyCode);
        if (digit == std::end(keys::digits))
            return note("end", TapVerdict::passThrough);
        return note("slot " + std::to_string(digit - std::begin(keys::digits) + 1), TapVerdict::swallow);
    }
    [[nodiscard]] bool isWaitingForDigit() const override
    {
        const std::lock_guard lock(m_mutex);
        return m_isWaiting;
    }
    [[nodiscard]] bool isGesture(const TapEvent &event) const override { return !gestureOf(event).empty(); }

    /// As the time-out of the gesture does; the tap has to be told.
    void stopWaiting()
    {
        const std::lock_guard lock(m_mutex);
        m_isWaiting = false;
    }
    /// What was started so far, once it is this many; fewer when that takes too long.
    std::vector<std::string> started(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, std::chrono::seconds(8), [&] { return m_started.size() >= count; });
        return m_started;
    }
    [[nodiscard]] std::vector<TapEvent> handled() const
    {
        const std::lock_guard lock(m_mutex);
        return m_handled;
    }

private:
    static std::string gestureOf(const TapEvent &event)
    {
        const auto holds = [&](std::uint64_t flags) { return (event.flags & flags) == flags; };
        const bool isControl = holds(keys::control) && !holds(keys::command);
        if (event.keyCode == keys::v && (isControl || holds(keys::command | keys::shift)))
            return "paste?";
        if (event.keyCode == keys::c && isControl)
            return "save";
        if (event.keyCode == keys::s && holds(keys::command | keys::option))
            return "panel";
        return {};
    }
    TapVerdict note(const std::string &what, TapVerdict verdict)
    {
        m_started.push_back(what);
        m_changed.notify_all();
        return verdict;
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isWaiting = false;
    std::vector<std::string> m_started;
    std::vector<TapEvent> m_handled;
};

} // namespace stavelin::platform::x11
