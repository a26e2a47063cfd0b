#pragma once

#include "platform/x11/selection/ServerReply.h"

#include <span>
#include <string_view>
#include <vector>

namespace stavelin::platform::x11::selection {

/// The atoms of these names, in their order, in one round trip. An atom that the server refuses is
/// XCB_ATOM_NONE.
[[nodiscard]] inline std::expected<std::vector<xcb_atom_t>, SelectionError>
internAtoms(xcb_connection_t *connection, std::span<const std::string_view> names,
            std::chrono::steady_clock::time_point deadline)
{
    std::vector<xcb_intern_atom_cookie_t> cookies;
    cookies.reserve(names.size());
    for (const std::string_view name : names)
        cookies.push_back(
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    std::vector<xcb_atom_t> atoms;
    atoms.reserve(names.size());
    for (const auto &cookie : cookies) {
        const auto atom = waitForReply<xcb_intern_atom_reply_t>(connection, cookie.sequence, deadline);
        if (!atom)
            return std::unexpected(atom.error());
        atoms.push_back(*atom ? (*atom)->atom : xcb_atom_t{XCB_ATOM_NONE});
    }
    return atoms;
}

} // namespace stavelin::platform::x11::selection
