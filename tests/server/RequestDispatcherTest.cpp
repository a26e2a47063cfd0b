#include "server/RequestDispatcher.h"

#include "daemon/WireDecoder.h"
#include "server/FakeServerPasteboard.h"
#include "server/Limits.h"
#include "testkit/RecordingLog.h"
#include "testkit/TemporaryFolder.h"

#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace stavelin;
using daemon::AnyCodable;
using daemon::MessageType;
using daemon::ProtocolMessage;

namespace {

class RequestDispatching : public testing::Test
{
protected:
    /// Dispatches a request of this method and JSON payload; an empty text leaves the payload out.
    void dispatch(const std::string &method, const std::string &payload)
    {
        ProtocolMessage request;
        request.id = "REQUEST";
        request.method = method;
        if (!payload.empty()) {
            const auto value = daemon::decodeValue(payload);
            ASSERT_TRUE(value) << payload;
            request.payload = *value;
        }
        m_dispatcher.dispatch(std::move(request), [this](ProtocolMessage answer) {
            m_happened.push_back("answer");
            m_answers.push_back(std::move(answer));
        });
    }

    [[nodiscard]] std::string errorCode() const
    {
        if (m_answers.empty())
            return "no answer";
        const ProtocolMessage &answer = m_answers.back();
        EXPECT_EQ(answer.id, "REQUEST");
        EXPECT_EQ(answer.type, MessageType::response);
        EXPECT_FALSE(answer.method);
        if (!answer.error)
            return "";
        EXPECT_FALSE(answer.error->message.empty());
        EXPECT_FALSE(answer.payload);
        return answer.error->code;
    }

    testkit::TemporaryFolder m_folder;
    support::Timestamp m_now{std::chrono::seconds(1714557600)};
    testkit::RecordingLog m_lines;
    server::LeveledLog m_log{m_lines, server::LogLevel::trace, [this] { return m_now; }};
    server::SlotStore m_store{m_folder.path() / "Stavelin", m_log, [this] { return m_now; }};
    testkit::FakeServerPasteboard m_pasteboard;
    std::vector<std::string> m_happened;
    std::vector<ProtocolMessage> m_answers;
    server::RequestDispatcher m_dispatcher{m_store, m_pasteboard,
                                           [](std::string_view text) { return text == "a key"; },
                                           [this] { m_happened.emplace_back("state"); }};
};

} // namespace

TEST_F(RequestDispatching, storesATextAndTellsOfTheNewStateBeforeItAnswers)
{
    dispatch("clipboard.set_slot", R"({"slot_index":3,"content":"hi"})");
    EXPECT_EQ(errorCode(), "");
    EXPECT_EQ(m_store.slot(3).content, "hi");
    EXPECT_THAT(m_happened, testing::ElementsAre("state", "answer"));
}

TEST_F(RequestDispatching, tellsOfTheStateAlsoWhenTheSameTextIsStoredAgain)
{
    dispatch("clipboard.set_slot", R"({"slot_index":3,"content":"hi"})");
    m_now += std::chrono::hours(1);
    dispatch("clipboard.set_slot", R"({"slot_index":3,"content":"hi"})");
    EXPECT_EQ(m_store.slot(3).updated_at, "2024-05-01T11:00:00Z");
    EXPECT_THAT(m_happened, testing::ElementsAre("state", "answer", "state", "answer"));
}

TEST_F(RequestDispatching, clearsASlot)
{
    dispatch("clipboard.set_slot", R"({"slot_index":9,"content":"hi"})");
    dispatch("clipboard.clear_slot", R"({"slot_index":9})");
    EXPECT_EQ(errorCode(), "");
    EXPECT_EQ(m_store.slot(9).content, "");
    EXPECT_THAT(m_happened, testing::ElementsAre("state", "answer", "state", "answer"));
}

TEST_F(RequestDispatching, answersAPasteWithTheTextWhenThePasteboardHasIt)
{
    dispatch("clipboard.set_slot", R"({"slot_index":1,"content":"hi"})");
    m_answers.clear();
    m_pasteboard.wait();
    dispatch("clipboard.paste_slot", R"({"slot_index":1})");
    EXPECT_TRUE(m_answers.empty());
    EXPECT_THAT(m_pasteboard.texts(), testing::ElementsAre("hi"));
    EXPECT_FALSE(m_pasteboard.wasSecret());

    // What the slot holds by then makes no difference to what is on the pasteboard.
    dispatch("clipboard.clear_slot", R"({"slot_index":1})");
    m_answers.clear();
    m_pasteboard.complete();
    EXPECT_EQ(errorCode(), "");
    ASSERT_EQ(m_answers.size(), 1U);
    const AnyCodable expected{AnyCodable::Object{{"content", AnyCodable{std::string("hi")}}}};
    EXPECT_EQ(m_answers.back().payload, expected);
}

TEST_F(RequestDispatching, offersASensitiveTextAsASecret)
{
    dispatch("clipboard.set_slot", R"({"slot_index":1,"content":"a key"})");
    dispatch("clipboard.paste_slot", R"({"slot_index":1})");
    EXPECT_TRUE(m_pasteboard.wasSecret());
}

TEST_F(RequestDispatching, saysWhyThePasteboardCouldNotBeHad)
{
    dispatch("clipboard.set_slot", R"({"slot_index":1,"content":"hi"})");
    m_pasteboard.failWith("There is no display");
    dispatch("clipboard.paste_slot", R"({"slot_index":1})");
    EXPECT_EQ(errorCode(), "pasteboard_unavailable");
    EXPECT_EQ(m_answers.back().error->message, "There is no display");
}

TEST_F(RequestDispatching, refusesWhatItCannotDoAndChangesNothing)
{
    struct Row
    {
        const char *method;
        const char *payload;
        const char *code;
    };
    const Row rows[]{
        {"clipboard.set_slot", "", "invalid_request"},
        {"clipboard.set_slot", "null", "invalid_request"},
        {"clipboard.set_slot", "[]", "invalid_request"},
        {"clipboard.set_slot", "{}", "invalid_request"},
        {"clipboard.set_slot", R"({"content":"hi"})", "invalid_request"},
        {"clipboard.set_slot", R"({"slot_index":3})", "invalid_request"},
        {"clipboard.set_slot", R"({"slot_index":3,"content":null})", "invalid_request"},
        {"clipboard.set_slot", R"({"slot_index":3,"content":7})", "invalid_request"},
        {"clipboard.set_slot", R"({"slot_index":"3","content":"hi"})", "invalid_request"},
        {"clipboard.set_slot", R"({"slot_index":3.0,"content":"hi"})", "invalid_request"},
        {"clipboard.set_slot", R"({"slot_index":true,"content":"hi"})", "invalid_request"},
        {"clipboard.set_slot", R"({"slot_index":0,"content":"hi"})", "invalid_slot"},
        {"clipboard.set_slot", R"({"slot_index":10,"content":"hi"})", "invalid_slot"},
        {"clipboard.set_slot", R"({"slot_index":-9223372036854775808,"content":"hi"})", "invalid_slot"},
        {"clipboard.clear_slot", "", "invalid_request"},
        {"clipboard.clear_slot", "{}", "invalid_request"},
        {"clipboard.clear_slot", R"({"slot_index":10})", "invalid_slot"},
        {"clipboard.paste_slot", "", "invalid_request"},
        {"clipboard.paste_slot", R"({"slot_index":null})", "invalid_request"},
        {"clipboard.paste_slot", R"({"slot_index":0})", "invalid_slot"},
        {"clipboard.paste_slot", R"({"slot_index":4})", "slot_empty"},
        {"clipboard.SET_SLOT", R"({"slot_index":3,"content":"hi"})", "unknown_method"},
        {"files.add", R"({"file_path":"/etc/hostname"})", "unknown_method"},
        {"", "{}", "unknown_method"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(std::string(row.method) + " " + row.payload);
        m_answers.clear();
        m_happened.clear();
        dispatch(row.method, row.payload);
        EXPECT_EQ(errorCode(), row.code);
        EXPECT_THAT(m_happened, testing::ElementsAre("answer"));
    }
    for (const auto &slot : m_store.slots())
        EXPECT_EQ(slot.content, "");
    EXPECT_TRUE(m_pasteboard.texts().empty());
}

TEST_F(RequestDispatching, refusesARequestWithoutMethod)
{
    ProtocolMessage request;
    request.id = "REQUEST";
    m_dispatcher.dispatch(std::move(request),
                          [this](ProtocolMessage answer) { m_answers.push_back(std::move(answer)); });
    EXPECT_EQ(errorCode(), "invalid_request");
}

TEST_F(RequestDispatching, passesOverArgumentsThatItDoesNotKnow)
{
    dispatch("clipboard.set_slot", R"({"slot_index":3,"content":"hi","colour":"red"})");
    EXPECT_EQ(errorCode(), "");
}

TEST_F(RequestDispatching, takesATextOfSixtyFourMebibytesAndNotOneByteMore)
{
    const auto set = [this](std::size_t size) {
        ProtocolMessage request;
        request.id = "REQUEST";
        request.method = "clipboard.set_slot";
        request.payload = AnyCodable{AnyCodable::Object{{"slot_index", AnyCodable{std::int64_t{1}}},
                                                        {"content", AnyCodable{std::string(size, 'x')}}}};
        m_dispatcher.dispatch(std::move(request),
                              [this](ProtocolMessage answer) { m_answers.push_back(std::move(answer)); });
    };
    set(server::Limits::slotText + 1);
    EXPECT_EQ(errorCode(), "content_too_large");
    EXPECT_EQ(m_store.slot(1).content, "");
    set(server::Limits::slotText);
    EXPECT_EQ(errorCode(), "");
    EXPECT_EQ(m_store.slot(1).content.size(), server::Limits::slotText);
}

TEST_F(RequestDispatching, refusesATextWithWhichTheStateWouldNotFitAFrame)
{
    // A control character takes six bytes on the wire: one such text fits, a second beside it does not.
    const std::string text(24 * 1024 * 1024, '\x01');
    for (const std::int64_t slotIndex : {1, 2}) {
        ProtocolMessage request;
        request.id = "REQUEST";
        request.method = "clipboard.set_slot";
        request.payload = AnyCodable{
            AnyCodable::Object{{"slot_index", AnyCodable{slotIndex}}, {"content", AnyCodable{text}}}};
        m_dispatcher.dispatch(std::move(request),
                              [this](ProtocolMessage answer) { m_answers.push_back(std::move(answer)); });
        EXPECT_EQ(errorCode(), slotIndex == 1 ? "" : "content_too_large");
    }
    EXPECT_EQ(m_store.slot(2).content, "");
}

TEST(RequestDispatchingOnAStoreThatCannotBeWritten, saysSoAndTellsOfNoNewState)
{
    const testkit::TemporaryFolder folder;
    std::ofstream(folder.path() / "Stavelin") << "in the way";
    testkit::RecordingLog lines;
    const auto now = [] { return support::Timestamp{}; };
    server::LeveledLog log(lines, server::LogLevel::off, now);
    server::SlotStore store(folder.path() / "Stavelin", log, now);
    testkit::FakeServerPasteboard pasteboard;
    int states = 0;
    server::RequestDispatcher dispatcher(
        store, pasteboard, [](std::string_view) { return false; }, [&states] { ++states; });
    ProtocolMessage request;
    request.id = "REQUEST";
    request.method = "clipboard.set_slot";
    request.payload = *daemon::decodeValue(R"({"slot_index":3,"content":"hi"})");
    std::vector<ProtocolMessage> answers;
    dispatcher.dispatch(std::move(request),
                        [&](ProtocolMessage answer) { answers.push_back(std::move(answer)); });
    ASSERT_EQ(answers.size(), 1U);
    ASSERT_TRUE(answers[0].error);
    EXPECT_EQ(answers[0].error->code, "store_failed");
    EXPECT_EQ(states, 0);
    EXPECT_EQ(store.slot(3).content, "");
}
