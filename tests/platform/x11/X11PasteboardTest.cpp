#include "TextOwner.h"

#include "platform/x11/X11Pasteboard.h"
#include "support/HandOver.h"
#include "testkit/NestedX.h"
#include "testkit/RecordingLog.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <chrono>
#include <cstdlib>
#include <optional>

namespace stavelin::platform::x11 {

namespace {

using SteadyClock = std::chrono::steady_clock;
using Text = std::optional<std::string>;

class X11PasteboardTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ::setenv("DISPLAY", screen.innerDisplay().c_str(), 1);
        pasteboard.emplace(mainThread, log);
    }
    /// Does what the main thread does, until the condition holds or the time is over.
    template <typename Condition>
    bool runUntil(Condition condition)
    {
        const auto deadline = SteadyClock::now() + std::chrono::seconds(10);
        while (!condition() && SteadyClock::now() < deadline) {
            pollfd descriptor{mainThread.descriptor(), POLLIN, 0};
            ::poll(&descriptor, 1, 5);
            mainThread.run();
        }
        return condition();
    }
    void startReading(std::uint64_t before)
    {
        result.reset();
        pasteboard->readString(before, [this](Text text) { result = std::move(text); });
    }
    /// What is read; a text that says so when no answer comes.
    Text read(std::uint64_t before)
    {
        startReading(before);
        return runUntil([this] { return result.has_value(); }) ? *result : "no completion";
    }
    Text readAfterChange(const std::string &text)
    {
        const std::uint64_t before = pasteboard->changeCount();
        const TextOwner owner("CLIPBOARD", text);
        return read(before);
    }

    testkit::NestedX screen{100, 100};
    testkit::RecordingLog log;
    support::HandOver mainThread;
    std::optional<X11Pasteboard> pasteboard;
    std::optional<Text> result;
};

TEST_F(X11PasteboardTest, anEmptyPasteboardGivesNothing)
{
    EXPECT_EQ(read(0), std::nullopt);
}

TEST_F(X11PasteboardTest, theTextIsHandedOutAsUtf8)
{
    EXPECT_EQ(readAfterChange("Gr\xC3\xBC\xC3\x9F"
                              "e \xF0\x9F\x8D\x80"),
              "Gr\xC3\xBC\xC3\x9F"
              "e \xF0\x9F\x8D\x80");
}

TEST_F(X11PasteboardTest, everyNewOwnerCounts)
{
    EXPECT_EQ(pasteboard->changeCount(), 0U);
    const TextOwner first("CLIPBOARD", "1");
    EXPECT_TRUE(runUntil([this] { return pasteboard->changeCount() == 1; }));
    const TextOwner second("CLIPBOARD", "2");
    EXPECT_TRUE(runUntil([this] { return pasteboard->changeCount() == 2; }));
    const TextOwner other("PRIMARY", "3");
    EXPECT_EQ(read(0), "2");
    EXPECT_EQ(pasteboard->changeCount(), 2U);
}

TEST_F(X11PasteboardTest, readingWaitsForAChangeThatIsStillToCome)
{
    const TextOwner old("CLIPBOARD", "old");
    ASSERT_TRUE(runUntil([this] { return pasteboard->changeCount() == 1; }));
    startReading(1);
    mainThread.run();
    EXPECT_FALSE(result.has_value());
    const TextOwner fresh("CLIPBOARD", "fresh");
    ASSERT_TRUE(runUntil([this] { return result.has_value(); }));
    EXPECT_EQ(*result, "fresh");
}

TEST_F(X11PasteboardTest, withoutAChangeTheOldTextIsTakenAfterALittleWhile)
{
    const TextOwner old("CLIPBOARD", "old");
    ASSERT_TRUE(runUntil([this] { return pasteboard->changeCount() == 1; }));
    const auto start = SteadyClock::now();
    EXPECT_EQ(read(1), "old");
    EXPECT_GE(SteadyClock::now() - start, std::chrono::milliseconds(390));
}

TEST_F(X11PasteboardTest, severalReadingsAreAnsweredInTheirOrder)
{
    const TextOwner owner("CLIPBOARD", "text");
    ASSERT_TRUE(runUntil([this] { return pasteboard->changeCount() == 1; }));
    std::vector<int> order;
    for (int i = 0; i < 3; ++i)
        pasteboard->readString(0, [&order, i](const Text &) { order.push_back(i); });
    EXPECT_TRUE(runUntil([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
}

TEST_F(X11PasteboardTest, aLargeTextComesWhole)
{
    std::string text(10'000'000, 'a');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>('a' + i % 23);
    EXPECT_TRUE(readAfterChange(text) == text);
}

TEST_F(X11PasteboardTest, theLongestTextComesAndALongerOneDoesNot)
{
    std::string text(Pasteboard::maximumTextSize, 'a');
    EXPECT_TRUE(readAfterChange(text) == text);
    text += 'b';
    EXPECT_EQ(readAfterChange(text), std::nullopt);
}

TEST_F(X11PasteboardTest, illFormedTextIsNoText)
{
    EXPECT_EQ(readAfterChange("a\xFF"), std::nullopt);
}

TEST_F(X11PasteboardTest, anOwnerThatHangsIsGivenUpAndDoesNotSpoilTheNextReading)
{
    TextOwner hung("CLIPBOARD", "late");
    hung.hang();
    const auto start = SteadyClock::now();
    EXPECT_EQ(read(0), std::nullopt);
    EXPECT_LT(SteadyClock::now() - start, std::chrono::seconds(4));
    hung.resume();
    EXPECT_EQ(readAfterChange("in time"), "in time");
}

TEST_F(X11PasteboardTest, noCompletionComesAfterThePasteboardIsGone)
{
    const TextOwner owner("CLIPBOARD", "text");
    ASSERT_TRUE(runUntil([this] { return pasteboard->changeCount() == 1; }));
    startReading(0);
    pollfd descriptor{mainThread.descriptor(), POLLIN, 0};
    ASSERT_EQ(::poll(&descriptor, 1, 8000), 1); // it is on its way
    pasteboard.reset();
    mainThread.run();
    EXPECT_FALSE(result.has_value());
}

TEST_F(X11PasteboardTest, anOwnerThatHangsDoesNotHoldUpTheEnd)
{
    TextOwner hung("CLIPBOARD", "late");
    ASSERT_TRUE(runUntil([this] { return pasteboard->changeCount() == 1; }));
    hung.hang();
    startReading(0);
    pasteboard.reset();
    mainThread.run();
    EXPECT_FALSE(result.has_value());
    hung.resume();
}

/// Answers for one target only, with these bytes, as old programs do.
class OldOwner
{
public:
    OldOwner(const std::string &target, const std::string &bytes)
        : m_connection(std::move(X11Connection::open().value()))
    {
        m_target = atom(target);
        m_thread = std::thread([this, bytes] { serve(bytes); });
        m_isOwner.get_future().wait();
    }
    ~OldOwner()
    {
        m_stop.signal();
        m_thread.join();
    }
    OldOwner(const OldOwner &) = delete;
    OldOwner &operator=(const OldOwner &) = delete;

private:
    xcb_atom_t atom(const std::string &name)
    {
        const auto asked =
            xcb_intern_atom(m_connection->get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
        return ReplyPointer<xcb_intern_atom_reply_t>(
                   xcb_intern_atom_reply(m_connection->get(), asked, nullptr))
            ->atom;
    }
    void serve(const std::string &bytes)
    {
        xcb_connection_t *server = m_connection->get();
        const xcb_window_t window = xcb_generate_id(server);
        xcb_create_window(server, XCB_COPY_FROM_PARENT, window, m_connection->root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(server, window, atom("CLIPBOARD"), XCB_CURRENT_TIME);
        m_connection->roundTrip();
        m_isOwner.set_value();
        for (;;) {
            while (const EventPointer event = m_connection->nextEvent()) {
                if ((event->response_type & 0x7F) == XCB_SELECTION_REQUEST)
                    answer(reinterpret_cast<const xcb_selection_request_event_t &>(*event), bytes);
            }
            pollfd descriptors[] = {{m_stop.descriptor(), POLLIN, 0},
                                    {xcb_get_file_descriptor(server), POLLIN, 0}};
            ::poll(descriptors, 2, -1);
            if ((descriptors[0].revents & POLLIN) != 0)
                return;
        }
    }
    void answer(const xcb_selection_request_event_t &request, const std::string &bytes)
    {
        xcb_selection_notify_event_t notice{};
        notice.response_type = XCB_SELECTION_NOTIFY;
        notice.requestor = request.requestor;
        notice.selection = request.selection;
        notice.target = request.target;
        if (request.target == m_target) {
            notice.property = request.property;
            xcb_change_property(m_connection->get(), XCB_PROP_MODE_REPLACE, request.requestor,
                                request.property, m_target, 8, static_cast<std::uint32_t>(bytes.size()),
                                bytes.data());
        }
        xcb_send_event(m_connection->get(), 0, request.requestor, 0, reinterpret_cast<const char *>(&notice));
        m_connection->flush();
    }

    std::unique_ptr<X11Connection> m_connection;
    xcb_atom_t m_target = XCB_ATOM_NONE;
    support::WakeUp m_stop;
    std::promise<void> m_isOwner;
    std::thread m_thread;
};

TEST_F(X11PasteboardTest, anOwnerThatKnowsOnlyLatin1IsUnderstood)
{
    const OldOwner owner("STRING", "Gr\xFC\xDF"
                                   "e");
    EXPECT_EQ(read(0), "Gr\xC3\xBC\xC3\x9F"
                       "e");
}

TEST_F(X11PasteboardTest, anOwnerThatNamesTheEncodingInItsTypeIsUnderstood)
{
    const OldOwner owner("text/plain;charset=utf-8", "Gr\xC3\xBC\xC3\x9F"
                                                     "e");
    EXPECT_EQ(read(0), "Gr\xC3\xBC\xC3\x9F"
                       "e");
}

TEST_F(X11PasteboardTest, anOwnerWithoutTextGivesNothing)
{
    const OldOwner owner("image/png", "\x89PNG");
    EXPECT_EQ(read(0), std::nullopt);
}

TEST(X11Pasteboard, withoutADisplayThereIsNothingAndTheLogSaysSo)
{
    ::unsetenv("DISPLAY");
    testkit::RecordingLog log;
    support::HandOver mainThread;
    X11Pasteboard pasteboard(mainThread, log);
    std::optional<Text> result;
    pasteboard.readString(0, [&](Text text) { result = std::move(text); });
    pollfd descriptor{mainThread.descriptor(), POLLIN, 0};
    ASSERT_EQ(::poll(&descriptor, 1, 8000), 1);
    mainThread.run();
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(*result, std::nullopt);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"The clipboard cannot be watched"});
}

} // namespace

} // namespace stavelin::platform::x11
