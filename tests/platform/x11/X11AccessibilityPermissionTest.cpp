#include "platform/x11/X11AccessibilityPermission.h"
#include "platform/x11/X11Connection.h"
#include "testkit/NestedX.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace stavelin::platform::x11 {

namespace {

class X11AccessibilityPermissionTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ::setenv("DISPLAY", screen.innerDisplay().c_str(), 1);
        ::unsetenv("WAYLAND_DISPLAY");
        ::unsetenv("XDG_SESSION_TYPE");
    }
    void TearDown() override
    {
        ::unsetenv("WAYLAND_DISPLAY");
        ::unsetenv("XDG_SESSION_TYPE");
    }
    xcb_atom_t atom(const std::string &name)
    {
        const auto asked =
            xcb_intern_atom(connection->get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
        return ReplyPointer<xcb_intern_atom_reply_t>(xcb_intern_atom_reply(connection->get(), asked, nullptr))
            ->atom;
    }
    /// Says who the window manager is, as window managers do.
    void nameWindowManager(const std::string &name)
    {
        connection = std::move(X11Connection::open().value());
        const xcb_window_t window = xcb_generate_id(connection->get());
        xcb_create_window(connection->get(), XCB_COPY_FROM_PARENT, window, connection->root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_change_property(connection->get(), XCB_PROP_MODE_REPLACE, connection->root(),
                            atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 32, 1, &window);
        xcb_change_property(connection->get(), XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_NAME"),
                            atom("UTF8_STRING"), 8, static_cast<std::uint32_t>(name.size()), name.data());
        connection->roundTrip();
    }

    testkit::NestedX screen{100, 100};
    std::unique_ptr<X11Connection> connection;
    X11AccessibilityPermission permission{ModifierRoles::byUse};
};

TEST_F(X11AccessibilityPermissionTest, anOrdinaryX11SessionIsTrustedAndHasNoReason)
{
    EXPECT_TRUE(permission.isTrusted(false));
    EXPECT_TRUE(permission.isTrusted(true));
    EXPECT_EQ(permission.reason(), "");
    nameWindowManager("Openbox");
    EXPECT_TRUE(permission.isTrusted(false));
}

TEST_F(X11AccessibilityPermissionTest, aWaylandSessionIsNot)
{
    ::setenv("XDG_SESSION_TYPE", "wayland", 1);
    EXPECT_FALSE(permission.isTrusted(false));
    EXPECT_EQ(permission.reason(), "this is a Wayland session, which shows no program the keys of others");
    ::unsetenv("XDG_SESSION_TYPE");
    ::setenv("WAYLAND_DISPLAY", "wayland-0", 1);
    EXPECT_FALSE(permission.isTrusted(false));
}

TEST_F(X11AccessibilityPermissionTest, aDesktopThatKeepsSuperIsTrustedWithTheLiteralMappingOnly)
{
    X11AccessibilityPermission literal(ModifierRoles::literal);
    for (const char *name : {"GNOME Shell", "Mutter", "Mutter (Muffin)"}) {
        nameWindowManager(name);
        EXPECT_FALSE(permission.isTrusted(false)) << name;
        EXPECT_NE(permission.reason(), "") << name;
        EXPECT_TRUE(literal.isTrusted(false)) << name;
    }
}

TEST_F(X11AccessibilityPermissionTest, withoutADisplayItIsNotTrusted)
{
    ::unsetenv("DISPLAY");
    EXPECT_FALSE(permission.isTrusted(false));
    EXPECT_EQ(permission.reason(), "there is no X display (DISPLAY is not set)");
}

} // namespace

} // namespace stavelin::platform::x11
