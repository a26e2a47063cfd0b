#include "daemon/link/DaemonError.h"

#include <gtest/gtest.h>

namespace stavelin::daemon {
namespace {

using enum DaemonError::Kind;

TEST(DaemonError, everyKindHasItsSentence)
{
    const std::pair<DaemonError, std::string> sentences[] = {
        {{.kind = serverError, .message = "the daemon's own words"}, "the daemon's own words"},
        {{.kind = serverError}, ""},
        {{.kind = notConnected}, "Not connected to daemon"},
        {{.kind = disconnected}, "Disconnected from daemon"},
        {{.kind = timeout}, "Request timed out"},
        {{.kind = invalidResponse}, "Invalid response from daemon"},
    };
    for (const auto &[error, sentence] : sentences) {
        EXPECT_EQ(error.description(), sentence);
        EXPECT_EQ(description(LinkError(error)), sentence);
    }
}

TEST(DaemonError, theTransportsAndTheEncodersErrorsKeepTheirOwnWords)
{
    EXPECT_EQ(description(TransportError{.description = "Connection refused"}), "Connection refused");
    EXPECT_EQ(description(EncodingError{.description = "Unable to encode value", .codingPath = {"payload"}}),
              "Unable to encode value");
}

} // namespace
} // namespace stavelin::daemon
