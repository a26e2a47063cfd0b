#pragma once

#include "platform/EventTap.h"

#include <memory>
#include <thread>

namespace stavelin::platform::x11 {

class X11TapLoop;

/// A tap at work: its loop on a thread of its own.
class X11EventTap final : public EventTap
{
public:
    /// `loop` is installed.
    explicit X11EventTap(std::unique_ptr<X11TapLoop> loop);
    ~X11EventTap() override;
    X11EventTap(const X11EventTap &) = delete;
    X11EventTap &operator=(const X11EventTap &) = delete;

    void waitingChanged() override;
    [[nodiscard]] std::vector<TapConflict> conflicts() const override;

private:
    std::unique_ptr<X11TapLoop> m_loop;
    std::thread m_thread;
};

} // namespace stavelin::platform::x11
