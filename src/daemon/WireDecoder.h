#pragma once

#include "daemon/ProtocolMessage.h"
#include "daemon/StatePayload.h"
#include "daemon/WireError.h"

#include <expected>
#include <memory>
#include <optional>
#include <string_view>
#include <variant>

namespace stavelin::daemon {

/// Reads frames. Holds its buffers from one frame to the next, so that a large state costs little more than
/// copying it; one object serves one thread at a time.
///
/// JSON is taken strictly (RFC 8259): well-formed UTF-8, no raw control character in a string, no lone
/// surrogate, no byte-order mark, nothing after the value, at most 1024 levels. Of members with the same name
/// the last counts.
class WireDecoder
{
public:
    /// Two readers agree on every input: the fast one, which hands frames with a number outside 64 bits to
    /// the exact one.
    enum class Reader { fast, exact };

    explicit WireDecoder(Reader reader = Reader::fast);
    ~WireDecoder();
    WireDecoder(WireDecoder &&) noexcept;
    WireDecoder &operator=(WireDecoder &&) noexcept;

    /// The envelope with its payload as a value. Members other than the five are ignored; optional ones may
    /// be missing or null.
    [[nodiscard]] std::expected<ProtocolMessage, DecodingError> decodeMessage(std::string_view json);

    [[nodiscard]] std::expected<StatePayload, DecodingError> decodeState(std::string_view json);

    /// A single value; "Unable to decode value" when the text holds none.
    [[nodiscard]] std::expected<AnyCodable, DecodingError> decodeValue(std::string_view json);

    /// What a frame holds for a client: a state, if it is a well-formed "state.updated" event (read straight
    /// into its records, without the detour over AnyCodable), else the message. A "state.updated" event whose
    /// payload is not a well-formed state comes back as a message, whose payload may be left out.
    using Frame = std::variant<ProtocolMessage, StatePayload>;
    [[nodiscard]] std::expected<Frame, DecodingError> decodeFrame(std::string_view json);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

/// The same reading of a state from a value that is already decoded.
[[nodiscard]] std::expected<StatePayload, DecodingError> decodeState(const AnyCodable &value);

/// A single value, as WireDecoder::decodeValue().
[[nodiscard]] std::expected<AnyCodable, DecodingError> decodeValue(std::string_view json);

} // namespace stavelin::daemon
