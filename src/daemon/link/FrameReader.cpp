#include "daemon/link/FrameReader.h"

#include "support/Utf8.h"

#include <utility>

namespace stavelin::daemon {

ReceivedFrame FrameReader::read(FrameKind kind, std::string_view bytes)
{
    if (kind == FrameKind::binary && !support::isValidUtf8(bytes))
        return DroppedFrame{};

    auto decoded = m_decoder.decodeFrame(bytes);
    if (!decoded)
        return std::move(decoded).error();
    if (auto *message = std::get_if<ProtocolMessage>(&*decoded))
        return std::move(*message);

    auto &state = std::get<StatePayload>(*decoded);
    const support::Timestamp now = m_clock.now();
    return ReceivedState{
        .clipboardSlots = model::makeClipboardSlots(std::move(state.clipboard_slots), now),
        .fileReferences = model::makeFileReferences(std::move(state.file_references), now),
    };
}

} // namespace stavelin::daemon
