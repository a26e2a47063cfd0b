#pragma once

#include "support/WakeUp.h"

#include <functional>
#include <mutex>
#include <vector>

namespace stavelin::support {

/// The one way from a thread to another: tasks that any thread posts and one thread runs, in posting order.
/// The receiving thread watches descriptor() and calls run() when it is readable.
class HandOver
{
public:
    using Task = std::move_only_function<void()>;

    /// Any thread. The task, and all that it holds, is destroyed on the receiving thread.
    void post(Task task);

    /// Runs what was posted before this call, in order; what those tasks post runs at the next call.
    void run();

    [[nodiscard]] int descriptor() const { return m_wakeUp.descriptor(); }

private:
    WakeUp m_wakeUp;
    std::mutex m_mutex;
    std::vector<Task> m_tasks;
};

} // namespace stavelin::support
