#pragma once

#include "platform/x11/selection/SelectionError.h"

#include <chrono>
#include <cstdlib>
#include <expected>
#include <memory>

#include <poll.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

namespace stavelin::platform::x11::selection {

struct FreeReply
{
    void operator()(void *memory) const { std::free(memory); }
};

/// What xcb hands out and its caller frees: replies and events.
template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, FreeReply>;

/// Waits until the connection has something to read. False when the deadline has passed.
[[nodiscard]] inline bool waitForInput(xcb_connection_t *connection,
                                       std::chrono::steady_clock::time_point deadline)
{
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0)
        return false;
    pollfd descriptor{xcb_get_file_descriptor(connection), POLLIN, 0};
    ::poll(&descriptor, 1, static_cast<int>(left.count()));
    return true; // interrupted or not: the caller looks again, and comes back here with the same deadline
}

/// The reply to the request with this sequence number, or null when the server answered with an error. Unlike
/// xcb's own waiting it gives up at the deadline. Events stay in xcb's queue.
template <typename Reply>
[[nodiscard]] std::expected<ReplyPointer<Reply>, SelectionError>
waitForReply(xcb_connection_t *connection, unsigned int sequence,
             std::chrono::steady_clock::time_point deadline)
{
    xcb_flush(connection);
    for (;;) {
        void *reply = nullptr;
        xcb_generic_error_t *error = nullptr;
        const bool isAnswered = xcb_poll_for_reply(connection, sequence, &reply, &error) != 0;
        const ReplyPointer<xcb_generic_error_t> ownedError(error);
        ReplyPointer<Reply> ownedReply(static_cast<Reply *>(reply));
        if (!ownedReply && xcb_connection_has_error(connection) != 0)
            return std::unexpected(SelectionError::connectionLost);
        if (isAnswered)
            return ownedReply;
        if (!waitForInput(connection, deadline)) {
            xcb_discard_reply(connection, sequence);
            return std::unexpected(SelectionError::timedOut);
        }
    }
}

} // namespace stavelin::platform::x11::selection
