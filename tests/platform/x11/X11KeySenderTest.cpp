#include "KeyboardDesktop.h"
#include "TextOwner.h"

#include "platform/x11/X11KeySender.h"
#include "platform/x11/selection/SelectionReader.h"

#include <algorithm>

namespace stavelin::platform::x11 {

namespace {

using Strings = std::vector<std::string>;
using Keys = std::vector<int>;
using testkit::SeenKey;

constexpr int super = keycode::leftSuper, control = keycode::leftControl, shift = keycode::leftShift;
constexpr std::uint8_t insert = 118;
constexpr std::uint16_t shiftMask = 1, controlMask = 4;

class X11KeySenderTest : public KeyboardDesktop
{
protected:
    void start(const std::string &windowClass = "witness")
    {
        showApplication(windowClass);
        sender.emplace(log, expectedKeys);
    }
    /// The events up to the release of this key, which the sender sends.
    std::vector<SeenKey> sent(std::int64_t keyCode, std::uint8_t key)
    {
        sender->simulateKeyPress(keyCode);
        return application->keysUntilReleaseOf(key);
    }
    static std::optional<SeenKey> pressOf(std::uint8_t key, const std::vector<SeenKey> &keys)
    {
        const auto found = std::ranges::find_if(
            keys, [&](const SeenKey &seenKey) { return seenKey.isPress && seenKey.keycode == key; });
        return found == keys.end() ? std::nullopt : std::optional(*found);
    }
    void waitUntilNothingIsDown()
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(8);
        while (!application->keysDown().empty() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        EXPECT_TRUE(application->keysDown().empty());
    }
    static std::optional<std::string> textOf(const std::string &selectionName)
    {
        const auto connection = X11Connection::open().value();
        selection::SelectionReader reader(connection->get(), connection->screen());
        return reader.read(selectionName, 1000).value_or(std::nullopt);
    }

    std::optional<X11KeySender> sender;
};

TEST_F(X11KeySenderTest, aPasteIsControlV)
{
    start();
    EXPECT_EQ(sent(keys::v, keycode::leftControl),
              (std::vector<SeenKey>{{true, keycode::leftControl, 0},
                                    {true, keycode::v, controlMask},
                                    {false, keycode::v, controlMask},
                                    {false, keycode::leftControl, controlMask}}));
    EXPECT_TRUE(application->keysDown().empty());
}

TEST_F(X11KeySenderTest, aHeldSuperDoesNotLeakIntoTheChordAndIsDownAgainAfterIt)
{
    start();
    user.press(keycode::leftSuper);
    for (int round = 0; round < 3; ++round) {
        const auto keys = sent(keys::v, keycode::leftControl);
        EXPECT_EQ(pressOf(keycode::v, keys), (SeenKey{true, keycode::v, controlMask})) << round;
        EXPECT_EQ(application->keysDown(), std::vector<std::uint8_t>{keycode::leftSuper});
    }
    user.release(keycode::leftSuper);
    waitUntilNothingIsDown();
    user.tap(keycode::v);
    const auto plain = application->keysUntilReleaseOf(keycode::v);
    EXPECT_EQ(pressOf(keycode::v, plain), (SeenKey{true, keycode::v, 0}));
}

TEST_F(X11KeySenderTest, controlGoesDownBeforeSuperComesUpSoThatNoSuperTapIsSeen)
{
    start();
    user.press(keycode::leftSuper);
    Keys order;
    for (const SeenKey &key : sent(keys::c, keycode::leftControl))
        order.push_back(key.isPress ? key.keycode : -key.keycode);
    EXPECT_EQ(order, (Keys{super, control, -super, keycode::c, -keycode::c, super, -control}));
    user.release(keycode::leftSuper);
    waitUntilNothingIsDown();
}

TEST_F(X11KeySenderTest, noKeySticksWhenTheUserLetsGoDuringTheSend)
{
    start();
    for (int round = 0; round < 30; ++round) {
        user.press(keycode::leftSuper);
        sender->simulateKeyPress(keys::v);
        for (int i = 0; i < round * 20; ++i)
            std::this_thread::yield();
        user.release(keycode::leftSuper);
        const auto keys = application->keysUntilReleaseOf(keycode::leftControl);
        EXPECT_EQ(pressOf(keycode::v, keys), (SeenKey{true, keycode::v, controlMask})) << round;
        waitUntilNothingIsDown();
        application->forget();
    }
}

TEST_F(X11KeySenderTest, controlAndTheLetterThatTheUserHoldsAreUsedAsTheyAre)
{
    start();
    user.press(keycode::leftControl);
    user.press(keycode::v);
    application->forget();
    const auto keys = sent(keys::v, keycode::v);
    user.release(keycode::v);
    user.release(keycode::leftControl);
    const auto rest = application->keysUntilReleaseOf(keycode::leftControl);
    EXPECT_EQ(pressOf(keycode::v, rest), (SeenKey{true, keycode::v, controlMask}));
    EXPECT_EQ(keys, (std::vector<SeenKey>{{false, keycode::v, controlMask}}));
    waitUntilNothingIsDown();
}

TEST_F(X11KeySenderTest, lockKeysStayAsTheyAre)
{
    start();
    user.tap(keycode::capsLock);
    user.press(keycode::leftSuper);
    const auto keys = sent(keys::v, keycode::leftControl);
    EXPECT_EQ(pressOf(keycode::v, keys), (SeenKey{true, keycode::v, controlMask | 2}));
    user.release(keycode::leftSuper);
    waitUntilNothingIsDown();
}

TEST_F(X11KeySenderTest, terminalsGetTheirOwnChords)
{
    start("Alacritty");
    user.press(keycode::leftSuper);
    const auto paste = sent(keys::v, keycode::leftControl);
    EXPECT_EQ(pressOf(keycode::v, paste), (SeenKey{true, keycode::v, controlMask | shiftMask}));
    user.release(keycode::leftSuper);
    waitUntilNothingIsDown();
    application->forget();
    const auto copy = sent(keys::c, keycode::leftControl);
    EXPECT_EQ(pressOf(keycode::c, copy), (SeenKey{true, keycode::c, controlMask | shiftMask}));
}

TEST_F(X11KeySenderTest, aTerminalThatPastesPrimaryGetsTheClipboardThereAndShiftInsert)
{
    start("XTerm");
    const TextOwner clipboard("CLIPBOARD", "to be pasted");
    user.press(keycode::leftSuper);
    const auto keys = sent(keys::v, insert);
    EXPECT_EQ(pressOf(insert, keys), (SeenKey{true, insert, shiftMask}));
    EXPECT_EQ(textOf("PRIMARY"), "to be pasted");
    user.release(keycode::leftSuper);
    waitUntilNothingIsDown();
}

TEST_F(X11KeySenderTest, copyingInATerminalThatCopiesBySelectingSendsNoKeyAndTakesTheClipboard)
{
    start("XTerm");
    const TextOwner primary("PRIMARY", "selected there");
    sender->simulateKeyPress(keys::c);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(8);
    while (textOf("CLIPBOARD") != "selected there" && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    EXPECT_EQ(textOf("CLIPBOARD"), "selected there");
    EXPECT_EQ(seen(), Keys{});
}

TEST_F(X11KeySenderTest, theLetterIsTheOneOfTheLayoutInUse)
{
    start();
    run("setxkbmap dvorak");
    constexpr std::uint8_t dvorakV = 60; // where the full stop is elsewhere
    const auto keys = sent(keys::v, keycode::leftControl);
    EXPECT_EQ(pressOf(dvorakV, keys), (SeenKey{true, dvorakV, controlMask}));
    application->forget();
    run("setxkbmap us,ru");
    const auto again = sent(keys::v, keycode::leftControl);
    EXPECT_EQ(pressOf(keycode::v, again), (SeenKey{true, keycode::v, controlMask}));
}

TEST_F(X11KeySenderTest, theWholeGestureWithTheTapInBetween)
{
    start();
    startTap();
    user.press(keycode::leftSuper);
    user.press(keycode::c);
    ASSERT_EQ(client.started(1), Strings{"save"});
    const auto copy = sent(keys::c, keycode::leftControl);
    EXPECT_EQ(pressOf(keycode::c, copy), (SeenKey{true, keycode::c, controlMask}));
    user.release(keycode::c);
    user.press(keycode::v);
    user.release(keycode::v);
    user.press(keycode::digit3);
    ASSERT_EQ(client.started(3), (Strings{"save", "paste?", "slot 3"}));
    const auto paste = sent(keys::v, keycode::leftControl);
    EXPECT_EQ(pressOf(keycode::v, paste), (SeenKey{true, keycode::v, controlMask}));
    user.release(keycode::digit3);
    user.release(keycode::leftSuper);
    waitUntilNothingIsDown();
    const auto rest = seen();
    EXPECT_EQ(rest, Keys{-super});
    EXPECT_EQ(client.started(3).size(), 3U);
}

TEST_F(X11KeySenderTest, aCopyDuringAWaitDoesNotEndIt)
{
    start();
    startTap();
    user.press(keycode::leftSuper);
    user.tap(keycode::v);
    user.press(keycode::c);
    ASSERT_EQ(client.started(2), (Strings{"paste?", "save"}));
    const auto copy = sent(keys::c, keycode::leftControl);
    EXPECT_EQ(pressOf(keycode::c, copy), (SeenKey{true, keycode::c, controlMask}));
    user.release(keycode::c);
    user.release(keycode::leftSuper);
    user.tap(keycode::digit2);
    EXPECT_EQ(client.started(3), (Strings{"paste?", "save", "slot 2"}));
    waitUntilNothingIsDown();
}

TEST_F(X11KeySenderTest, aCopyDuringAWaitWhoseModifiersAreUpDoesNotEndIt)
{
    start();
    startTap();
    user.chord({keycode::leftSuper, keycode::v});
    ASSERT_EQ(client.started(1), Strings{"paste?"});
    const auto copy = sent(keys::c, keycode::leftControl);
    EXPECT_EQ(pressOf(keycode::c, copy), (SeenKey{true, keycode::c, controlMask}));
    user.tap(keycode::digit2);
    EXPECT_EQ(client.started(2), (Strings{"paste?", "slot 2"}));
}

TEST_F(X11KeySenderTest, theSendersOwnChordIsNoGestureInTheLiteralMapping)
{
    start();
    startTap(ModifierRoles::literal);
    const auto paste = sent(keys::v, keycode::leftControl);
    EXPECT_EQ(pressOf(keycode::v, paste), (SeenKey{true, keycode::v, controlMask}));
    // Also while the user still holds the chord that started it.
    user.press(keycode::leftControl);
    user.press(keycode::c);
    ASSERT_EQ(client.started(1), Strings{"save"});
    sender->simulateKeyPress(keys::c);
    const auto copy = application->keysUntilReleaseOf(keycode::c);
    EXPECT_EQ(pressOf(keycode::c, copy), (SeenKey{true, keycode::c, controlMask}));
    user.release(keycode::c);
    user.release(keycode::leftControl);
    waitUntilNothingIsDown();
    EXPECT_EQ(client.started(1).size(), 1U);
    // The user's own next one is a gesture again.
    user.chord({keycode::leftControl, keycode::c});
    EXPECT_EQ(client.started(2), (Strings{"save", "save"}));
}

TEST_F(X11KeySenderTest, theSendersChordForTerminalsIsNoGesture)
{
    start("kitty");
    startTap();
    const auto paste = sent(keys::v, keycode::leftControl);
    EXPECT_EQ(pressOf(keycode::v, paste), (SeenKey{true, keycode::v, controlMask | shiftMask}));
    EXPECT_TRUE(client.handled().empty());
}

TEST_F(X11KeySenderTest, otherKeysAreRefusedWithALineInTheLog)
{
    start();
    sender->simulateKeyPress(keys::s);
    sender.reset();
    EXPECT_EQ(log.lines(), Strings{"Only copying and pasting can be sent to other programs"});
    EXPECT_EQ(seen(), Keys{});
}

TEST(X11KeySender, withoutADisplayEachKeyIsALineInTheLog)
{
    ::unsetenv("DISPLAY");
    testkit::RecordingLog log;
    {
        X11KeySender sender(log, std::make_shared<X11ExpectedKeys>());
        sender.simulateKeyPress(keys::v);
    }
    EXPECT_EQ(log.lines(),
              Strings{"No keys can be sent to other programs: there is no X display (DISPLAY is not set)"});
}

} // namespace

} // namespace stavelin::platform::x11
