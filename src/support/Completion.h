#pragma once

// Headers with Q_OBJECT must not include this before a Qt header: moc 6.4 fails on <coroutine>.
#include <coroutine>
#include <memory>
#include <optional>
#include <utility>

namespace stavelin::support {

/// A value that arrives later, for one awaiting coroutine: what a callback is handed, a coroutine awaits.
/// Copies share the same arrival. The first complete() counts, every later one does nothing. All on one
/// thread.
template <typename Value>
class Completion
{
public:
    /// Gives the value and resumes the waiting coroutine, if there is one, inside this call.
    void complete(Value value) const
    {
        const std::shared_ptr<State> state = m_state; // the coroutine may destroy this object
        if (state->isComplete)
            return;
        state->isComplete = true;
        state->value.emplace(std::move(value));
        if (const auto waiting = std::exchange(state->waiting, {}))
            waiting.resume();
    }
    [[nodiscard]] bool isComplete() const { return m_state->isComplete; }

    [[nodiscard]] bool await_ready() const noexcept { return m_state->isComplete; }
    void await_suspend(std::coroutine_handle<> waiting) const noexcept { m_state->waiting = waiting; }
    Value await_resume() const { return std::move(*m_state->value); }

private:
    struct State
    {
        std::optional<Value> value;
        std::coroutine_handle<> waiting;
        bool isComplete = false;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace stavelin::support
