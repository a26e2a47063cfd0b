#include "server/StatePublisher.h"

#include "daemon/WireDecoder.h"
#include "server/Uuid.h"
#include "testkit/RecordingLog.h"
#include "testkit/TemporaryFolder.h"

#include <regex>
#include <set>
#include <string>

#include <gtest/gtest.h>

using namespace stavelin;

namespace {

class StatePublishing : public testing::Test
{
protected:
    testkit::TemporaryFolder m_folder;
    testkit::RecordingLog m_lines;
    server::LeveledLog m_log{m_lines, server::LogLevel::off, [] { return support::Timestamp{}; }};
    server::SlotStore m_store{m_folder.path() / "Stavelin", m_log,
                              [] { return support::Timestamp{std::chrono::seconds(1714557600)}; }};
    int m_ids = 0;
    server::StatePublisher m_publisher{m_store, [this] { return "ID" + std::to_string(++m_ids); }};
};

} // namespace

TEST_F(StatePublishing, writesAnEventWithAllNineSlotsAndNoFiles)
{
    ASSERT_TRUE(m_store.set(2, "two"));
    daemon::WireDecoder decoder;
    const auto frame = m_publisher.frame();
    const auto message = decoder.decodeMessage(*frame);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->id, "ID1");
    EXPECT_EQ(message->type, daemon::MessageType::event);
    EXPECT_EQ(message->method, "state.updated");
    const auto decoded = decoder.decodeFrame(*frame);
    ASSERT_TRUE(decoded);
    const auto *state = std::get_if<daemon::StatePayload>(&*decoded);
    ASSERT_TRUE(state);
    EXPECT_EQ(state->clipboard_slots, m_store.slots());
    EXPECT_TRUE(state->file_references.empty());
}

TEST_F(StatePublishing, writesItOncePerChangeForAllWhoAsk)
{
    const auto first = m_publisher.frame();
    EXPECT_EQ(m_publisher.frame(), first);
    ASSERT_TRUE(m_store.set(2, "two"));
    m_publisher.stateChanged();
    const auto second = m_publisher.frame();
    EXPECT_NE(second, first);
    EXPECT_NE(*second, *first);
    EXPECT_EQ(m_ids, 2);
}

TEST_F(StatePublishing, keepsNoCopyThatNobodyNeeds)
{
    const std::weak_ptr<const std::string> frame = m_publisher.frame();
    EXPECT_TRUE(frame.expired());
}

TEST(Uuid, isARandomOneInItsCanonicalFormWithUpperCaseDigits)
{
    const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        const std::string uuid = server::makeUuid();
        EXPECT_TRUE(std::regex_match(uuid, form)) << uuid;
        EXPECT_TRUE(seen.insert(uuid).second);
    }
}
