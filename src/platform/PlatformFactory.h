#pragma once

#include "platform/AccessibilityPermission.h"
#include "platform/Beeper.h"
#include "platform/EventTap.h"
#include "platform/FileSystem.h"
#include "platform/FloatingWindow.h"
#include "platform/KeySender.h"
#include "platform/ModifierRoles.h"
#include "platform/Pasteboard.h"
#include "platform/ProcessLauncher.h"
#include "platform/ProcessTable.h"
#include "platform/StandardPaths.h"
#include "platform/TerminationSignals.h"
#include "platform/UserDefaults.h"
#include "support/Clock.h"
#include "support/HandOver.h"
#include "support/Log.h"

#include <filesystem>
#include <memory>
#include <string_view>

namespace stavelin::platform {

/// What the desktop lets a program do with keys, windows and the pasteboard.
struct DesktopBackEnds
{
    std::unique_ptr<AccessibilityPermission> accessibilityPermission;
    std::unique_ptr<EventTapFactory> eventTapFactory;
    std::unique_ptr<KeySender> keySender;
    std::unique_ptr<Pasteboard> pasteboard;
    std::unique_ptr<FloatingWindow> floatingWindow;
};

/// The one place that knows which back-end serves which system and which desktop.
class PlatformFactory
{
public:
    /// To be called before anything else in the process: no core dumps, no end by a closed pipe.
    static void prepareProcess();

    static std::unique_ptr<TerminationSignals> makeTerminationSignals();
    /// In the event loop of the calling thread.
    static std::unique_ptr<support::Clock> makeClock();
    static std::unique_ptr<UserDefaults> makeUserDefaults();
    static std::unique_ptr<ProcessTable> makeProcessTable();
    static std::unique_ptr<ProcessLauncher> makeProcessLauncher();
    /// `executable` is the absolute path of this program.
    static std::unique_ptr<StandardPaths> makeStandardPaths(const std::filesystem::path &executable);
    static std::unique_ptr<FileSystem> makeFileSystem();
    static std::unique_ptr<Beeper> makeBeeper();

    /// `windowSystem` is the toolkit's name for what it draws on: "xcb" is X11. On every other the shortcuts
    /// are unavailable, and the back-ends say so. `mainThread` and `log` outlive what is made.
    static DesktopBackEnds makeDesktopBackEnds(std::string_view windowSystem, ModifierRoles roles,
                                               support::HandOver &mainThread, support::Log &log);
};

/// Which keys play Control and Command, as the user chose under "modifierRoles": "literal", else by use.
[[nodiscard]] ModifierRoles modifierRoles(const UserDefaults &userDefaults);

} // namespace stavelin::platform
