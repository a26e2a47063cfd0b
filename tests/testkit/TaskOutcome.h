#pragma once

#include <QCoroTask>

#include <memory>
#include <optional>
#include <utility>

namespace stavelin::testkit {

/// What a coroutine returned, once it has. The coroutine runs on when this object goes.
template <typename Value>
class TaskOutcome
{
public:
    explicit TaskOutcome(QCoro::Task<Value> task) { keep(std::move(task), m_value); }

    [[nodiscard]] bool isFinished() const { return m_value->has_value(); }
    /// Throws if the coroutine has not returned yet, which fails the test that asks.
    [[nodiscard]] const Value &value() const { return m_value->value(); }

private:
    static QCoro::Task<void> keep(QCoro::Task<Value> task, std::shared_ptr<std::optional<Value>> kept)
    {
        Value value = co_await task;
        kept->emplace(std::move(value));
    }

    std::shared_ptr<std::optional<Value>> m_value = std::make_shared<std::optional<Value>>();
};

} // namespace stavelin::testkit
