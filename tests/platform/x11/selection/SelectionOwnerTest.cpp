#include "platform/x11/selection/SelectionOwner.h"

#include "platform/x11/selection/PrivateXServer.h"
#include "platform/x11/selection/Requestor.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

using namespace stavelin;
using namespace std::chrono_literals;
using platform::x11::selection::SelectionError;
using platform::x11::selection::SelectionOwner;
using testing::Contains;
using testing::Not;
using testkit::PrivateXServer;
using testkit::Requestor;

namespace {

struct Disconnect
{
    void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
};

std::string largeText(std::size_t size)
{
    std::string text(size, ' ');
    for (std::size_t i = 0; i < size; ++i)
        text[i] = static_cast<char>('a' + (i * 7 + i / 1000) % 26);
    return text;
}

/// An owner and any number of requestors on one display, served in turns on one thread.
class SelectionOwnership : public testing::Test
{
protected:
    void SetUp() override
    {
        m_server = PrivateXServer::start();
        ASSERT_TRUE(m_server) << "no Xvfb";
        m_connection.reset(xcb_connect(m_server->display().c_str(), nullptr));
        ASSERT_EQ(xcb_connection_has_error(m_connection.get()), 0);
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data;
        m_owner = std::make_unique<SelectionOwner>(m_connection.get(), screen);
    }

    Requestor &newRequestor()
    {
        m_requestors.push_back(std::make_unique<Requestor>(m_server->display()));
        EXPECT_TRUE(m_requestors.back()->isConnected());
        return *m_requestors.back();
    }

    void handleOwnersEvents()
    {
        while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection.get())) {
            m_owner->handle(*event);
            std::free(event);
        }
    }

    /// Serves everybody until the condition holds; false when it does not come to that in time.
    bool serveUntil(const std::function<bool()> &condition, std::chrono::milliseconds limit = 10s)
    {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        for (;;) {
            handleOwnersEvents();
            for (const auto &requestor : m_requestors)
                requestor->handleEvents();
            if (condition())
                return true;
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0)
                return false;
            std::vector<pollfd> descriptors{{xcb_get_file_descriptor(m_connection.get()), POLLIN, 0}};
            for (const auto &requestor : m_requestors)
                descriptors.push_back({requestor->descriptor(), POLLIN, 0});
            // A requestor may have read events ahead while it waited for a reply: look again soon.
            ::poll(descriptors.data(), descriptors.size(),
                   static_cast<int>(std::min<long>(left.count(), 20)));
        }
    }

    bool answered(Requestor &requestor)
    {
        return serveUntil([&] { return requestor.hasAnswer(); });
    }

    std::unique_ptr<PrivateXServer> m_server;
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    std::unique_ptr<SelectionOwner> m_owner;
    std::vector<std::unique_ptr<Requestor>> m_requestors;
};

} // namespace

TEST_F(SelectionOwnership, isVerifiedBeforeOwnReturns)
{
    EXPECT_FALSE(m_owner->isOwner());
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi"}));
    EXPECT_TRUE(m_owner->isOwner());
}

TEST_F(SelectionOwnership, handsTheTextOutUnderEveryNameOfText)
{
    struct Row
    {
        const char *target;
        const char *type;
        const char *bytes;
    };
    const Row rows[]{
        {"UTF8_STRING", "UTF8_STRING", "Gr\xC3\xBC\xC3\x9F"},
        {"TEXT", "UTF8_STRING", "Gr\xC3\xBC\xC3\x9F"},
        {"text/plain;charset=utf-8", "text/plain;charset=utf-8", "Gr\xC3\xBC\xC3\x9F"},
        {"text/plain", "text/plain", "Gr\xC3\xBC\xC3\x9F"},
        {"STRING", "STRING", "Gr\xFC\xDF"},
    };
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"Gr\xC3\xBC\xC3\x9F"}));
    Requestor &requestor = newRequestor();
    for (const Row &row : rows) {
        SCOPED_TRACE(row.target);
        requestor.ask("CLIPBOARD", row.target);
        ASSERT_TRUE(answered(requestor));
        EXPECT_FALSE(requestor.wasRefused());
        EXPECT_EQ(requestor.typeName(), row.type);
        EXPECT_EQ(requestor.bytes(), row.bytes);
    }
}

TEST_F(SelectionOwnership, refusesStringWhenTheTextHasCharactersOutsideLatin1)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"\xE2\x82\xAC 5"}));
    Requestor &requestor = newRequestor();
    requestor.ask("CLIPBOARD", "STRING");
    ASSERT_TRUE(answered(requestor));
    EXPECT_TRUE(requestor.wasRefused());
    requestor.ask("CLIPBOARD", "TARGETS");
    ASSERT_TRUE(answered(requestor));
    EXPECT_THAT(requestor.words(), Not(Contains(requestor.atom("STRING"))));
}

TEST_F(SelectionOwnership, namesExactlyTheTargetsThatItServes)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi"}));
    Requestor &requestor = newRequestor();
    requestor.ask("CLIPBOARD", "TARGETS");
    ASSERT_TRUE(answered(requestor));
    EXPECT_EQ(requestor.typeName(), "ATOM");
    std::vector<std::uint32_t> expected;
    for (const char *name : {"TARGETS", "TIMESTAMP", "MULTIPLE", "SAVE_TARGETS", "UTF8_STRING", "TEXT",
                             "STRING", "text/plain;charset=utf-8", "text/plain"})
        expected.push_back(requestor.atom(name));
    EXPECT_THAT(requestor.words(), testing::UnorderedElementsAreArray(expected));
}

TEST_F(SelectionOwnership, refusesATargetThatItDoesNotName)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi"}));
    Requestor &requestor = newRequestor();
    requestor.ask("CLIPBOARD", "image/png");
    ASSERT_TRUE(answered(requestor));
    EXPECT_TRUE(requestor.wasRefused());
}

TEST_F(SelectionOwnership, offersTheHintForPasswordManagersOnlyWithASecret)
{
    Requestor &requestor = newRequestor();
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi", false}));
    requestor.ask("CLIPBOARD", "x-kde-passwordManagerHint");
    ASSERT_TRUE(answered(requestor));
    EXPECT_TRUE(requestor.wasRefused());

    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi", true}));
    requestor.ask("CLIPBOARD", "x-kde-passwordManagerHint");
    ASSERT_TRUE(answered(requestor));
    EXPECT_EQ(requestor.bytes(), "secret");
}

TEST_F(SelectionOwnership, saysWithARealServerTimeWhenItBegan)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi"}));
    Requestor &requestor = newRequestor();
    requestor.ask("CLIPBOARD", "TIMESTAMP");
    ASSERT_TRUE(answered(requestor));
    ASSERT_EQ(requestor.words().size(), 1U);
    const xcb_timestamp_t time = requestor.words()[0];
    EXPECT_NE(time, xcb_timestamp_t{XCB_CURRENT_TIME});

    // A request of before that moment is meant for the owner of before.
    requestor.ask("CLIPBOARD", "UTF8_STRING", time - 1);
    ASSERT_TRUE(answered(requestor));
    EXPECT_TRUE(requestor.wasRefused());
    requestor.ask("CLIPBOARD", "UTF8_STRING", time);
    ASSERT_TRUE(answered(requestor));
    EXPECT_EQ(requestor.bytes(), "hi");
}

TEST_F(SelectionOwnership, convertsSeveralTargetsAtOnceAndMarksThoseThatItCannot)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi"}));
    Requestor &requestor = newRequestor();
    requestor.askForMultiple("CLIPBOARD", {"UTF8_STRING", "image/png", "STRING"});
    ASSERT_TRUE(answered(requestor));
    EXPECT_FALSE(requestor.wasRefused());
    const auto none = std::uint32_t{XCB_ATOM_NONE};
    EXPECT_THAT(requestor.words(),
                testing::ElementsAre(requestor.atom("UTF8_STRING"), requestor.atom("UTF8_STRING"),
                                     requestor.atom("image/png"), none, requestor.atom("STRING"),
                                     requestor.atom("STRING")));
    EXPECT_EQ(requestor.property("UTF8_STRING"), "hi");
    EXPECT_EQ(requestor.property("STRING"), "hi");
    EXPECT_EQ(requestor.property("image/png"), std::nullopt);
}

TEST_F(SelectionOwnership, answersSaveTargetsWithAnEmptyProperty)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi"}));
    Requestor &requestor = newRequestor();
    requestor.ask("CLIPBOARD", "SAVE_TARGETS");
    ASSERT_TRUE(answered(requestor));
    EXPECT_FALSE(requestor.wasRefused());
    EXPECT_EQ(requestor.typeName(), "NULL");
    EXPECT_TRUE(requestor.bytes().empty());
}

TEST_F(SelectionOwnership, handsTenMegabytesOverInPieces)
{
    const std::string text = largeText(10 * 1024 * 1024);
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {text}));
    Requestor &requestor = newRequestor();
    requestor.ask("CLIPBOARD", "UTF8_STRING");
    ASSERT_TRUE(answered(requestor));
    EXPECT_TRUE(requestor.cameInPieces());
    EXPECT_TRUE(requestor.bytes() == text);
    EXPECT_EQ(m_owner->nextDeadline(), std::nullopt);
}

TEST_F(SelectionOwnership, servesSeveralRequestorsOfALargeTextAtTheSameTime)
{
    const std::string text = largeText(3 * 1024 * 1024);
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {text}));
    std::vector<Requestor *> requestors;
    for (int i = 0; i < 5; ++i)
        requestors.push_back(&newRequestor());
    for (Requestor *requestor : requestors)
        requestor->ask("CLIPBOARD", "UTF8_STRING");
    ASSERT_TRUE(serveUntil([&] { return std::ranges::all_of(requestors, &Requestor::hasAnswer); }));
    for (Requestor *requestor : requestors)
        EXPECT_TRUE(requestor->bytes() == text);
}

TEST_F(SelectionOwnership, dropsAStalledTransferAfterFiveSecondsAndKeepsNobodyWaitingMeanwhile)
{
    const std::string text = largeText(2 * 1024 * 1024);
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {text}));
    Requestor &stalled = newRequestor();
    stalled.stall();
    stalled.ask("CLIPBOARD", "UTF8_STRING");
    ASSERT_TRUE(serveUntil([&] { return m_owner->nextDeadline().has_value(); }));

    Requestor &other = newRequestor();
    other.ask("CLIPBOARD", "UTF8_STRING");
    ASSERT_TRUE(answered(other));
    EXPECT_TRUE(other.bytes() == text);

    const auto deadline = m_owner->nextDeadline();
    ASSERT_TRUE(deadline);
    EXPECT_LE(*deadline, std::chrono::steady_clock::now() + 5s);
    m_owner->expire(*deadline - 1ms);
    EXPECT_EQ(m_owner->nextDeadline(), deadline);
    m_owner->expire(*deadline);
    EXPECT_EQ(m_owner->nextDeadline(), std::nullopt);
}

TEST_F(SelectionOwnership, forgetsARequestorWhoseWindowGoesInTheMiddle)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {largeText(2 * 1024 * 1024)}));
    Requestor &leaving = newRequestor();
    leaving.stall();
    leaving.ask("CLIPBOARD", "UTF8_STRING");
    ASSERT_TRUE(serveUntil([&] { return m_owner->nextDeadline().has_value(); }));
    leaving.destroyWindow();
    EXPECT_TRUE(serveUntil([&] { return !m_owner->nextDeadline(); }));
    EXPECT_EQ(xcb_connection_has_error(m_connection.get()), 0);
}

TEST_F(SelectionOwnership, survivesARequestorThatIsGoneBeforeItIsAnswered)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {largeText(2 * 1024 * 1024)}));
    Requestor &leaving = newRequestor();
    leaving.ask("CLIPBOARD", "UTF8_STRING");
    leaving.destroyWindow();
    Requestor &other = newRequestor();
    other.ask("CLIPBOARD", "TIMESTAMP");
    ASSERT_TRUE(answered(other));
    EXPECT_TRUE(serveUntil([&] { return !m_owner->nextDeadline(); }));
}

TEST_F(SelectionOwnership, finishesATransferWithTheTextThatItBeganWith)
{
    const std::string text = largeText(2 * 1024 * 1024);
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {text}));
    Requestor &requestor = newRequestor();
    requestor.ask("CLIPBOARD", "UTF8_STRING");
    ASSERT_TRUE(serveUntil([&] { return requestor.received() > 0; }));
    ASSERT_FALSE(requestor.hasAnswer());
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"another"}));
    ASSERT_TRUE(answered(requestor));
    EXPECT_TRUE(requestor.bytes() == text);
}

TEST_F(SelectionOwnership, handlesRequestsThatArriveWhileItIsTakenAnew)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"first"}));
    std::vector<Requestor *> requestors;
    for (int i = 0; i < 4; ++i) {
        requestors.push_back(&newRequestor());
        requestors.back()->ask("CLIPBOARD", "UTF8_STRING");
        ASSERT_NE(requestors.back()->atom("SYNC"),
                  xcb_atom_t{XCB_ATOM_NONE}); // the request is with the server now
    }
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"second"}));
    ASSERT_TRUE(serveUntil([&] { return std::ranges::all_of(requestors, &Requestor::hasAnswer); }));
    for (Requestor *requestor : requestors) {
        EXPECT_FALSE(requestor->wasRefused());
        EXPECT_THAT(requestor->bytes(), testing::AnyOf("first", "second"));
    }
}

TEST_F(SelectionOwnership, endsWhenAnotherProgramTakesTheSelectionAndCanBeTakenBack)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi"}));
    Requestor &other = newRequestor();
    other.take("CLIPBOARD");
    ASSERT_TRUE(serveUntil([&] { return !m_owner->isOwner(); }));
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"again"}));
    other.ask("CLIPBOARD", "UTF8_STRING");
    ASSERT_TRUE(answered(other));
    EXPECT_EQ(other.bytes(), "again");
}

TEST_F(SelectionOwnership, isNotEndedByTheLateNewsOfAFormerLoss)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi"}));
    Requestor &other = newRequestor();
    other.take("CLIPBOARD");
    ASSERT_NE(other.atom("SYNC"),
              xcb_atom_t{XCB_ATOM_NONE}); // the server has told the owner, who has not looked yet
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"again"}));
    handleOwnersEvents();
    EXPECT_TRUE(m_owner->isOwner());
}

TEST_F(SelectionOwnership, ofPrimaryLeavesTheClipboardAlone)
{
    ASSERT_TRUE(m_owner->own("PRIMARY", {"hi"}));
    Requestor &requestor = newRequestor();
    requestor.ask("CLIPBOARD", "UTF8_STRING");
    ASSERT_TRUE(answered(requestor));
    EXPECT_TRUE(requestor.wasRefused());
    requestor.ask("PRIMARY", "UTF8_STRING");
    ASSERT_TRUE(answered(requestor));
    EXPECT_EQ(requestor.bytes(), "hi");
}

TEST_F(SelectionOwnership, failsInTimeWhenTheServerHangs)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi"}));
    m_server->freeze();
    const auto owned = m_owner->own("CLIPBOARD", {"more"}, 200ms);
    m_server->thaw();
    ASSERT_FALSE(owned);
    EXPECT_EQ(owned.error(), SelectionError::timedOut);
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"more"}));
}

TEST_F(SelectionOwnership, failsWhenTheServerHasGone)
{
    ASSERT_TRUE(m_owner->own("CLIPBOARD", {"hi"}));
    m_server->end();
    const auto owned = m_owner->own("CLIPBOARD", {"more"});
    ASSERT_FALSE(owned);
    EXPECT_EQ(owned.error(), SelectionError::connectionLost);
}
