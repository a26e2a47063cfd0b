#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <utility>

namespace stavelin::server {

/// What is still to be sent to one client. Every answer is kept. Of the states only the newest is: it takes
/// the place of the one that is waiting, so that each answer still follows a state in which its change is
/// seen.
class OutgoingQueue
{
public:
    using Frame = std::shared_ptr<const std::string>;

    void pushAnswer(Frame frame)
    {
        m_entries.push_back({std::move(frame), Kind::answer});
        ++m_answers;
    }

    void pushState(Frame frame)
    {
        for (Entry &entry : m_entries) {
            if (entry.kind == Kind::state) {
                entry.frame = std::move(frame);
                return;
            }
        }
        m_entries.push_back({std::move(frame), Kind::state});
    }

    /// The next frame to send, which leaves the queue. Null when there is none.
    [[nodiscard]] Frame pop()
    {
        if (m_entries.empty())
            return nullptr;
        Entry entry = std::move(m_entries.front());
        m_entries.pop_front();
        if (entry.kind == Kind::answer)
            --m_answers;
        return std::move(entry.frame);
    }

    [[nodiscard]] std::size_t answers() const { return m_answers; }

private:
    enum class Kind { answer, state };
    struct Entry
    {
        Frame frame;
        Kind kind;
    };
    std::deque<Entry> m_entries; // at most one state
    std::size_t m_answers = 0;
};

} // namespace stavelin::server
