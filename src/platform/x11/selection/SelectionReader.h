#pragma once

#include "platform/x11/selection/SelectionError.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <xcb/xcb.h>

namespace stavelin::platform::x11::selection {

/// Reads the text of a selection from the program that owns it (ICCCM 2.4), in one piece or in many (INCR).
/// All calls on the one thread that serves `connection`.
class SelectionReader
{
public:
    using SteadyClock = std::chrono::steady_clock;
    using OtherEvent = std::function<void(const xcb_generic_event_t &)>;

    /// How long an owner may take for each of its answers.
    static constexpr std::chrono::milliseconds ownerPatience{1000};
    /// How long a whole text may take, however diligent its owner is.
    static constexpr std::chrono::milliseconds wholePatience{10000};

    /// `connection` must outlive this object. `otherEvent` gets the events that come meanwhile and are not
    /// for this object; without it they are dropped. When `stopDescriptor`, if it is not -1, gets readable,
    /// read() gives up.
    SelectionReader(xcb_connection_t *connection, const xcb_screen_t *screen, OtherEvent otherEvent = {},
                    int stopDescriptor = -1);

    /// The text of the selection ("CLIPBOARD", "PRIMARY") as well-formed UTF-8. Nothing when there is no
    /// owner, when it has no text, when the text is longer than `limit` bytes or ill-formed, or when the
    /// owner does not answer. Errors are the server's alone.
    [[nodiscard]] std::expected<std::optional<std::string>, SelectionError>
    read(std::string_view selectionName, std::size_t limit);

private:
    using TimePoint = SteadyClock::time_point;
    using Bytes = std::expected<std::optional<std::string>, SelectionError>;
    struct Request;
    struct Piece;
    using EventPointer = std::unique_ptr<xcb_generic_event_t, void (*)(void *)>;

    [[nodiscard]] std::expected<void, SelectionError> internAtoms();
    [[nodiscard]] Bytes readFrom(Request &request, xcb_atom_t target);
    [[nodiscard]] Bytes readInPieces(const Request &request);
    /// Takes the property away from the requestor's window; longer ones than `limit` bytes are left out.
    [[nodiscard]] std::expected<Piece, SelectionError> takeProperty(const Request &request,
                                                                    std::size_t limit);
    /// Waits for an event that `isWanted`; null when the time is over or stopping was asked for.
    [[nodiscard]] std::expected<EventPointer, SelectionError>
    waitFor(const Request &request, const std::function<bool(const xcb_generic_event_t &)> &isWanted);

    xcb_connection_t *m_connection;
    const xcb_screen_t *m_screen;
    OtherEvent m_otherEvent;
    int m_stopDescriptor;
    std::vector<xcb_atom_t> m_atoms; // empty until the first read()
};

} // namespace stavelin::platform::x11::selection
