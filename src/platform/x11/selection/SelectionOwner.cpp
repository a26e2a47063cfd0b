#include "platform/x11/selection/SelectionOwner.h"

#include "platform/x11/selection/InternAtoms.h"
#include "platform/x11/selection/ServerReply.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace stavelin::platform::x11::selection {

namespace {

using Deadline = SelectionOwner::SteadyClock::time_point;

// The atoms by their place in m_atoms. CLIPBOARD and the like are asked for by name.
enum Known : std::size_t {
    targetsAtom,
    timestampAtom,
    multipleAtom,
    atomPairAtom,
    incrementalAtom,
    saveTargetsAtom,
    nullAtom,
    utf8Atom,
    textAtom,
    plainUtf8Atom,
    plainAtom,
    secretHintAtom,
    timeMarkAtom,
};
constexpr std::array<std::string_view, 13> knownNames{
    "TARGETS",       "TIMESTAMP",
    "MULTIPLE",      "ATOM_PAIR",
    "INCR",          "SAVE_TARGETS",
    "NULL",          "UTF8_STRING",
    "TEXT",          "text/plain;charset=utf-8",
    "text/plain",    "x-kde-passwordManagerHint",
    "STAVELIN_TIME",
};

// A ChangeProperty request has a head of 24 bytes; the rest of this is room to spare.
constexpr std::size_t requestHead = 128;
// Enough for any sensible MULTIPLE request; what lies beyond is not converted.
constexpr std::uint32_t mostMultipleAtoms = 1024;

bool isBefore(std::uint32_t a, std::uint32_t b)
{
    // Server times and sequence numbers wrap around.
    return static_cast<std::int32_t>(a - b) < 0;
}

/// Eight bytes at a time: this is done for every text that is pasted, before the paste is answered.
bool isAscii(std::string_view text)
{
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t place = 0;
    for (; place + sizeof(std::uint64_t) <= text.size(); place += sizeof(std::uint64_t)) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, text.data() + place, sizeof bytes);
        if ((bytes & highBits) != 0)
            return false;
    }
    return std::ranges::none_of(text.substr(place), [](char c) { return (c & 0x80) != 0; });
}

/// The text in ISO 8859-1, or null when it has a character outside it. An ASCII text is both and is held
/// once.
std::shared_ptr<const std::string> toLatin1(const std::shared_ptr<const std::string> &text)
{
    const std::string &utf8 = *text;
    if (isAscii(utf8))
        return text;
    auto latin1 = std::make_shared<std::string>();
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        if (byte < 0x80) {
            latin1->push_back(utf8[i]);
        } else if ((byte == 0xC2 || byte == 0xC3) && i + 1 < utf8.size()) {
            ++i;
            latin1->push_back(static_cast<char>((byte & 0x03) << 6 | (utf8[i] & 0x3F)));
        } else {
            return nullptr;
        }
    }
    return latin1;
}

} // namespace

SelectionOwner::SelectionOwner(xcb_connection_t *connection, const xcb_screen_t *screen,
                               OtherEvent otherEvent)
    : m_connection(connection), m_window(xcb_generate_id(connection)), m_otherEvent(std::move(otherEvent)),
      m_pieceSize(std::min<std::size_t>(
          largestPiece, std::size_t{xcb_get_setup(connection)->maximum_request_length} * 4 - requestHead))
{
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
}

SelectionOwner::~SelectionOwner()
{
    xcb_destroy_window(m_connection, m_window);
    xcb_flush(m_connection);
}

std::expected<void, SelectionError> SelectionOwner::own(std::string_view selectionName,
                                                        SelectionContent content,
                                                        std::chrono::milliseconds timeout)
{
    const Deadline deadline = SteadyClock::now() + timeout;
    if (const auto known = internAtoms(deadline); !known)
        return known;
    const auto selection = atomNamed(selectionName, deadline);
    if (!selection)
        return std::unexpected(selection.error());
    const auto time = serverTime(deadline);
    if (!time)
        return std::unexpected(time.error());

    const auto taken = xcb_set_selection_owner(m_connection, m_window, *selection, *time);
    const auto asked = xcb_get_selection_owner(m_connection, *selection);
    const auto owner = waitForReply<xcb_get_selection_owner_reply_t>(m_connection, asked.sequence, deadline);
    if (!owner)
        return std::unexpected(owner.error());
    if (*owner == nullptr || (*owner)->owner != m_window)
        return std::unexpected(SelectionError::refused);

    if (m_ownership && m_ownership->selection != *selection)
        xcb_set_selection_owner(m_connection, XCB_NONE, m_ownership->selection, m_ownership->time);
    auto utf8 = std::make_shared<const std::string>(std::move(content.utf8));
    auto latin1 = toLatin1(utf8);
    m_ownership =
        Ownership{*selection, *time, taken.sequence, std::move(utf8), std::move(latin1), content.isSecret};
    xcb_flush(m_connection);
    return {};
}

bool SelectionOwner::handle(const xcb_generic_event_t &event)
{
    switch (event.response_type & 0x7F) {
    case 0:
        dropTransfersTo(reinterpret_cast<const xcb_generic_error_t &>(event).resource_id);
        return true;
    case XCB_SELECTION_REQUEST: {
        const auto &request = reinterpret_cast<const xcb_selection_request_event_t &>(event);
        if (request.owner != m_window)
            return false;
        answer(request);
        return true;
    }
    case XCB_SELECTION_CLEAR: {
        const auto &clear = reinterpret_cast<const xcb_selection_clear_event_t &>(event);
        if (clear.owner != m_window)
            return false;
        // One that was on its way when the selection was taken anew tells of the former ownership.
        if (m_ownership && clear.selection == m_ownership->selection &&
            !isBefore(event.full_sequence, m_ownership->sequence))
            m_ownership.reset();
        return true;
    }
    case XCB_PROPERTY_NOTIFY: {
        const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
        return change.window == m_window || handOverNextPiece(change);
    }
    case XCB_DESTROY_NOTIFY:
        return dropTransfersTo(reinterpret_cast<const xcb_destroy_notify_event_t &>(event).window);
    default:
        return false;
    }
}

std::optional<Deadline> SelectionOwner::nextDeadline() const
{
    const auto first = std::ranges::min_element(m_transfers, {}, &Transfer::deadline);
    return first == m_transfers.end() ? std::nullopt : std::optional(first->deadline);
}

void SelectionOwner::expire(SteadyClock::time_point now)
{
    for (auto transfer = m_transfers.begin(); transfer != m_transfers.end();)
        transfer = transfer->deadline <= now ? drop(transfer) : std::next(transfer);
    xcb_flush(m_connection);
}

std::expected<void, SelectionError> SelectionOwner::internAtoms(Deadline deadline)
{
    if (!m_atoms.empty())
        return {};
    auto atoms = selection::internAtoms(m_connection, knownNames, deadline);
    if (!atoms)
        return std::unexpected(atoms.error());
    m_atoms = *std::move(atoms);
    return {};
}

std::expected<xcb_atom_t, SelectionError> SelectionOwner::atomNamed(std::string_view name, Deadline deadline)
{
    const auto atoms = selection::internAtoms(m_connection, std::span(&name, 1), deadline);
    if (!atoms)
        return std::unexpected(atoms.error());
    return atoms->front();
}

std::expected<xcb_timestamp_t, SelectionError> SelectionOwner::serverTime(Deadline deadline)
{
    // A change of a property, even by nothing, is announced with the server's time (ICCCM 2.1).
    const auto changed = xcb_change_property(m_connection, XCB_PROP_MODE_APPEND, m_window,
                                             m_atoms[timeMarkAtom], XCB_ATOM_INTEGER, 32, 0, nullptr);
    xcb_flush(m_connection);
    for (;;) {
        while (const ReplyPointer<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
            if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY) {
                const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(*event);
                // An older mark may still be on its way from a call that timed out.
                if (change.window == m_window && change.atom == m_atoms[timeMarkAtom] &&
                    !isBefore(event->full_sequence, changed.sequence))
                    return change.time;
            }
            handOut(*event);
        }
        if (xcb_connection_has_error(m_connection) != 0)
            return std::unexpected(SelectionError::connectionLost);
        if (!waitForInput(m_connection, deadline))
            return std::unexpected(SelectionError::timedOut);
    }
}

void SelectionOwner::handOut(const xcb_generic_event_t &event)
{
    if (!handle(event) && m_otherEvent)
        m_otherEvent(event);
}

void SelectionOwner::answer(const xcb_selection_request_event_t &request)
{
    // Requestors of before the present conventions name no property and mean the target's name.
    const xcb_atom_t property = request.property == XCB_ATOM_NONE ? request.target : request.property;
    const bool isForThisOwnership =
        m_ownership && request.selection == m_ownership->selection &&
        (request.time == XCB_CURRENT_TIME || !isBefore(request.time, m_ownership->time));

    bool isConverted = false;
    if (isForThisOwnership) {
        if (request.target == m_atoms[multipleAtom])
            isConverted = request.property != XCB_ATOM_NONE && convertMultiple(request.requestor, property);
        else
            isConverted = convert(request.requestor, request.target, property);
    }

    // The server copies 32 bytes of an event, and this kind is shorter.
    std::array<char, 32> bytes{};
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = isConverted ? property : xcb_atom_t{XCB_ATOM_NONE};
    std::memcpy(bytes.data(), &notify, sizeof notify);
    xcb_send_event(m_connection, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, bytes.data());
    xcb_flush(m_connection);
}

bool SelectionOwner::convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property)
{
    const auto putWords = [&](xcb_atom_t type, std::size_t count, const void *words) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property, type, 32,
                            static_cast<std::uint32_t>(count), words);
    };
    if (target == m_atoms[targetsAtom]) {
        const std::vector<xcb_atom_t> offered = targets();
        putWords(XCB_ATOM_ATOM, offered.size(), offered.data());
    } else if (target == m_atoms[timestampAtom]) {
        putWords(XCB_ATOM_INTEGER, 1, &m_ownership->time);
    } else if (target == m_atoms[saveTargetsAtom]) {
        putWords(m_atoms[nullAtom], 0, nullptr);
    } else if (target == XCB_ATOM_STRING) {
        if (!m_ownership->latin1)
            return false;
        put(requestor, property, XCB_ATOM_STRING, m_ownership->latin1);
    } else if (target == m_atoms[textAtom]) {
        put(requestor, property, m_atoms[utf8Atom], m_ownership->utf8);
    } else if (target == m_atoms[utf8Atom] || target == m_atoms[plainUtf8Atom] ||
               target == m_atoms[plainAtom]) {
        put(requestor, property, target, m_ownership->utf8);
    } else if (target == m_atoms[secretHintAtom] && m_ownership->isSecret) {
        put(requestor, property, target, std::make_shared<const std::string>("secret"));
    } else {
        return false;
    }
    return true;
}

bool SelectionOwner::convertMultiple(xcb_window_t requestor, xcb_atom_t property)
{
    const auto asked = xcb_get_property(m_connection, 0, requestor, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                                        mostMultipleAtoms);
    const auto list = waitForReply<xcb_get_property_reply_t>(m_connection, asked.sequence,
                                                             SteadyClock::now() + std::chrono::seconds(1));
    if (!list || !*list || (*list)->format != 32)
        return false;
    const auto *atoms = static_cast<const xcb_atom_t *>(xcb_get_property_value(list->get()));
    std::vector<xcb_atom_t> pairs(atoms, atoms + (*list)->value_len / 2 * 2);

    bool isComplete = true;
    for (std::size_t i = 0; i < pairs.size(); i += 2) {
        if (pairs[i + 1] == XCB_ATOM_NONE || convert(requestor, pairs[i], pairs[i + 1]))
            continue;
        pairs[i + 1] = XCB_ATOM_NONE;
        isComplete = false;
    }
    if (!isComplete)
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property, m_atoms[atomPairAtom],
                            32, static_cast<std::uint32_t>(pairs.size()), pairs.data());
    return true;
}

std::vector<xcb_atom_t> SelectionOwner::targets() const
{
    std::vector<xcb_atom_t> offered{m_atoms[targetsAtom],     m_atoms[timestampAtom], m_atoms[multipleAtom],
                                    m_atoms[saveTargetsAtom], m_atoms[utf8Atom],      m_atoms[plainUtf8Atom],
                                    m_atoms[plainAtom],       m_atoms[textAtom]};
    if (m_ownership->latin1)
        offered.push_back(XCB_ATOM_STRING);
    if (m_ownership->isSecret)
        offered.push_back(m_atoms[secretHintAtom]);
    return offered;
}

void SelectionOwner::put(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type,
                         std::shared_ptr<const std::string> bytes)
{
    const auto former = std::ranges::find_if(m_transfers, [&](const Transfer &transfer) {
        return transfer.requestor == requestor && transfer.property == property;
    });
    if (former != m_transfers.end())
        drop(former);

    if (bytes->size() <= m_pieceSize) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property, type, 8,
                            static_cast<std::uint32_t>(bytes->size()), bytes->data());
        return;
    }
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, requestor, XCB_CW_EVENT_MASK, &events);
    const auto size = static_cast<std::uint32_t>(bytes->size());
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property, m_atoms[incrementalAtom],
                        32, 1, &size);
    m_transfers.push_back({requestor, property, type, std::move(bytes), 0, SteadyClock::now() + stallLimit});
}

bool SelectionOwner::handOverNextPiece(const xcb_property_notify_event_t &event)
{
    const auto transfer = std::ranges::find_if(m_transfers, [&](const Transfer &candidate) {
        return candidate.requestor == event.window && candidate.property == event.atom;
    });
    if (transfer == m_transfers.end())
        return std::ranges::find(m_transfers, event.window, &Transfer::requestor) != m_transfers.end();
    if (event.state != XCB_PROPERTY_DELETE)
        return true;

    const std::size_t size = std::min(m_pieceSize, transfer->bytes->size() - transfer->sent);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, transfer->requestor, transfer->property,
                        transfer->type, 8, static_cast<std::uint32_t>(size),
                        transfer->bytes->data() + transfer->sent);
    transfer->sent += size;
    transfer->deadline = SteadyClock::now() + stallLimit;
    if (size == 0)
        drop(transfer); // the piece without bytes says that this was all
    xcb_flush(m_connection);
    return true;
}

bool SelectionOwner::dropTransfersTo(xcb_window_t requestor)
{
    const std::size_t count = m_transfers.size();
    for (auto transfer = m_transfers.begin(); transfer != m_transfers.end();)
        transfer = transfer->requestor == requestor ? m_transfers.erase(transfer) : std::next(transfer);
    return m_transfers.size() != count;
}

SelectionOwner::Transfers::iterator SelectionOwner::drop(Transfers::iterator transfer)
{
    const xcb_window_t requestor = transfer->requestor;
    const auto next = m_transfers.erase(transfer);
    if (std::ranges::find(m_transfers, requestor, &Transfer::requestor) == m_transfers.end()) {
        const std::uint32_t events = XCB_EVENT_MASK_NO_EVENT;
        xcb_change_window_attributes(m_connection, requestor, XCB_CW_EVENT_MASK, &events);
    }
    return next;
}

} // namespace stavelin::platform::x11::selection
