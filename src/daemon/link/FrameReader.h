#pragma once

#include "daemon/WireDecoder.h"
#include "daemon/link/WebSocketTask.h"
#include "support/Clock.h"

#include <string_view>

namespace stavelin::daemon {

enum class FrameKind { text, binary };

/// Reads the frames of one connection into what the connector handles: decodes them and turns a state into
/// the model's records. One object serves one thread at a time.
class FrameReader
{
public:
    /// `clock` gives the moment that stands for dates that cannot be read; only now() is called, on the
    /// reading thread.
    explicit FrameReader(const support::Clock &clock) : m_clock(clock) {}

    /// A binary frame counts as text if it is well-formed UTF-8.
    [[nodiscard]] ReceivedFrame read(FrameKind kind, std::string_view bytes);

private:
    const support::Clock &m_clock;
    WireDecoder m_decoder;
};

} // namespace stavelin::daemon
