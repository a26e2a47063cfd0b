#pragma once

#include "app/AppDelegate.h"
#include "support/HandOver.h"
#include "testkit/FakeAccessibilityPermission.h"
#include "testkit/FakeBeeper.h"
#include "testkit/FakeFileSystem.h"
#include "testkit/FakeFloatingWindow.h"
#include "testkit/FakeKeySender.h"
#include "testkit/FakePasteboard.h"
#include "testkit/FakeStandardPaths.h"
#include "testkit/FakeUserDefaults.h"
#include "testkit/RecordingLog.h"
#include "testkit/VirtualClock.h"

#include <memory>
#include <string>
#include <vector>

namespace stavelin::testkit {

/// The whole program over back-ends that do nothing but write down, in one list, what is asked of them.
class LaunchDesk
{
public:
    using Diary = std::vector<std::string>;

    LaunchDesk()
    {
        paths.auxiliaryFolder = "/opt";
        files.executables.insert("/opt/stavelin-daemon");
        permission.trusted = true;
        floatingWindow.onPrepare = [this] { diary.emplace_back("panel shown"); };
    }

    [[nodiscard]] app::AppDelegate::Makers makers()
    {
        return {
            .statusItem = [this](app::StatusItem::Actions actions) -> std::unique_ptr<app::StatusItem> {
                diary.emplace_back("status item made");
                statusItemActions = std::move(actions);
                return std::make_unique<app::StatusItem>();
            },
            .panelController =
                [this] {
                    auto made = std::make_unique<views::FloatingPanelController>(content, floatingWindow,
                                                                                 userDefaults, clock, log);
                    panelController = made.get();
                    return made;
                },
        };
    }
    [[nodiscard]] QQuickView *panel() const { return panelController->panel(); }

    Diary diary;
    app::StatusItem::Actions statusItemActions;
    views::FloatingPanelController *panelController = nullptr; ///< the delegate's

private:
    class Processes final : public platform::ProcessTable
    {
    public:
        explicit Processes(LaunchDesk &desk) : m_desk(desk) {}
        [[nodiscard]] bool isProcessRunning(std::string_view) override
        {
            m_desk.diary.emplace_back("daemon looked for");
            return m_desk.daemonRuns;
        }

    private:
        LaunchDesk &m_desk;
    };
    class Launcher final : public platform::ProcessLauncher
    {
    public:
        explicit Launcher(LaunchDesk &desk) : m_desk(desk) {}
        [[nodiscard]] std::expected<int, platform::LaunchError>
        launch(const platform::LaunchRequest &request) override
        {
            m_desk.diary.push_back("launched " + request.executable.string());
            return 1001;
        }

    private:
        LaunchDesk &m_desk;
    };
    class Socket final : public daemon::WebSocketTask
    {
    public:
        explicit Socket(LaunchDesk &desk) : m_desk(desk) {}
        void resume() override { m_desk.diary.emplace_back("connecting"); }
        void send(std::string, SendCompletion) override {}
        void receive(ReceiveCompletion) override {}
        void cancel(int closeCode) override
        {
            m_desk.diary.push_back("disconnected with " + std::to_string(closeCode));
        }

    private:
        LaunchDesk &m_desk;
    };
    class Sockets final : public daemon::WebSocketTaskFactory
    {
    public:
        explicit Sockets(LaunchDesk &desk) : m_desk(desk) {}
        [[nodiscard]] std::unique_ptr<daemon::WebSocketTask> makeTask(const std::string &) override
        {
            return std::make_unique<Socket>(m_desk);
        }

    private:
        LaunchDesk &m_desk;
    };
    class Tap final : public platform::EventTap
    {
    public:
        explicit Tap(LaunchDesk &desk) : m_desk(desk) {}
        ~Tap() override
        {
            m_desk.diary.emplace_back("tap removed");
            m_desk.tapClient = nullptr;
        }
        Tap(const Tap &) = delete;
        Tap &operator=(const Tap &) = delete;
        void waitingChanged() override {}
        [[nodiscard]] std::vector<platform::TapConflict> conflicts() const override
        {
            return m_desk.conflicts;
        }

    private:
        LaunchDesk &m_desk;
    };
    class Taps final : public platform::EventTapFactory
    {
    public:
        explicit Taps(LaunchDesk &desk) : m_desk(desk) {}
        [[nodiscard]] std::expected<std::unique_ptr<platform::EventTap>, platform::TapError>
        createTap(platform::TapClient &client) override
        {
            if (m_desk.refusesTap)
                return std::unexpected(platform::TapError{"the test refuses"});
            m_desk.diary.emplace_back("tap installed");
            m_desk.tapClient = &client;
            return std::make_unique<Tap>(m_desk);
        }

    private:
        LaunchDesk &m_desk;
    };

public:
    bool daemonRuns = false;
    bool refusesTap = false;
    bool hasQuit = false;
    std::vector<platform::TapConflict> conflicts;
    platform::TapClient *tapClient = nullptr;

    VirtualClock clock;
    RecordingLog log;
    support::HandOver mainThread;
    FakeUserDefaults userDefaults;
    FakeStandardPaths paths;
    FakeFileSystem files;
    FakeAccessibilityPermission permission;
    FakeFloatingWindow floatingWindow;
    FakeKeySender keySender;
    FakePasteboard pasteboard{clock};
    FakeBeeper beeper;
    Processes processes{*this};
    Launcher launcher{*this};
    Sockets sockets{*this};
    Taps taps{*this};
    daemon::DaemonLifecycleManager lifecycle{processes, launcher, paths, files, log};
    daemon::DaemonConnector connector{sockets, clock, log};
    services::ShortcutManager shortcuts{connector, taps,         permission, keySender,  pasteboard,
                                        beeper,    userDefaults, clock,      mainThread, log};
    views::PanelContent content{connector, clock, platform::ModifierRoles::byUse};
    app::AppDelegate delegate{
        makers(), [this] { hasQuit = true; }, content, lifecycle, connector, shortcuts, permission, clock};
};

} // namespace stavelin::testkit
