#include "platform/x11/X11ExpectedKeys.h"

#include <gtest/gtest.h>

namespace stavelin::platform::x11 {

TEST(X11ExpectedKeys, anAnnouncementIsGoodForOnePressAndOneRawPress)
{
    X11ExpectedKeys keys;
    EXPECT_FALSE(keys.takePress(55, 4));
    keys.announce(55, 4);
    EXPECT_TRUE(keys.takePress(55, 4));
    EXPECT_FALSE(keys.takePress(55, 4));
    EXPECT_TRUE(keys.takeRawPress(55));
    EXPECT_FALSE(keys.takeRawPress(55));
}

TEST(X11ExpectedKeys, anotherKeyAndOtherModifiersAreTheUsersOwn)
{
    X11ExpectedKeys keys;
    keys.announce(55, 4);
    EXPECT_FALSE(keys.takePress(55, 64));
    EXPECT_FALSE(keys.takePress(54, 4));
    EXPECT_FALSE(keys.takeRawPress(54));
    EXPECT_TRUE(keys.takePress(55, 4));
}

TEST(X11ExpectedKeys, aNewSendForgetsWhatWasAnnouncedBefore)
{
    X11ExpectedKeys keys;
    keys.announce(55, 4);
    keys.begin();
    EXPECT_FALSE(keys.takePress(55, 4));
    EXPECT_FALSE(keys.takeRawPress(55));
}

} // namespace stavelin::platform::x11
