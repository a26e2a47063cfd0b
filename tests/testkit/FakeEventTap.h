#pragma once

#include "platform/EventTap.h"
#include "platform/KeyVocabulary.h"

#include <atomic>
#include <utility>

namespace stavelin::testkit {

/// What a FakeEventTapFactory installs: a tap on the keys that the test presses.
class FakeEventTapFactory final : public platform::EventTapFactory
{
public:
    [[nodiscard]] std::expected<std::unique_ptr<platform::EventTap>, platform::TapError>
    createTap(platform::TapClient &tapClient) override
    {
        if (refuses)
            return std::unexpected(platform::TapError{"the test refuses"});
        ++tapsMade;
        client = &tapClient;
        return std::make_unique<Tap>(*this);
    }

    /// A key-down, as the installed tap hears it; without one it reaches the application. Any thread.
    platform::TapVerdict press(std::int64_t keyCode, std::uint64_t flags = 0)
    {
        return deliver({.type = platform::keys::keyDown, .keyCode = keyCode, .flags = flags});
    }
    platform::TapVerdict deliver(const platform::TapEvent &event)
    {
        return client ? client->handle(event) : platform::TapVerdict::passThrough;
    }

    bool refuses = false;
    int tapsMade = 0;
    std::atomic<int> waitingChanges = 0;          ///< calls of EventTap::waitingChanged()
    std::vector<platform::TapConflict> conflicts; ///< what the installed tap reports
    platform::TapClient *client = nullptr;        ///< of the installed tap; null when there is none

private:
    class Tap final : public platform::EventTap
    {
    public:
        explicit Tap(FakeEventTapFactory &factory) : m_factory(factory) {}
        ~Tap() override { m_factory.client = nullptr; }
        Tap(const Tap &) = delete;
        Tap &operator=(const Tap &) = delete;

        void waitingChanged() override { ++m_factory.waitingChanges; }
        [[nodiscard]] std::vector<platform::TapConflict> conflicts() const override
        {
            return m_factory.conflicts;
        }

    private:
        FakeEventTapFactory &m_factory;
    };
};

} // namespace stavelin::testkit
