#pragma once

#include <expected>
#include <functional>
#include <string>

namespace stavelin::server {

/// Why a text could not be put on the pasteboard, for people.
struct PasteboardError
{
    std::string description;
};

/// The system's pasteboard, for writing.
class Pasteboard
{
public:
    using Completion = std::move_only_function<void(std::expected<void, PasteboardError>)>;

    virtual ~Pasteboard() = default;

    /// Puts a text on the pasteboard and goes on serving it to whoever pastes. `isSecret` asks clipboard
    /// histories not to keep it. The completion runs on the calling thread, exactly once, unless this object
    /// goes first: without error when the pasteboard is verified to be ours, at the latest with an error
    /// after 2 seconds, after which the text no longer gets there. It may run inside this call.
    virtual void put(std::string text, bool isSecret, Completion completion) = 0;
};

} // namespace stavelin::server
