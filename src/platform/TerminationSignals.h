#pragma once

namespace stavelin::platform {

/// The system's wish that this program ends in good order: a session that ends, a terminal that closes,
/// Ctrl+C.
class TerminationSignals
{
public:
    virtual ~TerminationSignals() = default;

    /// Readable from the first such wish on. A second one ends the program at once. Owned by this object.
    [[nodiscard]] virtual int descriptor() const = 0;
};

} // namespace stavelin::platform
