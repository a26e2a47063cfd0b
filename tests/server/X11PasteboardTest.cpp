#include "server/X11Pasteboard.h"

#include "platform/x11/selection/PrivateXServer.h"
#include "platform/x11/selection/Requestor.h"
#include "server/TestClient.h"
#include "testkit/RecordingLog.h"
#include "testkit/TemporaryFolder.h"

#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

using namespace stavelin;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testkit::PrivateXServer;
using testkit::Requestor;
using testkit::runUntil;

namespace {

class X11Pasting : public testing::Test
{
protected:
    void SetUp() override
    {
        m_server = PrivateXServer::start();
        ASSERT_TRUE(m_server) << "no Xvfb";
        begin({{"DISPLAY", m_server->display()}});
    }

    /// A pasteboard whose session is nothing but these variables.
    void begin(server::SessionEnvironment::Variables variables)
    {
        server::SessionEnvironment::Sources sources;
        sources.own = std::move(variables);
        sources.procRoot = m_proc.path();
        sources.parent = [] { return 1; };
        sources.uid = ::geteuid();
        m_pasteboard.emplace(m_io, server::SessionEnvironment(std::move(sources)), m_log);
    }

    using Result = std::expected<void, server::PasteboardError>;
    /// Puts the text there and waits for the result; nothing when there is none in time.
    std::optional<Result> put(const std::string &text, bool isSecret = false)
    {
        std::optional<Result> result;
        m_pasteboard->put(text, isSecret, [&result](Result done) { result = std::move(done); });
        runUntil(m_io, [&result] { return result.has_value(); });
        return result;
    }

    /// Waits for the answer to what was asked; false when there is none in time.
    static bool isAnswered(Requestor &requestor)
    {
        const auto deadline = std::chrono::steady_clock::now() + 10s;
        while (!requestor.hasAnswer() && std::chrono::steady_clock::now() < deadline) {
            // It may have read events ahead while it waited for a reply: look again soon.
            pollfd descriptor{requestor.descriptor(), POLLIN, 0};
            ::poll(&descriptor, 1, 20);
            requestor.handleEvents();
        }
        return requestor.hasAnswer();
    }

    [[nodiscard]] std::string read(const std::string &target = "UTF8_STRING") const
    {
        Requestor requestor(m_server->display());
        requestor.ask("CLIPBOARD", target);
        EXPECT_TRUE(isAnswered(requestor));
        return requestor.bytes();
    }

    boost::asio::io_context m_io{1};
    testkit::TemporaryFolder m_proc;
    testkit::RecordingLog m_lines;
    server::LeveledLog m_log{m_lines, server::LogLevel::trace, std::chrono::system_clock::now};
    std::unique_ptr<PrivateXServer> m_server;
    std::optional<server::X11Pasteboard> m_pasteboard;
};

} // namespace

TEST_F(X11Pasting, hasTheTextOnTheClipboardWhenItCompletes)
{
    const auto result = put("hi");
    ASSERT_TRUE(result);
    ASSERT_TRUE(*result) << result->error().description;
    EXPECT_EQ(read(), "hi");
    ASSERT_TRUE(put("more"));
    EXPECT_EQ(read(), "more");
    EXPECT_EQ(read("x-kde-passwordManagerHint"), "");
}

TEST_F(X11Pasting, offersASecretWithItsHint)
{
    ASSERT_TRUE(put("hi", true));
    EXPECT_EQ(read("x-kde-passwordManagerHint"), "secret");
}

TEST_F(X11Pasting, servesTenMegabytesToAnotherProgram)
{
    const std::string text(10 * 1024 * 1024, 'x');
    const auto result = put(text);
    ASSERT_TRUE(result && *result);
    EXPECT_TRUE(read() == text);

    const std::string command = "xclip -o -selection clipboard -display " + m_server->display() + " | wc -c";
    FILE *output = ::popen(command.c_str(), "r");
    ASSERT_NE(output, nullptr);
    std::size_t size = 0;
    EXPECT_EQ(std::fscanf(output, "%zu", &size), 1);
    ::pclose(output);
    EXPECT_EQ(size, text.size());
}

TEST_F(X11Pasting, leavesPrimaryAlone)
{
    ASSERT_TRUE(put("hi"));
    Requestor requestor(m_server->display());
    requestor.ask("PRIMARY", "UTF8_STRING");
    ASSERT_TRUE(isAnswered(requestor));
    EXPECT_TRUE(requestor.wasRefused());
}

TEST_F(X11Pasting, connectsAgainWhenTheXServerWasReplaced)
{
    ASSERT_TRUE(put("hi"));
    ASSERT_TRUE(m_server->startAgain());
    const auto result = put("again");
    ASSERT_TRUE(result);
    ASSERT_TRUE(*result) << result->error().description;
    EXPECT_EQ(read(), "again");
}

TEST_F(X11Pasting, triesTheNextDisplayWhenTheFirstIsGone)
{
    const auto folder = m_proc.path() / "200";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "environ") << "DISPLAY=" << m_server->display() << '\0';
    begin({{"DISPLAY", ":4999"}});
    const auto result = put("hi");
    ASSERT_TRUE(result);
    ASSERT_TRUE(*result) << result->error().description;
    EXPECT_EQ(read(), "hi");
}

TEST_F(X11Pasting, saysThatThereIsNoDisplay)
{
    begin({});
    const auto result = put("the secret text");
    ASSERT_TRUE(result);
    ASSERT_FALSE(*result);
    EXPECT_EQ(result->error().description, "There is no X11 display to paste on");
    EXPECT_THAT(m_lines.lines(), testing::ElementsAre(HasSubstr("no X11 display")));
}

TEST_F(X11Pasting, saysThatAWaylandSessionHasNoX11Display)
{
    begin({{"WAYLAND_DISPLAY", "wayland-0"}});
    const auto result = put("hi");
    ASSERT_TRUE(result);
    ASSERT_FALSE(*result);
    EXPECT_THAT(result->error().description, HasSubstr("Wayland"));
}

TEST_F(X11Pasting, failsWhenTheDisplayCannotBeReached)
{
    begin({{"DISPLAY", ":4999"}});
    const auto result = put("hi");
    ASSERT_TRUE(result);
    ASSERT_FALSE(*result);
    EXPECT_THAT(result->error().description, HasSubstr(":4999"));
}

TEST_F(X11Pasting, givesUpAfterTwoSecondsWhenTheXServerHangsAndWorksAgainWhenItDoes)
{
    ASSERT_TRUE(put("hi"));
    m_server->freeze();
    const auto began = std::chrono::steady_clock::now();
    const auto result = put("late");
    const auto took = std::chrono::steady_clock::now() - began;
    m_server->thaw();
    ASSERT_TRUE(result);
    EXPECT_FALSE(*result);
    EXPECT_GE(took, 1500ms);
    EXPECT_LT(took, 5s);
    ASSERT_TRUE(put("again"));
    EXPECT_EQ(read(), "again");
}

TEST_F(X11Pasting, givesUpAlsoWhenTheXServerHangsBeforeTheFirstConnection)
{
    m_server->freeze();
    const auto result = put("late");
    ASSERT_TRUE(result);
    EXPECT_FALSE(*result);
    const auto began = std::chrono::steady_clock::now();
    m_pasteboard.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - began, 5s);
    m_server->thaw();
}

TEST_F(X11Pasting, runsNoCompletionOnceItHasGone)
{
    bool hasRun = false;
    m_pasteboard->put("hi", false, [&hasRun](const Result &) { hasRun = true; });
    m_pasteboard.reset();
    m_io.restart();
    m_io.run_for(50ms);
    EXPECT_FALSE(hasRun);
}
