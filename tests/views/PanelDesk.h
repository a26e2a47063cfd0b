#pragma once

#include "daemon/WireEncoder.h"
#include "daemon/link/DaemonConnector.h"
#include "testkit/FakeFloatingWindow.h"
#include "testkit/FakeUserDefaults.h"
#include "testkit/FakeWebSocketTask.h"
#include "testkit/RecordingLog.h"
#include "testkit/VirtualClock.h"
#include "views/FloatingPanelController.h"
#include "views/PanelContent.h"

#include <memory>
#include <string>
#include <vector>

namespace stavelin::testkit {

/// A panel with everything it needs, and a daemon behind it that the test plays.
class PanelDesk
{
public:
    PanelDesk() { restart(); }

    /// Ends the panel and begins with a new one, as a restart of the program does.
    void restart()
    {
        controller.reset();
        controller = std::make_unique<views::FloatingPanelController>(content, floatingWindow, userDefaults,
                                                                      clock, log);
    }

    /// Connects, with these texts in slots 1 and up, as many as there are.
    void connectWith(const std::vector<std::string> &texts)
    {
        connector.connect();
        push(texts);
    }
    void push(const std::vector<std::string> &texts)
    {
        daemon::StatePayload state;
        for (const std::string &text : texts) {
            const auto slotIndex = static_cast<std::int64_t>(state.clipboard_slots.size()) + 1;
            state.clipboard_slots.push_back(
                {.slot_index = slotIndex, .content = text, .updated_at = "2024-05-01T10:00:00Z"});
        }
        sockets.last().deliverText(daemon::encodeStateEvent("state", state).value());
    }
    void loseConnection() { sockets.last().failReceive("the test cuts the line"); }

    VirtualClock clock;
    RecordingLog log;
    FakeUserDefaults userDefaults;
    FakeFloatingWindow floatingWindow;
    FakeWebSocketTaskFactory sockets{clock};
    daemon::DaemonConnector connector{sockets, clock, log};
    views::PanelContent content{connector, clock, platform::ModifierRoles::byUse};
    std::unique_ptr<views::FloatingPanelController> controller;
};

} // namespace stavelin::testkit
