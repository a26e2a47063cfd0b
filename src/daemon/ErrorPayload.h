#pragma once

#include <string>

namespace stavelin::daemon {

/// Why the daemon could not do what a request asked.
struct ErrorPayload
{
    std::string code;    ///< stable, for programs: "slot_empty"
    std::string message; ///< readable, for people

    friend bool operator==(const ErrorPayload &, const ErrorPayload &) = default;
};

} // namespace stavelin::daemon
