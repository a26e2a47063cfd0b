#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace stavelin::platform {

/// Reading the general pasteboard. Main thread; never blocks it.
class Pasteboard
{
public:
    using StringCompletion = std::move_only_function<void(std::optional<std::string>)>;

    /// The longest text that is handed out, in bytes of UTF-8: as long as a slot can hold.
    static constexpr std::size_t maximumTextSize = std::size_t{64} * 1024 * 1024;

    virtual ~Pasteboard() = default;

    /// Grows by at least one whenever someone puts something on the pasteboard.
    [[nodiscard]] virtual std::uint64_t changeCount() const = 0;

    /// The pasteboard's text as UTF-8, or nothing when there is none, when its owner does not answer within a
    /// second or when it is longer than maximumTextSize. While changeCount() is still `before`, waits up to
    /// 400 ms for a change first, and then takes what is there. The completion runs later on the main thread,
    /// exactly once, unless this object goes.
    virtual void readString(std::uint64_t before, StringCompletion completion) = 0;
};

} // namespace stavelin::platform
