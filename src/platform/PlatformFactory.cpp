#include "platform/PlatformFactory.h"

#include "platform/linux/PosixFileSystem.h"
#include "platform/linux/PosixProcessLauncher.h"
#include "platform/linux/PosixTerminationSignals.h"
#include "platform/linux/ProcProcessTable.h"
#include "platform/linux/ProcessPreparation.h"
#include "platform/linux/XdgStandardPaths.h"
#include "platform/qt/ApplicationBeeper.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/SettingsUserDefaults.h"
#include "platform/unavailable/UnavailableAccessibilityPermission.h"
#include "platform/unavailable/UnavailableEventTapFactory.h"
#include "platform/unavailable/UnavailableFloatingWindow.h"
#include "platform/unavailable/UnavailableKeySender.h"
#include "platform/unavailable/UnavailablePasteboard.h"
#include "platform/x11/X11AccessibilityPermission.h"
#include "platform/x11/X11EventTapFactory.h"
#include "platform/x11/X11ExpectedKeys.h"
#include "platform/x11/X11KeySender.h"
#include "platform/x11/X11Pasteboard.h"
#include "platform/x11window/X11FloatingWindow.h"

#include <string>

namespace stavelin::platform {

namespace {

DesktopBackEnds makeX11BackEnds(ModifierRoles roles, support::HandOver &mainThread, support::Log &log)
{
    // The tap must let through what the sender types.
    const auto expectedKeys = std::make_shared<x11::X11ExpectedKeys>();
    return {
        .accessibilityPermission = std::make_unique<x11::X11AccessibilityPermission>(roles),
        .eventTapFactory = std::make_unique<x11::X11EventTapFactory>(log, roles, expectedKeys),
        .keySender = std::make_unique<x11::X11KeySender>(log, expectedKeys),
        .pasteboard = std::make_unique<x11::X11Pasteboard>(mainThread, log),
        .floatingWindow = std::make_unique<x11window::X11FloatingWindow>(),
    };
}

DesktopBackEnds makeUnavailableBackEnds(const std::string &reason, support::HandOver &mainThread,
                                        support::Log &log)
{
    return {
        .accessibilityPermission = std::make_unique<unavailable::UnavailableAccessibilityPermission>(reason),
        .eventTapFactory = std::make_unique<unavailable::UnavailableEventTapFactory>(reason),
        .keySender = std::make_unique<unavailable::UnavailableKeySender>(log, reason),
        .pasteboard = std::make_unique<unavailable::UnavailablePasteboard>(mainThread, log, reason),
        .floatingWindow = std::make_unique<unavailable::UnavailableFloatingWindow>(),
    };
}

} // namespace

void PlatformFactory::prepareProcess()
{
    platform::prepareProcess();
}

std::unique_ptr<TerminationSignals> PlatformFactory::makeTerminationSignals()
{
    return std::make_unique<PosixTerminationSignals>();
}

std::unique_ptr<support::Clock> PlatformFactory::makeClock()
{
    return std::make_unique<qt::QtClock>();
}

std::unique_ptr<UserDefaults> PlatformFactory::makeUserDefaults()
{
    return std::make_unique<qt::SettingsUserDefaults>();
}

std::unique_ptr<ProcessTable> PlatformFactory::makeProcessTable()
{
    return std::make_unique<ProcProcessTable>();
}

std::unique_ptr<ProcessLauncher> PlatformFactory::makeProcessLauncher()
{
    return std::make_unique<PosixProcessLauncher>();
}

std::unique_ptr<StandardPaths> PlatformFactory::makeStandardPaths(const std::filesystem::path &executable)
{
    return std::make_unique<XdgStandardPaths>(executable);
}

std::unique_ptr<FileSystem> PlatformFactory::makeFileSystem()
{
    return std::make_unique<PosixFileSystem>();
}

std::unique_ptr<Beeper> PlatformFactory::makeBeeper()
{
    return std::make_unique<qt::ApplicationBeeper>();
}

DesktopBackEnds PlatformFactory::makeDesktopBackEnds(std::string_view windowSystem, ModifierRoles roles,
                                                     support::HandOver &mainThread, support::Log &log)
{
    if (windowSystem == "xcb")
        return makeX11BackEnds(roles, mainThread, log);
    const std::string reason = windowSystem.starts_with("wayland")
                                   ? "global shortcuts do not work in a Wayland session"
                                   : "global shortcuts need an X11 session";
    return makeUnavailableBackEnds(reason, mainThread, log);
}

ModifierRoles modifierRoles(const UserDefaults &userDefaults)
{
    return userDefaults.string("modifierRoles") == "literal" ? ModifierRoles::literal : ModifierRoles::byUse;
}

} // namespace stavelin::platform
