#include "server/X11Pasteboard.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>

namespace stavelin::server {

namespace {

constexpr std::chrono::milliseconds longestPut{2000};
// The thread gives up a little earlier, so that what it has to say is not lost.
constexpr std::chrono::milliseconds longestOwn{1800};

} // namespace

/// The puts that are not finished. The selection's thread brings its results here, and may do so when the
/// pasteboard has gone.
class X11Pasteboard::Desk : public std::enable_shared_from_this<Desk>
{
public:
    using Number = std::uint64_t;

    Desk(boost::asio::io_context &io, LeveledLog &log) : m_io(&io), m_log(log) {}

    Number begin(Completion completion)
    {
        const Number number = m_nextNumber++;
        boost::asio::steady_timer limit(*m_io, longestPut);
        limit.async_wait([number, desk = weak_from_this()](boost::system::error_code cancelled) {
            const auto self = desk.lock();
            if (!cancelled && self)
                self->finish(number, std::unexpected(PasteboardError{"The X server did not answer in time"}));
        });
        m_open.emplace(number, Open{std::move(completion), std::move(limit)});
        return number;
    }

    /// Any thread.
    void bring(Number number, std::expected<void, PasteboardError> result)
    {
        const std::lock_guard lock(m_mutex);
        if (!m_io)
            return;
        boost::asio::post(*m_io, [number, result = std::move(result), desk = weak_from_this()] {
            if (const auto self = desk.lock())
                self->finish(number, result);
        });
    }

    /// After this nothing is posted and no completion runs any more.
    void close()
    {
        m_open.clear();
        const std::lock_guard lock(m_mutex);
        m_io = nullptr;
    }

private:
    struct Open
    {
        Completion completion;
        boost::asio::steady_timer limit;
    };

    void finish(Number number, const std::expected<void, PasteboardError> &result)
    {
        auto open = m_open.extract(number);
        if (!open)
            return; // the limit has passed and the result came late, or the other way round
        if (!result)
            m_log.warn("A text could not be put on the pasteboard: " + result.error().description);
        open.mapped().completion(result);
    }

    std::mutex m_mutex;
    boost::asio::io_context *m_io; // null once the pasteboard has gone
    LeveledLog &m_log;
    Number m_nextNumber = 0;
    std::map<Number, Open> m_open; // on the thread of `io` only
};

X11Pasteboard::X11Pasteboard(boost::asio::io_context &io, SessionEnvironment environment, LeveledLog &log)
    : m_desk(std::make_shared<Desk>(io, log)), m_environment(std::move(environment))
{}

X11Pasteboard::~X11Pasteboard()
{
    m_desk->close();
}

void X11Pasteboard::put(std::string text, bool isSecret, Completion completion)
{
    if (!m_thread)
        m_thread.emplace(m_environment);
    const Desk::Number number = m_desk->begin(std::move(completion));
    m_thread->own({std::move(text), isSecret}, std::chrono::steady_clock::now() + longestOwn,
                  [desk = m_desk, number](std::expected<void, PasteboardError> result) {
                      desk->bring(number, std::move(result));
                  });
}

} // namespace stavelin::server
