#include "platform/x11/selection/Requestor.h"

#include <cstring>

namespace stavelin::testkit {

using platform::x11::selection::ReplyPointer;

namespace {

constexpr std::uint32_t wholeProperty = 64 * 1024 * 1024; // in units of four bytes

} // namespace

Requestor::Requestor(const std::string &display) : m_connection(xcb_connect(display.c_str(), nullptr))
{
    if (!isConnected())
        return;
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data;
    m_window = xcb_generate_id(m_connection.get());
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, m_window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    m_property = atom("REQUESTED");
    m_incremental = atom("INCR");
}

xcb_atom_t Requestor::atom(std::string_view name)
{
    const auto cookie =
        xcb_intern_atom(m_connection.get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    const ReplyPointer<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(m_connection.get(), cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void Requestor::ask(std::string_view selection, std::string_view target, xcb_timestamp_t time)
{
    m_bytes.clear();
    m_type = XCB_ATOM_NONE;
    m_isIncremental = m_hasAnswer = m_wasRefused = false;
    xcb_convert_selection(m_connection.get(), m_window, atom(selection), atom(target), m_property, time);
    xcb_flush(m_connection.get());
}

void Requestor::askForMultiple(std::string_view selection, const std::vector<std::string> &targets)
{
    std::vector<xcb_atom_t> pairs;
    for (const std::string &target : targets) {
        pairs.push_back(atom(target));
        pairs.push_back(atom(target));
    }
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_window, m_property, atom("ATOM_PAIR"),
                        32, static_cast<std::uint32_t>(pairs.size()), pairs.data());
    ask(selection, "MULTIPLE");
}

void Requestor::destroyWindow()
{
    xcb_destroy_window(m_connection.get(), m_window);
    xcb_flush(m_connection.get());
}

void Requestor::take(std::string_view selection)
{
    xcb_set_selection_owner(m_connection.get(), m_window, atom(selection), XCB_CURRENT_TIME);
    xcb_flush(m_connection.get());
}

void Requestor::handleEvents()
{
    while (const ReplyPointer<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
        const int kind = event->response_type & 0x7F;
        if (kind == XCB_SELECTION_NOTIFY) {
            const auto &notify = reinterpret_cast<const xcb_selection_notify_event_t &>(*event);
            if (notify.property == XCB_ATOM_NONE)
                m_hasAnswer = m_wasRefused = true;
            else
                takePiece();
        } else if (kind == XCB_PROPERTY_NOTIFY && m_isIncremental && !m_hasAnswer) {
            const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(*event);
            if (change.atom == m_property && change.state == XCB_PROPERTY_NEW_VALUE)
                takePiece();
        }
    }
}

void Requestor::takePiece()
{
    if (m_isStalled)
        return;
    const auto cookie = xcb_get_property(m_connection.get(), 1, m_window, m_property,
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, wholeProperty);
    const ReplyPointer<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(m_connection.get(), cookie, nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE)
        return;
    if (reply->type == m_incremental) {
        m_isIncremental = true;
        return;
    }
    m_type = reply->type;
    const auto size = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
    m_bytes.append(static_cast<const char *>(xcb_get_property_value(reply.get())), size);
    m_hasAnswer = !m_isIncremental || size == 0;
}

std::vector<std::uint32_t> Requestor::words() const
{
    std::vector<std::uint32_t> words(m_bytes.size() / sizeof(std::uint32_t));
    std::memcpy(words.data(), m_bytes.data(), words.size() * sizeof(std::uint32_t));
    return words;
}

std::string Requestor::typeName()
{
    const auto cookie = xcb_get_atom_name(m_connection.get(), m_type);
    const ReplyPointer<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(m_connection.get(), cookie, nullptr));
    if (!reply)
        return {};
    return {xcb_get_atom_name_name(reply.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

std::optional<std::string> Requestor::property(std::string_view name)
{
    const auto cookie = xcb_get_property(m_connection.get(), 0, m_window, atom(name),
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, wholeProperty);
    const ReplyPointer<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(m_connection.get(), cookie, nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE)
        return std::nullopt;
    return std::string(static_cast<const char *>(xcb_get_property_value(reply.get())),
                       static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
}

} // namespace stavelin::testkit
