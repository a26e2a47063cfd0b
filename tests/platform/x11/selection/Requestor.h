#pragma once

#include "platform/x11/selection/ServerReply.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <xcb/xcb.h>

namespace stavelin::testkit {

/// Another program that asks for a selection, on a connection and with a window of its own. Never waits for
/// the owner: handleEvents() does what the owner's last word asks for.
class Requestor
{
public:
    explicit Requestor(const std::string &display);

    [[nodiscard]] bool isConnected() const { return xcb_connection_has_error(m_connection.get()) == 0; }
    [[nodiscard]] int descriptor() const { return xcb_get_file_descriptor(m_connection.get()); }
    [[nodiscard]] xcb_atom_t atom(std::string_view name);

    /// Asks for a target of the selection; what was asked before is forgotten.
    void ask(std::string_view selection, std::string_view target, xcb_timestamp_t time = XCB_CURRENT_TIME);
    /// Asks for several targets at once, each into a property of the target's name.
    void askForMultiple(std::string_view selection, const std::vector<std::string> &targets);
    /// Takes no piece of a large text any more.
    void stall() { m_isStalled = true; }
    /// The window goes, in the middle of whatever is under way.
    void destroyWindow();
    /// Becomes the owner of the selection.
    void take(std::string_view selection);

    void handleEvents();

    [[nodiscard]] bool hasAnswer() const { return m_hasAnswer; }
    [[nodiscard]] bool wasRefused() const { return m_wasRefused; }
    [[nodiscard]] bool cameInPieces() const { return m_isIncremental; }
    [[nodiscard]] std::size_t received() const { return m_bytes.size(); }
    [[nodiscard]] const std::string &bytes() const { return m_bytes; }
    [[nodiscard]] std::vector<std::uint32_t> words() const;
    [[nodiscard]] std::string typeName();
    /// A property of the requestor's window as it is now; nothing when it is not there.
    [[nodiscard]] std::optional<std::string> property(std::string_view name);

private:
    struct Disconnect
    {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };
    void takePiece();

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_window_t m_window = XCB_NONE;
    xcb_atom_t m_property = XCB_NONE;
    xcb_atom_t m_incremental = XCB_NONE;
    xcb_atom_t m_type = XCB_NONE;
    std::string m_bytes;
    bool m_isIncremental = false;
    bool m_isStalled = false;
    bool m_hasAnswer = false;
    bool m_wasRefused = false;
};

} // namespace stavelin::testkit
