#pragma once

#include <string>
#include <vector>

namespace stavelin::daemon {

/// Why a text could not be read as what was expected. Never quotes the text itself: it may hold a secret.
struct DecodingError
{
    std::string description;

    friend bool operator==(const DecodingError &, const DecodingError &) = default;
};

/// Why a value could not be written as JSON, and where it stands in what was to be written.
struct EncodingError
{
    std::string description;
    std::vector<std::string> codingPath; ///< member names and array indices from the outermost inwards

    friend bool operator==(const EncodingError &, const EncodingError &) = default;
};

} // namespace stavelin::daemon
