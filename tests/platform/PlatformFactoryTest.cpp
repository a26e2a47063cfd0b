#include "platform/PlatformFactory.h"

#include "testkit/FakeUserDefaults.h"
#include "testkit/RecordingLog.h"

#include <gtest/gtest.h>

namespace stavelin::platform {

namespace {

class NoClient final : public TapClient
{
public:
    TapVerdict handle(const TapEvent &) override { return TapVerdict::passThrough; }
    [[nodiscard]] bool isWaitingForDigit() const override { return false; }
    [[nodiscard]] bool isGesture(const TapEvent &) const override { return false; }
};

class WithoutX11 : public testing::Test
{
protected:
    support::HandOver mainThread;
    testkit::RecordingLog log;
    DesktopBackEnds desktop =
        PlatformFactory::makeDesktopBackEnds("wayland-egl", ModifierRoles::byUse, mainThread, log);
};

} // namespace

TEST_F(WithoutX11, thePermissionIsMissingAndTheReasonIsSaid)
{
    EXPECT_FALSE(desktop.accessibilityPermission->isTrusted(false));
    EXPECT_EQ(desktop.accessibilityPermission->reason(), "global shortcuts do not work in a Wayland session");
}

TEST_F(WithoutX11, noTapIsInstalledAndTheReasonIsSaid)
{
    NoClient client;
    const auto tap = desktop.eventTapFactory->createTap(client);
    ASSERT_FALSE(tap.has_value());
    EXPECT_EQ(tap.error().description, "global shortcuts do not work in a Wayland session");
}

TEST_F(WithoutX11, keysAreNotSentAndTheLogSaysItOnce)
{
    desktop.keySender->simulateKeyPress(9);
    desktop.keySender->simulateKeyPress(9);
    EXPECT_EQ(log.lines(), (std::vector<std::string>{
                               "Keys cannot be sent to other programs: global shortcuts do not work in a "
                               "Wayland session"}));
}

TEST_F(WithoutX11, thePasteboardHasNoTextAndAnswersLaterOnTheMainThread)
{
    int answers = 0;
    const auto count = [&answers](const std::optional<std::string> &text) {
        EXPECT_EQ(text, std::nullopt);
        ++answers;
    };
    desktop.pasteboard->readString(0, count);
    desktop.pasteboard->readString(0, count);
    EXPECT_EQ(answers, 0);
    mainThread.run();
    EXPECT_EQ(answers, 2);
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST_F(WithoutX11, thePasteboardAnswersNobodyOnceItHasGone)
{
    int answers = 0;
    desktop.pasteboard->readString(0, [&answers](const auto &) { ++answers; });
    desktop.pasteboard.reset();
    mainThread.run();
    EXPECT_EQ(answers, 0);
}

TEST(PlatformFactory, onlyTheWordLiteralChoosesTheLiteralMapping)
{
    testkit::FakeUserDefaults userDefaults;
    EXPECT_EQ(modifierRoles(userDefaults), ModifierRoles::byUse);
    userDefaults.setString("modifierRoles", "Literal");
    EXPECT_EQ(modifierRoles(userDefaults), ModifierRoles::byUse);
    userDefaults.setString("modifierRoles", "literal");
    EXPECT_EQ(modifierRoles(userDefaults), ModifierRoles::literal);
}

} // namespace stavelin::platform
