#include "platform/x11/selection/SelectionReader.h"

#include "platform/x11/selection/InternAtoms.h"
#include "platform/x11/selection/ServerReply.h"
#include "support/Utf8.h"

#include <algorithm>
#include <array>
#include <utility>

namespace stavelin::platform::x11::selection {

namespace {

enum Known : std::size_t { utf8Atom, plainUtf8Atom, incrementalAtom, transferAtom };
constexpr std::array<std::string_view, 4> knownNames{"UTF8_STRING", "text/plain;charset=utf-8", "INCR",
                                                     "STAVELIN_TRANSFER"};
// How much of a property is asked for at once, in units of four bytes.
constexpr std::uint32_t largestReply = 256 * 1024;

std::string fromLatin1(std::string_view latin1)
{
    std::string utf8;
    utf8.reserve(latin1.size());
    for (const char c : latin1) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            utf8.push_back(c);
        } else {
            utf8.push_back(static_cast<char>(0xC0 | byte >> 6));
            utf8.push_back(static_cast<char>(0x80 | (byte & 0x3F)));
        }
    }
    return utf8;
}

} // namespace

/// One reading, with a window of its own: an answer that comes too late finds it gone and disturbs no later
/// reading.
struct SelectionReader::Request
{
    Request(xcb_connection_t *server, const xcb_screen_t *screen, xcb_atom_t wanted, std::size_t mostBytes)
        : connection(server), window(xcb_generate_id(server)), selection(wanted), limit(mostBytes),
          deadline(SteadyClock::now() + wholePatience)
    {
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    }
    ~Request()
    {
        xcb_destroy_window(connection, window);
        xcb_flush(connection);
    }
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;

    xcb_connection_t *connection;
    xcb_window_t window;
    xcb_atom_t selection;
    std::size_t limit;
    TimePoint deadline;
    bool isRefused = false; // the owner has said that it has nothing of the kind; another kind may do
};

struct SelectionReader::Piece
{
    xcb_atom_t type = XCB_ATOM_NONE;
    std::uint8_t format = 0;
    std::optional<std::string> bytes; // nothing when there were too many
};

SelectionReader::SelectionReader(xcb_connection_t *connection, const xcb_screen_t *screen,
                                 OtherEvent otherEvent, int stopDescriptor)
    : m_connection(connection), m_screen(screen), m_otherEvent(std::move(otherEvent)),
      m_stopDescriptor(stopDescriptor)
{}

std::expected<std::optional<std::string>, SelectionError>
SelectionReader::read(std::string_view selectionName, std::size_t limit)
{
    if (const auto known = internAtoms(); !known)
        return std::unexpected(known.error());
    const auto serverDeadline = SteadyClock::now() + ownerPatience;
    const auto asked = xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(selectionName.size()),
                                       selectionName.data());
    const auto atom = waitForReply<xcb_intern_atom_reply_t>(m_connection, asked.sequence, serverDeadline);
    if (!atom)
        return std::unexpected(atom.error());
    if (*atom == nullptr)
        return std::nullopt;
    const auto ownerAsked = xcb_get_selection_owner(m_connection, (*atom)->atom);
    const auto owner =
        waitForReply<xcb_get_selection_owner_reply_t>(m_connection, ownerAsked.sequence, serverDeadline);
    if (!owner)
        return std::unexpected(owner.error());
    if (*owner == nullptr || (*owner)->owner == XCB_NONE)
        return std::nullopt;

    Request request(m_connection, m_screen, (*atom)->atom, limit);
    for (const xcb_atom_t target : {m_atoms[utf8Atom], m_atoms[plainUtf8Atom], xcb_atom_t{XCB_ATOM_STRING}}) {
        Bytes bytes = readFrom(request, target);
        if (!bytes)
            return bytes;
        if (!*bytes && request.isRefused)
            continue;
        if (!*bytes)
            return std::nullopt;
        std::string text = target == XCB_ATOM_STRING ? fromLatin1(**bytes) : std::move(**bytes);
        if (text.size() > limit || !support::isValidUtf8(text))
            return std::nullopt;
        return text;
    }
    return std::nullopt;
}

std::expected<void, SelectionError> SelectionReader::internAtoms()
{
    if (!m_atoms.empty())
        return {};
    const auto deadline = SteadyClock::now() + ownerPatience;
    auto atoms = selection::internAtoms(m_connection, knownNames, deadline);
    if (!atoms)
        return std::unexpected(atoms.error());
    m_atoms = *std::move(atoms);
    return {};
}

SelectionReader::Bytes SelectionReader::readFrom(Request &request, xcb_atom_t target)
{
    request.isRefused = false;
    xcb_convert_selection(m_connection, request.window, request.selection, target, m_atoms[transferAtom],
                          XCB_CURRENT_TIME);
    const auto answer = waitFor(request, [&](const xcb_generic_event_t &event) {
        const auto &notice = reinterpret_cast<const xcb_selection_notify_event_t &>(event);
        return (event.response_type & 0x7F) == XCB_SELECTION_NOTIFY && notice.requestor == request.window &&
               notice.target == target;
    });
    if (!answer)
        return std::unexpected(answer.error());
    if (*answer == nullptr)
        return std::nullopt;
    if (reinterpret_cast<const xcb_selection_notify_event_t &>(**answer).property == XCB_ATOM_NONE) {
        request.isRefused = true;
        return std::nullopt;
    }
    auto piece = takeProperty(request, request.limit);
    if (!piece)
        return std::unexpected(piece.error());
    if (piece->type == m_atoms[incrementalAtom])
        return readInPieces(request);
    if (piece->format != 8)
        return std::nullopt;
    return std::move(piece->bytes);
}

SelectionReader::Bytes SelectionReader::readInPieces(const Request &request)
{
    // Taking the property away was the sign to begin; each taking is the sign for the next piece.
    std::string text;
    for (;;) {
        const auto arrived = waitFor(request, [&](const xcb_generic_event_t &event) {
            const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
            return (event.response_type & 0x7F) == XCB_PROPERTY_NOTIFY && change.window == request.window &&
                   change.atom == m_atoms[transferAtom] && change.state == XCB_PROPERTY_NEW_VALUE;
        });
        if (!arrived)
            return std::unexpected(arrived.error());
        if (*arrived == nullptr)
            return std::nullopt;
        const auto piece = takeProperty(request, request.limit - text.size());
        if (!piece)
            return std::unexpected(piece.error());
        if (piece->type == XCB_ATOM_NONE)
            continue; // told of, but taken already with the one before
        if (piece->format != 8 || !piece->bytes)
            return std::nullopt;
        if (piece->bytes->empty())
            return text;
        text += *piece->bytes;
    }
}

std::expected<SelectionReader::Piece, SelectionError> SelectionReader::takeProperty(const Request &request,
                                                                                    std::size_t limit)
{
    Piece piece{.bytes = std::string()};
    for (std::uint32_t offset = 0;;) {
        const auto asked = xcb_get_property(m_connection, 0, request.window, m_atoms[transferAtom],
                                            XCB_GET_PROPERTY_TYPE_ANY, offset, largestReply);
        const auto part =
            waitForReply<xcb_get_property_reply_t>(m_connection, asked.sequence, request.deadline);
        if (!part)
            return std::unexpected(part.error());
        if (*part == nullptr)
            return piece;
        piece.type = (*part)->type;
        piece.format = (*part)->format;
        const auto size = static_cast<std::size_t>(xcb_get_property_value_length(part->get()));
        if (piece.bytes->size() + size + (*part)->bytes_after > limit) {
            piece.bytes.reset();
            break;
        }
        piece.bytes->append(static_cast<const char *>(xcb_get_property_value(part->get())), size);
        if ((*part)->bytes_after == 0)
            break;
        offset += largestReply;
    }
    xcb_delete_property(m_connection, request.window, m_atoms[transferAtom]);
    return piece;
}

std::expected<SelectionReader::EventPointer, SelectionError>
SelectionReader::waitFor(const Request &request,
                         const std::function<bool(const xcb_generic_event_t &)> &isWanted)
{
    const TimePoint deadline = std::min(request.deadline, SteadyClock::now() + ownerPatience);
    xcb_flush(m_connection);
    for (;;) {
        while (EventPointer event{xcb_poll_for_event(m_connection), std::free}) {
            if (isWanted(*event))
                return event;
            if (m_otherEvent)
                m_otherEvent(*event);
        }
        if (xcb_connection_has_error(m_connection) != 0)
            return std::unexpected(SelectionError::connectionLost);
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - SteadyClock::now());
        pollfd descriptors[] = {{xcb_get_file_descriptor(m_connection), POLLIN, 0},
                                {m_stopDescriptor, POLLIN, 0}};
        if (left.count() <= 0)
            return EventPointer(nullptr, std::free);
        ::poll(descriptors, 2, static_cast<int>(left.count()));
        if ((descriptors[1].revents & POLLIN) != 0)
            return EventPointer(nullptr, std::free);
    }
}

} // namespace stavelin::platform::x11::selection
