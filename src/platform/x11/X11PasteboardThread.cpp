#include "platform/x11/X11PasteboardThread.h"

#include "platform/Pasteboard.h"
#include "platform/x11/selection/SelectionReader.h"
#include "support/Log.h"

#include <poll.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace stavelin::platform::x11 {

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr std::string_view selectionName = "CLIPBOARD";
constexpr std::chrono::milliseconds changePatience{400};

} // namespace

X11PasteboardThread::X11PasteboardThread(support::Log &log) : m_log(log) {}

void X11PasteboardThread::start()
{
    if (!connect())
        m_log.line("The clipboard cannot be watched");
}

void X11PasteboardThread::stop()
{
    m_isStopping = true;
    m_stop.signal();
}

void X11PasteboardThread::read(std::uint64_t before, Answer answer)
{
    const TimePoint deadline = SteadyClock::now() + changePatience;
    m_tasks.post([this, before, deadline, answer = std::move(answer)]() mutable {
        m_wishes.push_back({before, deadline, std::move(answer)});
    });
}

void X11PasteboardThread::run()
{
    while (!m_isStopping) {
        m_tasks.run();
        readEvents();
        serveWishes();
        readEvents(); // serving may have read some ahead
        int milliseconds = -1;
        if (!m_wishes.empty()) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(m_wishes.front().deadline - SteadyClock::now());
            milliseconds = static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
            if (m_changeCount != m_wishes.front().before)
                milliseconds = 0;
        }
        pollfd descriptors[] = {
            {m_stop.descriptor(), POLLIN, 0},
            {m_tasks.descriptor(), POLLIN, 0},
            {m_connection ? xcb_get_file_descriptor(m_connection->get()) : -1, POLLIN, 0}};
        ::poll(descriptors, 3, milliseconds);
    }
}

bool X11PasteboardThread::connect()
{
    auto opened = X11Connection::open();
    if (!opened)
        return false;
    xcb_connection_t *server = (*opened)->get();
    const auto *fixes = xcb_get_extension_data(server, &xcb_xfixes_id);
    if (fixes == nullptr || fixes->present == 0)
        return false;
    // The version must be asked for before the extension does anything.
    const ReplyPointer<xcb_xfixes_query_version_reply_t> version(
        xcb_xfixes_query_version_reply(server, xcb_xfixes_query_version(server, 2, 0), nullptr));
    const ReplyPointer<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        server,
        xcb_intern_atom(server, 0, static_cast<std::uint16_t>(selectionName.size()), selectionName.data()),
        nullptr));
    if (!version || !atom)
        return false;
    xcb_xfixes_select_selection_input(server, (*opened)->root(), atom->atom,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
    (*opened)->roundTrip();
    m_fixesEventCode = fixes->first_event;
    m_connection = std::move(*opened);
    return true;
}

void X11PasteboardThread::handle(const xcb_generic_event_t &event)
{
    if ((event.response_type & 0x7F) != m_fixesEventCode + XCB_XFIXES_SELECTION_NOTIFY)
        return;
    if (reinterpret_cast<const xcb_xfixes_selection_notify_event_t &>(event).owner != XCB_NONE)
        ++m_changeCount;
}

void X11PasteboardThread::readEvents()
{
    if (!m_connection)
        return;
    while (const EventPointer event = m_connection->nextEvent())
        handle(*event);
    if (m_connection->isLost()) {
        m_connection.reset();
        m_log.line("The clipboard is no longer watched: the connection to the X server was lost");
    }
}

void X11PasteboardThread::serveWishes()
{
    while (!m_wishes.empty() && !m_isStopping) {
        // Without a connection no change will be seen: the wish is for what can be had.
        if (m_connection && m_changeCount == m_wishes.front().before &&
            SteadyClock::now() < m_wishes.front().deadline)
            return;
        auto text = readText();
        if (m_isStopping)
            return; // what is still wished for goes with this object, on its own thread
        Answer answer = std::move(m_wishes.front().answer);
        m_wishes.pop_front();
        answer(std::move(text));
    }
}

std::optional<std::string> X11PasteboardThread::readText()
{
    if (!m_connection && !connect())
        return std::nullopt;
    selection::SelectionReader reader(
        m_connection->get(), m_connection->screen(),
        [this](const xcb_generic_event_t &event) { handle(event); }, m_stop.descriptor());
    auto text = reader.read(selectionName, Pasteboard::maximumTextSize);
    if (!text)
        m_log.line(std::string("The clipboard cannot be read: ") +
                   std::string(selection::description(text.error())));
    return text ? std::move(*text) : std::nullopt;
}

} // namespace stavelin::platform::x11
