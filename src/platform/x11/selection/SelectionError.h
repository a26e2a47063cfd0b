#pragma once

#include <string_view>
#include <utility>

namespace stavelin::platform::x11::selection {

/// Why the X server did not do what a selection needs.
enum class SelectionError {
    connectionLost, ///< the connection to the X server is of no use any more
    timedOut,       ///< the X server did not answer in time
    refused,        ///< somebody else owns the selection, taken at a later moment
};

/// For people.
[[nodiscard]] inline std::string_view description(SelectionError error)
{
    switch (error) {
    case SelectionError::connectionLost:
        return "the connection to the X server was lost";
    case SelectionError::timedOut:
        return "the X server did not answer in time";
    case SelectionError::refused:
        return "another program took the selection";
    }
    std::unreachable();
}

} // namespace stavelin::platform::x11::selection
