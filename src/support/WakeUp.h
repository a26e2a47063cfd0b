#pragma once

namespace stavelin::support {

/// A descriptor that one thread makes readable to wake another that polls it.
class WakeUp
{
public:
    WakeUp();
    ~WakeUp();
    WakeUp(const WakeUp &) = delete;
    WakeUp &operator=(const WakeUp &) = delete;

    /// Readable after signal() until clear(). Owned by this object.
    [[nodiscard]] int descriptor() const { return m_descriptor; }
    void signal() const; ///< Any thread.
    void clear() const;  ///< The woken thread, before it looks at what it was woken for.

private:
    int m_descriptor;
};

} // namespace stavelin::support
