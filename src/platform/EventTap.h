#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <string>
#include <vector>

namespace stavelin::platform {

/// A key event as the logic sees it: virtual key codes and flag words of one fixed vocabulary
/// (KeyVocabulary.h), which back-ends translate their own into.
struct TapEvent
{
    std::uint32_t type = 0; ///< 10 is key-down
    std::int64_t keyCode = 0;
    std::uint64_t flags = 0;
};

enum class TapVerdict { passThrough, swallow };

/// What a tap asks. Every call may come on the tap's own thread and returns at once: it does nothing but
/// decide.
class TapClient
{
public:
    virtual ~TapClient() = default;

    /// Decides about one event that is happening now, and starts what follows from it.
    virtual TapVerdict handle(const TapEvent &event) = 0;
    /// Whether the next digit would be swallowed.
    [[nodiscard]] virtual bool isWaitingForDigit() const = 0;
    /// Whether handle() would swallow this key-down even when no digit is awaited. No effect.
    [[nodiscard]] virtual bool isGesture(const TapEvent &event) const = 0;
};

/// A chord that the tap could not have.
struct TapConflict
{
    std::int64_t keyCode = 0;
    std::uint64_t flags = 0;
    std::string reason; ///< for people: "another program holds Super+V"
    friend bool operator==(const TapConflict &, const TapConflict &) = default;
};

/// An installed tap; destroying it removes it and gives every key back.
class EventTap
{
public:
    virtual ~EventTap() = default;

    /// TapClient::isWaitingForDigit() has changed outside TapClient::handle(). Any thread.
    virtual void waitingChanged() = 0;
    /// The chords that are missing now. Main thread.
    [[nodiscard]] virtual std::vector<TapConflict> conflicts() const = 0;
};

struct TapError
{
    std::string description;
};

class EventTapFactory
{
public:
    virtual ~EventTapFactory() = default;

    /// Installs a tap for the whole session, running. The client outlives the tap.
    [[nodiscard]] virtual std::expected<std::unique_ptr<EventTap>, TapError> createTap(TapClient &client) = 0;
};

} // namespace stavelin::platform
