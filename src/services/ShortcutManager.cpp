#include "services/ShortcutManager.h"

#include "daemon/link/DaemonConnector.h"
#include "platform/AccessibilityPermission.h"
#include "platform/Beeper.h"
#include "platform/KeySender.h"
#include "platform/KeyVocabulary.h"
#include "platform/Pasteboard.h"
#include "platform/UserDefaults.h"
#include "services/PasteFlow.h"
#include "support/Completion.h"
#include "support/HandOver.h"
#include "support/Log.h"
#include "support/SharedInstance.h"
#include "support/Sleep.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace stavelin::services {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view nextSlotIndexKey = "nextSlotIndex";

/// The time that a person has for the digit.
constexpr auto pasteFlowTime = 2s;
/// Between the text's arrival on the pasteboard and the synthesized paste.
constexpr auto pauseBeforePaste = 50ms;
/// The time that the application in front has to answer a synthesized copy.
constexpr auto pauseAfterCopy = 100ms;
/// A person needs a moment to answer the system's prompt, and the system another to hear it.
constexpr auto pauseBeforePermissionCheck = 500ms;

int persistedSlotIndex(const platform::UserDefaults &userDefaults)
{
    const std::int64_t persisted = userDefaults.integer(nextSlotIndexKey);
    return persisted >= 1 && persisted <= 9 ? static_cast<int>(persisted) : 1;
}

} // namespace

ShortcutManager::ShortcutManager(daemon::DaemonConnector &connector, platform::EventTapFactory &eventTaps,
                                 platform::AccessibilityPermission &permission,
                                 platform::KeySender &keySender, platform::Pasteboard &pasteboard,
                                 platform::Beeper &beeper, platform::UserDefaults &userDefaults,
                                 support::Clock &clock, support::HandOver &mainThread, support::Log &log)
    : m_connector(connector), m_eventTaps(eventTaps), m_permission(permission), m_keySender(keySender),
      m_pasteboard(pasteboard), m_beeper(beeper), m_userDefaults(userDefaults), m_clock(clock),
      m_mainThread(mainThread), m_log(log), m_nextSlotIndex(persistedSlotIndex(userDefaults)),
      m_self(std::make_shared<ShortcutManager *>(this))
{
    m_hasAccessibilityPermission = m_permission.isTrusted(false);
}

ShortcutManager::~ShortcutManager()
{
    m_eventTap.reset(); // from here on no other thread calls
    m_pasteFlowTimeout.cancel();
}

ShortcutManager &ShortcutManager::shared()
{
    return support::SharedInstance<ShortcutManager>::get();
}

void ShortcutManager::setPasteFlowState(PasteFlowState state)
{
    m_pasteFlowState = state;
    Q_EMIT pasteFlowStateChanged();
}

void ShortcutManager::setHasAccessibilityPermission(bool granted)
{
    m_hasAccessibilityPermission = granted;
    Q_EMIT hasAccessibilityPermissionChanged();
}

void ShortcutManager::setEventTapRunning(bool running)
{
    m_eventTapRunning = running;
    Q_EMIT eventTapRunningChanged();
}

void ShortcutManager::setNextSlotIndex(int slotIndex)
{
    m_nextSlotIndex = slotIndex;
    Q_EMIT nextSlotIndexChanged();
    // Read back: an observer may have assigned another value just now, and that is the one to keep.
    m_userDefaults.setInteger(nextSlotIndexKey, nextSlotIndex());
}

void ShortcutManager::startEventTap()
{
    if (!m_hasAccessibilityPermission) {
        m_log.line("[ShortcutManager] Cannot start event tap: no accessibility permission");
        return;
    }
    if (m_eventTap) {
        m_log.line("[ShortcutManager] Event tap already running");
        return;
    }
    auto tap = m_eventTaps.createTap(*this);
    if (!tap) {
        m_log.line("[ShortcutManager] Failed to create event tap - check accessibility permissions");
        return;
    }
    m_eventTap = std::move(*tap);
    setEventTapRunning(true);
    m_log.line("[ShortcutManager] Event tap started successfully");
}

void ShortcutManager::stopEventTap()
{
    m_eventTap.reset();
    setEventTapRunning(false);
    m_log.line("[ShortcutManager] Event tap stopped");
}

std::vector<platform::TapConflict> ShortcutManager::conflicts() const
{
    if (!m_eventTap)
        return {};
    return m_eventTap->conflicts();
}

QCoro::Task<> ShortcutManager::checkAccessibilityPermission()
{
    const QPointer<ShortcutManager> self(this);
    support::SleepAwaiter pause = support::sleep(m_clock, pauseBeforePermissionCheck);
    co_await pause;
    if (self)
        setHasAccessibilityPermission(m_permission.isTrusted(false));
}

platform::TapVerdict ShortcutManager::handle(const platform::TapEvent &event)
{
    const GestureDecision decision = decide(event, m_isWaitingForDigit.get());
    // Before the main thread hears of it, so that the key that follows at once is judged right.
    if (decision.waiting)
        m_isWaitingForDigit.set(*decision.waiting);
    if (decision.action != GestureAction::none) {
        m_mainThread.post([weak = std::weak_ptr(m_self), decision] {
            if (const auto manager = weak.lock())
                (*manager)->perform(decision);
        });
    }
    return decision.verdict;
}

bool ShortcutManager::isGesture(const platform::TapEvent &event) const
{
    return decide(event, false).verdict == platform::TapVerdict::swallow;
}

void ShortcutManager::perform(const GestureDecision &decision)
{
    switch (decision.action) {
    case GestureAction::none:
        break;
    case GestureAction::startPasteFlow:
        startPasteFlow();
        break;
    case GestureAction::resetPasteFlow:
        // The tap has cleared the flag already. When it is set again, a newer gesture's start stands behind
        // this task in the queue, and the flag belongs to it.
        if (m_isWaitingForDigit.get())
            endPasteFlow();
        else
            resetPasteFlow();
        break;
    case GestureAction::pasteFromSlot:
        pasteFromSlot(decision.slotIndex);
        break;
    case GestureAction::autoSaveClipboardToSlot:
        autoSaveClipboardToSlot();
        break;
    case GestureAction::togglePanel:
        togglePanel();
        break;
    }
}

void ShortcutManager::togglePanel()
{
    if (m_panelController)
        m_panelController->togglePanel();
}

void ShortcutManager::endPasteFlow()
{
    setPasteFlowState(PasteFlowState::idle);
    m_pasteFlowTimeout.cancel();
    m_pasteFlowTimeout = {};
}

void ShortcutManager::startPasteFlow()
{
    setPasteFlowState(PasteFlowState::waitingForDigit);
    m_pasteFlowTimeout.cancel();
    m_pasteFlowTimeout = m_clock.after(pasteFlowTime, [this] { // cancelled before `this` goes
        if (m_pasteFlowState == PasteFlowState::waitingForDigit)
            resetPasteFlow();
    });
}

void ShortcutManager::resetPasteFlow()
{
    m_isWaitingForDigit.set(false);
    if (m_eventTap)
        m_eventTap->waitingChanged();
    endPasteFlow();
}

QCoro::Task<> ShortcutManager::pasteFromSlot(int slotIndex)
{
    const QPointer<ShortcutManager> self(this);
    endPasteFlow();

    auto request = m_connector.pasteSlot(slotIndex);
    const auto pasted = co_await request;
    if (!self)
        co_return;
    if (!pasted) {
        m_log.line("[ShortcutManager] Paste failed: " + daemon::description(pasted.error()));
        m_beeper.beep();
        co_return;
    }

    support::SleepAwaiter pause = support::sleep(m_clock, pauseBeforePaste);
    co_await pause;
    if (self)
        m_keySender.simulateKeyPress(platform::keys::v);
}

QCoro::Task<> ShortcutManager::autoSaveClipboardToSlot()
{
    const QPointer<ShortcutManager> self(this);
    const std::uint64_t countBeforeCopy = m_pasteboard.changeCount();
    m_keySender.simulateKeyPress(platform::keys::c);

    support::SleepAwaiter pause = support::sleep(m_clock, pauseAfterCopy);
    co_await pause;
    if (!self)
        co_return;

    support::Completion<std::optional<std::string>> reading;
    m_pasteboard.readString(
        countBeforeCopy, [reading](std::optional<std::string> text) { reading.complete(std::move(text)); });
    std::optional<std::string> text = co_await reading;
    if (!self || !text || text->empty())
        co_return;

    const std::string_view failure = "[ShortcutManager] Auto-save to slot failed: ";
    if (text->size() > platform::Pasteboard::maximumTextSize) {
        m_log.line(std::string(failure) + "the text is longer than a slot can hold");
        m_beeper.beep();
        co_return;
    }

    auto request = m_connector.setSlot(slotIndexToSaveTo(), std::move(*text));
    const auto saved = co_await request;
    if (!self)
        co_return;
    if (!saved) {
        m_log.line(std::string(failure) + daemon::description(saved.error()));
        co_return;
    }
    // Also when the text went into an empty slot: the cycle moves with every copy.
    setNextSlotIndex(slotIndexAfter(m_nextSlotIndex));
}

std::int64_t ShortcutManager::slotIndexToSaveTo() const
{
    const auto &slots = m_connector.clipboardSlots();
    const auto empty = std::ranges::find_if(slots, [](const auto &slot) { return slot.content.empty(); });
    return empty == slots.end() ? m_nextSlotIndex : empty->slotIndex;
}

} // namespace stavelin::services
