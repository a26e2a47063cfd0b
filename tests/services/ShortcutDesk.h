#pragma once

#include "daemon/link/DaemonConnector.h"
#include "platform/KeyVocabulary.h"
#include "services/ScriptedDaemon.h"
#include "services/ShortcutManager.h"
#include "support/HandOver.h"
#include "testkit/FakeAccessibilityPermission.h"
#include "testkit/FakeBeeper.h"
#include "testkit/FakeEventTap.h"
#include "testkit/FakeKeySender.h"
#include "testkit/FakePasteboard.h"
#include "testkit/FakeUserDefaults.h"
#include "testkit/RecordingLog.h"
#include "testkit/VirtualClock.h"

#include <memory>
#include <string>
#include <vector>

namespace stavelin::testkit {

/// A desk for one person: a keyboard with a tap on it, a pasteboard, a daemon, and the manager between them.
/// The tap's thread and the main thread are both the test's; tasks posted to the main thread run in pass()
/// only.
class ShortcutDesk
{
public:
    static constexpr std::int64_t letterA = 0;

    explicit ShortcutDesk(std::int64_t persistedSlotIndex = 0)
    {
        if (persistedSlotIndex != 0)
            userDefaults.setString("nextSlotIndex", std::to_string(persistedSlotIndex));
        manager = std::make_unique<services::ShortcutManager>(
            connector, taps, permission, keySender, pasteboard, beeper, userDefaults, clock, mainThread, log);
    }

    /// Lets all end that still waits, so that no coroutine is left suspended.
    ~ShortcutDesk()
    {
        manager.reset();
        pass(std::chrono::seconds(11));
    }
    ShortcutDesk(const ShortcutDesk &) = delete;
    ShortcutDesk &operator=(const ShortcutDesk &) = delete;

    /// Connects, with a state that holds these texts in slots 1 to 9, and starts the tap.
    void start(const std::vector<std::string> &texts = std::vector<std::string>(9))
    {
        connector.connect();
        pushTexts(texts);
        manager->startEventTap();
        pass();
    }
    void pushTexts(const std::vector<std::string> &texts)
    {
        std::vector<daemon::ClipboardSlotData> slots;
        for (const std::string &text : texts)
            slots.push_back(slot(static_cast<std::int64_t>(slots.size()) + 1, text));
        daemon.pushSlots(std::move(slots));
    }
    static daemon::ClipboardSlotData slot(std::int64_t slotIndex, const std::string &text)
    {
        return {.slot_index = slotIndex, .content = text, .updated_at = "2024-05-01T10:00:00Z"};
    }

    /// Lets what was posted and asked run, then, by the millisecond, this much time go by.
    void pass(std::chrono::milliseconds time = std::chrono::milliseconds::zero())
    {
        settle();
        for (auto passed = std::chrono::milliseconds::zero(); passed < time; ++passed) {
            clock.advance(std::chrono::milliseconds(1));
            settle();
        }
    }

    platform::TapVerdict press(std::int64_t keyCode, std::uint64_t flags = 0)
    {
        return taps.press(keyCode, flags);
    }
    platform::TapVerdict pressControlV() { return press(platform::keys::v, platform::keys::control); }
    platform::TapVerdict pressControlC() { return press(platform::keys::c, platform::keys::control); }
    platform::TapVerdict pressOptionCommandS()
    {
        return press(platform::keys::s, platform::keys::option | platform::keys::command);
    }
    platform::TapVerdict pressDigit(int digit) { return press(platform::keys::digits[digit - 1]); }

    /// The application in front answers a synthesized copy with this text, at once.
    void copyGives(const std::string &text)
    {
        keySender.onKeyPress = [this, text](std::int64_t keyCode) {
            if (keyCode == platform::keys::c)
                pasteboard.put(text);
        };
    }

    /// Each request so far, as "clipboard.set_slot 3 text".
    [[nodiscard]] std::vector<std::string> requests() const
    {
        std::vector<std::string> lines;
        for (const auto &request : daemon.requests) {
            const auto &payload = std::get<daemon::AnyCodable::Object>(request.payload.value().value);
            std::string line = request.method.value() + " " +
                               std::to_string(std::get<std::int64_t>(payload.at("slot_index").value));
            if (const auto content = payload.find("content"); content != payload.end())
                line += " " + std::get<std::string>(content->second.value);
            lines.push_back(std::move(line));
        }
        return lines;
    }
    /// The log without the lines of the tap's start.
    [[nodiscard]] std::vector<std::string> complaints() const
    {
        std::vector<std::string> lines = log.lines();
        std::erase(lines, "[ShortcutManager] Event tap started successfully");
        std::erase_if(lines, [](const std::string &line) { return line.starts_with("WebSocket error: "); });
        return lines;
    }

    VirtualClock clock;
    RecordingLog log;
    support::HandOver mainThread;
    FakeWebSocketTaskFactory sockets{clock};
    ScriptedDaemon daemon{sockets};
    daemon::DaemonConnector connector{sockets, clock, log};
    FakeEventTapFactory taps;
    FakeAccessibilityPermission permission;
    FakeKeySender keySender;
    FakePasteboard pasteboard{clock};
    FakeBeeper beeper;
    FakeUserDefaults userDefaults;
    std::unique_ptr<services::ShortcutManager> manager;

private:
    void settle()
    {
        do {
            mainThread.run();
            clock.advance(std::chrono::milliseconds::zero());
        } while (daemon.serve());
    }
};

} // namespace stavelin::testkit
