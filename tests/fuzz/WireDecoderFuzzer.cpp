#include "daemon/WireDecoder.h"
#include "daemon/WireEncoder.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

using stavelin::daemon::WireDecoder;

void require(bool holds, const char *promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

} // namespace

/// Both readers must make the same of any bytes, and what was decoded must survive being written and read
/// again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // Kept from one input to the next, so that one frame's leftovers can be seen in another.
    static WireDecoder fast(WireDecoder::Reader::fast);
    static WireDecoder exact(WireDecoder::Reader::exact);

    const std::string_view json(reinterpret_cast<const char *>(data), size);
    const auto value = fast.decodeValue(json);
    require(value == exact.decodeValue(json), "both readers read the same value");
    require(fast.decodeMessage(json) == exact.decodeMessage(json), "both readers read the same message");
    require(fast.decodeState(json) == exact.decodeState(json), "both readers read the same state");
    require(fast.decodeFrame(json) == exact.decodeFrame(json), "both readers read the same frame");
    if (!value)
        return 0;

    const auto written = stavelin::daemon::encode(*value);
    require(written.has_value(), "every decoded value can be written");
    require(fast.decodeValue(*written) == value, "what is written is read as the same value");
    const auto state = stavelin::daemon::decodeState(*value);
    require(fast.decodeState(json) == state, "a state is read alike from the text and from its value");
    if (state)
        require(fast.decodeState(*stavelin::daemon::encode(*state)) == state,
                "what is written is read as the same state");
    return 0;
}
