#include "platform/x11/selection/PrivateXServer.h"
#include "platform/x11/selection/Requestor.h"
#include "server/DaemonProcess.h"
#include "server/TestClient.h"
#include "testkit/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace stavelin;
using testing::HasSubstr;
using testkit::DaemonProcess;
using testkit::TestClient;

namespace {

constexpr std::uint16_t port = 9847;
constexpr const char *ready = "Listening on ws://127.0.0.1:9847";

/// The program as it is shipped, on its own port, with a home folder of the test's.
class DaemonProgram : public testing::Test
{
protected:
    std::unique_ptr<DaemonProcess> start(std::vector<std::string> environment = {"RUST_LOG=info"})
    {
        environment.push_back("HOME=" + m_home.path().string());
        return std::make_unique<DaemonProcess>(std::vector<std::string>{}, std::move(environment));
    }

    /// Stores a text and waits for the answer.
    void store(const std::string &content)
    {
        TestClient client(m_io, port);
        ASSERT_TRUE(client.read());
        client.send(R"({"id":"R1","type":"request","method":"clipboard.set_slot",)"
                    R"("payload":{"slot_index":7,"content":")" +
                    content + R"("}})");
        ASSERT_TRUE(client.read());
        EXPECT_EQ(client.read(), R"({"id":"R1","type":"response"})");
    }
    std::string state()
    {
        TestClient client(m_io, port);
        return client.read().value_or("no state");
    }

    boost::asio::io_context m_io{1};
    testkit::TemporaryFolder m_home;
};

} // namespace

TEST_F(DaemonProgram, saysHowItIsUsedAndWhichVersionItIsWithoutStarting)
{
    DaemonProcess help({"--help"}, {});
    EXPECT_EQ(help.exitStatus(), 0);
    EXPECT_THAT(help.output(), HasSubstr("Usage: stavelin-daemon"));
    DaemonProcess version({"--version"}, {});
    EXPECT_EQ(version.exitStatus(), 0);
    EXPECT_THAT(version.output(), testing::MatchesRegex("stavelin-daemon [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    DaemonProcess wrong({"--nonsense"}, {});
    EXPECT_EQ(wrong.exitStatus(), 2);
    EXPECT_THAT(wrong.output(), HasSubstr("Usage: stavelin-daemon"));
}

TEST_F(DaemonProgram, keepsAStoredTextThroughAKill)
{
    auto daemon = start();
    ASSERT_TRUE(daemon->says(ready)) << daemon->output();
    store("kept through a kill");
    daemon->signal(SIGKILL);
    EXPECT_EQ(daemon->exitStatus(), std::nullopt);
    daemon = start();
    ASSERT_TRUE(daemon->says(ready)) << daemon->output();
    EXPECT_THAT(state(), HasSubstr("kept through a kill"));
}

TEST_F(DaemonProgram, endsCleanlyOnATermination)
{
    for (const int number : {SIGTERM, SIGINT}) {
        auto daemon = start();
        ASSERT_TRUE(daemon->says(ready)) << daemon->output();
        store("text");
        TestClient client(m_io, port);
        ASSERT_TRUE(client.read());
        daemon->signal(number);
        EXPECT_FALSE(client.read());
        EXPECT_EQ(client.closeCode(), 1001);
        EXPECT_EQ(daemon->exitStatus(), 0);
        const auto folder = m_home.path() / ".local" / "share" / "Stavelin";
        EXPECT_TRUE(std::filesystem::exists(folder / "slots.sqlite3"));
        EXPECT_FALSE(
            std::filesystem::exists(folder / "slots.sqlite3-wal")); // everything is in the database itself
    }
}

TEST_F(DaemonProgram, outlivesAHangUp)
{
    const auto daemon = start();
    ASSERT_TRUE(daemon->says(ready)) << daemon->output();
    daemon->signal(SIGHUP);
    EXPECT_THAT(state(), HasSubstr("state.updated"));
}

TEST_F(DaemonProgram, leavesThePortAndTheStoreToTheOneThatHasThem)
{
    const auto first = start();
    ASSERT_TRUE(first->says(ready)) << first->output();
    const testkit::TemporaryFolder otherHome;
    DaemonProcess second({}, {"HOME=" + otherHome.path().string()});
    EXPECT_EQ(second.exitStatus(), 1);
    EXPECT_THAT(second.output(), HasSubstr("running already"));
    EXPECT_TRUE(std::filesystem::is_empty(otherHome.path()));
    EXPECT_THAT(state(), HasSubstr("state.updated"));
}

TEST_F(DaemonProgram, writesNoTextIntoItsLog)
{
    auto daemon = start({"RUST_LOG=trace"});
    ASSERT_TRUE(daemon->says(ready)) << daemon->output();
    store("the secret text");
    {
        TestClient client(m_io, port);
        ASSERT_TRUE(client.read());
        client.send("the secret text, no JSON");
        client.send(R"({"id":"R2","type":"request","method":"the secret method"})");
        ASSERT_TRUE(client.read());
    }
    daemon->signal(SIGTERM);
    EXPECT_EQ(daemon->exitStatus(), 0);
    EXPECT_THAT(daemon->output(), HasSubstr("Failed to decode message"));
    EXPECT_THAT(daemon->output(), testing::Not(HasSubstr("secret")));
}

TEST_F(DaemonProgram, isSilentWhenItIsToldTo)
{
    auto daemon = start({"RUST_LOG=off"});
    // It says nothing, so it is ready when it can be spoken to.
    ASSERT_TRUE(testkit::runUntil(m_io, [this] { return TestClient(m_io, port).isOpen(); }));
    daemon->signal(SIGTERM);
    EXPECT_EQ(daemon->exitStatus(), 0);
    EXPECT_EQ(daemon->output(), "");
}

TEST_F(DaemonProgram, findsTheHomeFolderOfTheProcessThatStartedIt)
{
    ASSERT_EQ(::unsetenv("XDG_DATA_HOME"), 0);
    // What /proc shows of this process is what it was started with, so another one stands between it and the
    // daemon.
    const testkit::TemporaryFolder place;
    std::ofstream(place.path() / "start")
        << "#!/bin/sh\nenv -i RUST_LOG=info \"$1\" &\necho $! >\"$2\"\nwait\n";
    std::filesystem::permissions(place.path() / "start", std::filesystem::perms::owner_all);
    const std::string pidFile = place.path() / "pid";
    const pid_t starter = ::fork();
    if (starter == 0) {
        ::setenv("HOME", m_home.path().c_str(), 1);
        ::execl((place.path() / "start").c_str(), "start", STAVELIN_DAEMON, pidFile.c_str(), nullptr);
        ::_exit(127);
    }
    EXPECT_TRUE(testkit::runUntil(m_io, [this] { return TestClient(m_io, port).isOpen(); }));
    EXPECT_TRUE(std::filesystem::exists(m_home.path() / ".local" / "share" / "Stavelin" / "slots.sqlite3"));
    pid_t daemon = 0;
    std::ifstream(pidFile) >> daemon;
    ASSERT_GT(daemon, 0);
    ::kill(daemon, SIGTERM);
    ::waitpid(starter, nullptr, 0);
}

TEST_F(DaemonProgram, dumpsNoCore)
{
    const auto daemon = start();
    ASSERT_TRUE(daemon->says(ready)) << daemon->output();
    std::ifstream limits("/proc/" + std::to_string(daemon->process()) + "/limits");
    std::string line;
    while (std::getline(limits, line) && !line.starts_with("Max core file size")) {
    }
    EXPECT_THAT(line, testing::ContainsRegex("Max core file size +0 +0 "));
}

TEST_F(DaemonProgram, offersAKeyWithTheHintThatClipboardHistoriesLeaveItAloneAndNothingElseSo)
{
    const auto xServer = testkit::PrivateXServer::start();
    ASSERT_TRUE(xServer) << "no Xvfb";
    const auto daemon = start({"RUST_LOG=info", "DISPLAY=" + xServer->display()});
    ASSERT_TRUE(daemon->says(ready)) << daemon->output();
    testkit::Requestor history(xServer->display());
    const auto hintOf = [&](const std::string &text) -> std::optional<std::string> {
        store(text);
        TestClient client(m_io, port);
        EXPECT_TRUE(client.read());
        client.send(
            R"({"id":"R1","type":"request","method":"clipboard.paste_slot","payload":{"slot_index":7}})");
        EXPECT_THAT(client.read().value_or(""), HasSubstr(text));
        history.ask("CLIPBOARD", "x-kde-passwordManagerHint");
        EXPECT_TRUE(testkit::runUntil(m_io, [&history] {
            history.handleEvents();
            return history.hasAnswer();
        }));
        return history.wasRefused() ? std::nullopt : std::optional(history.bytes());
    };
    EXPECT_EQ(hintOf("sk-abcdefghijklmnopqrstuvwxyz0123456789"), "secret");
    EXPECT_EQ(hintOf("an ordinary line of text"), std::nullopt);
}

TEST_F(DaemonProgram, answersAPasteWithoutADisplay)
{
    const auto daemon = start();
    ASSERT_TRUE(daemon->says(ready)) << daemon->output();
    store("text");
    TestClient client(m_io, port);
    ASSERT_TRUE(client.read());
    client.send(R"({"id":"R1","type":"request","method":"clipboard.paste_slot","payload":{"slot_index":7}})");
    EXPECT_THAT(client.read().value_or(""), HasSubstr("pasteboard_unavailable"));
}
