#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <chrono>
#include <future>
#include <thread>

namespace stavelin::daemon {

/// The thread that all connections of a factory share. Its own members are the main thread's, apart from what
/// is posted to context().
class IoThread
{
public:
    IoThread() : m_work(boost::asio::make_work_guard(m_context)) {}
    ~IoThread() { stop(); }
    IoThread(const IoThread &) = delete;
    IoThread &operator=(const IoThread &) = delete;

    [[nodiscard]] boost::asio::io_context &context() { return m_context; }

    /// Does nothing when the thread runs, or has been stopped.
    void startOnce()
    {
        if (m_thread.joinable() || m_isStopped)
            return;
        m_thread = std::thread([this] {
            m_context.run();
            m_ended.set_value();
        });
    }

    /// Waits up to 200 ms for connections that are being closed, then ends the thread for good.
    void stop()
    {
        m_isStopped = true;
        if (!m_thread.joinable())
            return;
        m_work.reset();
        if (m_ended.get_future().wait_for(std::chrono::milliseconds(200)) == std::future_status::timeout)
            m_context.stop();
        m_thread.join();
    }

private:
    boost::asio::io_context m_context{1}; // one thread: completions run in the order in which they came about
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> m_work;
    std::promise<void> m_ended;
    std::thread m_thread;
    bool m_isStopped = false;
};

} // namespace stavelin::daemon
