#include "support/HandOver.h"

#include <utility>

namespace stavelin::support {

void HandOver::post(Task task)
{
    bool wasEmpty = false;
    {
        const std::lock_guard lock(m_mutex);
        wasEmpty = m_tasks.empty();
        m_tasks.push_back(std::move(task));
    }
    if (wasEmpty)
        m_wakeUp.signal();
}

void HandOver::run()
{
    m_wakeUp.clear();
    std::vector<Task> tasks;
    {
        const std::lock_guard lock(m_mutex);
        tasks.swap(m_tasks);
    }
    for (Task &task : tasks) {
        task();
        task = nullptr; // what it held goes before the next one runs
    }
}

} // namespace stavelin::support
