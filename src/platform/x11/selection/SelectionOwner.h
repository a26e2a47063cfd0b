#pragma once

#include "platform/x11/selection/SelectionError.h"

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <xcb/xcb.h>

namespace stavelin::platform::x11::selection {

/// What a selection is offered as.
struct SelectionContent
{
    std::string utf8;      ///< well-formed UTF-8
    bool isSecret = false; ///< also offers the hint on which clipboard histories leave it alone
};

/// Owns one selection at a time and hands its text to whoever asks (ICCCM 2.6: UTF8_STRING, STRING, TEXT, the
/// text/plain types, TARGETS, TIMESTAMP, MULTIPLE, SAVE_TARGETS), large texts in pieces (INCR) and to any
/// number of requestors at the same time.
///
/// All calls on one thread, the one that serves `connection`, in this round:
///     while (event = xcb_poll_for_event(connection)) owner.handle(*event) || ...;
///     owner.expire(now); poll(descriptors, until owner.nextDeadline());
/// xcb may have read events ahead: poll the connection's descriptor only after xcb_poll_for_event() gave
/// nothing, also after own(). What this object sends it flushes itself.
class SelectionOwner
{
public:
    using SteadyClock = std::chrono::steady_clock;
    using OtherEvent = std::function<void(const xcb_generic_event_t &)>;

    /// A requestor that takes no piece for this long gets no more.
    static constexpr std::chrono::seconds stallLimit{5};
    /// The most that is handed over in one piece, in bytes.
    static constexpr std::size_t largestPiece = 256 * 1024;

    /// `connection` must outlive this object. `otherEvent` gets the events that own() reads and that are not
    /// for this object; without it they are dropped.
    SelectionOwner(xcb_connection_t *connection, const xcb_screen_t *screen, OtherEvent otherEvent = {});
    ~SelectionOwner();
    SelectionOwner(const SelectionOwner &) = delete;
    SelectionOwner &operator=(const SelectionOwner &) = delete;

    /// Takes the selection ("CLIPBOARD", "PRIMARY") at the server's present time and verifies that it is
    /// ours. Waits for the server, at most `timeout`. On an error the former content, if it is still owned,
    /// goes on being served. A selection of another name that was owned before is given up. Transfers under
    /// way finish with their old text.
    [[nodiscard]] std::expected<void, SelectionError>
    own(std::string_view selectionName, SelectionContent content,
        std::chrono::milliseconds timeout = std::chrono::seconds(1));

    /// Whether the event was for this object. X errors all are: they only ever say that a requestor has gone.
    bool handle(const xcb_generic_event_t &event);

    /// When expire() has something to do; nothing while no transfer is under way.
    [[nodiscard]] std::optional<SteadyClock::time_point> nextDeadline() const;
    /// Drops the transfers that have stalled.
    void expire(SteadyClock::time_point now);

    /// As far as the events handled so far tell.
    [[nodiscard]] bool isOwner() const { return m_ownership.has_value(); }

private:
    /// What is owned now.
    struct Ownership
    {
        xcb_atom_t selection;
        xcb_timestamp_t time;
        std::uint32_t sequence; // of the request that took it
        std::shared_ptr<const std::string> utf8;
        std::shared_ptr<const std::string> latin1; // null when the text has other characters
        bool isSecret;
    };
    /// A text on its way to a requestor in pieces.
    struct Transfer
    {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        std::shared_ptr<const std::string> bytes;
        std::size_t sent;
        SteadyClock::time_point deadline;
    };
    using Transfers = std::list<Transfer>;

    [[nodiscard]] std::expected<void, SelectionError> internAtoms(SteadyClock::time_point deadline);
    [[nodiscard]] std::expected<xcb_atom_t, SelectionError> atomNamed(std::string_view name,
                                                                      SteadyClock::time_point deadline);
    [[nodiscard]] std::expected<xcb_timestamp_t, SelectionError> serverTime(SteadyClock::time_point deadline);
    void handOut(const xcb_generic_event_t &event);

    void answer(const xcb_selection_request_event_t &request);
    [[nodiscard]] bool convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    [[nodiscard]] bool convertMultiple(xcb_window_t requestor, xcb_atom_t property);
    [[nodiscard]] std::vector<xcb_atom_t> targets() const;
    void put(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type,
             std::shared_ptr<const std::string> bytes);

    [[nodiscard]] bool handOverNextPiece(const xcb_property_notify_event_t &event);
    bool dropTransfersTo(xcb_window_t requestor);
    Transfers::iterator drop(Transfers::iterator transfer);

    xcb_connection_t *m_connection;
    xcb_window_t m_window;
    OtherEvent m_otherEvent;
    std::size_t m_pieceSize;
    std::vector<xcb_atom_t> m_atoms; // empty until the first own()
    std::optional<Ownership> m_ownership;
    Transfers m_transfers;
};

} // namespace stavelin::platform::x11::selection
