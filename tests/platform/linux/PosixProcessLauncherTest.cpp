#include "platform/linux/PosixProcessLauncher.h"

#include "testkit/TemporaryFolder.h"
#include "testkit/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <fstream>
#include <signal.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace stavelin::platform {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testkit::waitUntil;

std::string contentOf(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

std::filesystem::path targetOf(const std::filesystem::path &link)
{
    std::error_code error;
    return std::filesystem::read_symlink(link, error);
}

class PosixProcessLauncherTest : public testing::Test
{
protected:
    ~PosixProcessLauncherTest() override
    {
        if (child > 0)
            ::kill(child, SIGKILL);
    }

    [[nodiscard]] static LaunchRequest probe()
    {
        return {.executable = STAVELIN_LAUNCH_PROBE, .environment = {{"RUST_LOG", "info"}}};
    }
    /// Launches the probe into a log file that exists, and waits for its report.
    void launchWithLog(LaunchRequest request = probe())
    {
        request.outputFile = log;
        if (!std::filesystem::exists(log))
            std::ofstream{log};
        const auto launched = launcher.launch(request);
        ASSERT_TRUE(launched) << launched.error().description;
        child = *launched;
        ASSERT_TRUE(waitUntil([this] { return contentOf(log).find("ready\n") != std::string::npos; }))
            << contentOf(log);
    }
    [[nodiscard]] std::vector<std::string> reportLines(std::string_view start) const
    {
        std::vector<std::string> lines;
        std::istringstream report(contentOf(log));
        for (std::string line; std::getline(report, line) && line != "ready";) {
            if (line.starts_with(start))
                lines.push_back(line);
        }
        return lines;
    }

    testkit::TemporaryFolder folder;
    std::filesystem::path log = folder.path() / "daemon.log";
    PosixProcessLauncher launcher;
    int child = 0;
};

TEST_F(PosixProcessLauncherTest, theChildHasExactlyTheVariablesThatItIsGiven)
{
    launchWithLog();
    EXPECT_THAT(reportLines("variable"), ElementsAre("variable RUST_LOG=info"));
}

TEST_F(PosixProcessLauncherTest, theChildIsInASessionOfItsOwn)
{
    launchWithLog();
    EXPECT_THAT(reportLines("session"), ElementsAre("session " + std::to_string(child)));
}

TEST_F(PosixProcessLauncherTest, theChildsParentIsThisProcess)
{
    launchWithLog();
    EXPECT_THAT(reportLines("parent"), ElementsAre("parent " + std::to_string(::getpid())));
}

TEST_F(PosixProcessLauncherTest, theChildGetsNoDescriptorButTheStandardThree)
{
    const int withoutCloseOnExec = ::open("/dev/zero", O_RDONLY);
    launchWithLog();
    ::close(withoutCloseOnExec);
    EXPECT_THAT(reportLines("descriptor"),
                ElementsAre("descriptor 0: /dev/null", "descriptor 1: " + log.native(),
                            "descriptor 2: " + log.native()));
}

TEST_F(PosixProcessLauncherTest, theChildStartsWithAllSignalsUnblockedAndAtTheirDefaults)
{
    sigset_t blocked;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    ::signal(SIGPIPE, SIG_IGN);
    launchWithLog();
    ::signal(SIGPIPE, SIG_DFL);
    ::pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
    EXPECT_THAT(reportLines("signal"), IsEmpty());
}

TEST_F(PosixProcessLauncherTest, anExistingLogIsOverwrittenFromItsStartAndNotCut)
{
    constexpr std::size_t oldSize = 10'000;
    std::ofstream(log) << std::string(oldSize, 'x');
    launchWithLog();
    const std::string content = contentOf(log);
    EXPECT_EQ(content.size(), oldSize);
    EXPECT_THAT(content, StartsWith("report\n"));
    EXPECT_EQ(content.back(), 'x');
}

TEST_F(PosixProcessLauncherTest, withoutAnExistingLogTheChildKeepsThisProcesssOutputAndNoLogIsMade)
{
    LaunchRequest request = probe();
    request.outputFile = log;
    const auto launched = launcher.launch(request);
    ASSERT_TRUE(launched);
    child = *launched;
    const std::filesystem::path descriptors = "/proc/" + std::to_string(child) + "/fd";
    EXPECT_EQ(targetOf(descriptors / "1"), targetOf("/proc/self/fd/1"));
    EXPECT_EQ(targetOf(descriptors / "2"), targetOf("/proc/self/fd/2"));
    EXPECT_FALSE(std::filesystem::exists(log));
}

TEST_F(PosixProcessLauncherTest, aLogThatCannotBeOpenedLeavesTheChildWithThisProcesssOutput)
{
    std::filesystem::create_directory(log); // a folder cannot be opened for writing, not even by root
    LaunchRequest request = probe();
    request.outputFile = log;
    const auto launched = launcher.launch(request);
    ASSERT_TRUE(launched);
    child = *launched;
    EXPECT_EQ(targetOf("/proc/" + std::to_string(child) + "/fd/1"), targetOf("/proc/self/fd/1"));
}

TEST_F(PosixProcessLauncherTest, aLaunchWithoutOneOfTheStandardDescriptorsStillWritesTheLog)
{
    const int savedInput = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
    ::close(STDIN_FILENO);
    launchWithLog();
    ::dup2(savedInput, STDIN_FILENO);
    ::close(savedInput);
    EXPECT_THAT(reportLines("descriptor"), Contains("descriptor 1: " + log.native()));
}

TEST_F(PosixProcessLauncherTest, aChildThatEndsLeavesNoZombie)
{
    LaunchRequest request = probe();
    request.environment["EXIT_AT_ONCE"] = "1";
    launchWithLog(request);
    const std::filesystem::path entry = "/proc/" + std::to_string(child);
    EXPECT_TRUE(waitUntil([&] { return !std::filesystem::exists(entry); }));
    child = 0;
}

TEST_F(PosixProcessLauncherTest, theChildSurvivesTheKillingOfItsStartersProcessGroup)
{
    std::ofstream{log};
    int pipeEnds[2];
    ASSERT_EQ(::pipe2(pipeEnds, O_CLOEXEC), 0);
    const pid_t starter = ::fork();
    if (starter == 0) {
        ::setpgid(0, 0);
        LaunchRequest request = probe();
        request.outputFile = log;
        const int launched = launcher.launch(request).value_or(0);
        [[maybe_unused]] const auto written = ::write(pipeEnds[1], &launched, sizeof launched);
        for (;;)
            ::pause();
    }
    ASSERT_GT(starter, 0);
    ASSERT_EQ(::read(pipeEnds[0], &child, sizeof child), static_cast<ssize_t>(sizeof child));
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
    ASSERT_GT(child, 0);
    ASSERT_TRUE(waitUntil([this] { return contentOf(log).find("ready\n") != std::string::npos; }));

    ASSERT_EQ(::kill(-starter, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(starter, &status, 0), starter);
    ASSERT_TRUE(WIFSIGNALED(status));

    ASSERT_EQ(::kill(child, SIGUSR1), 0);
    EXPECT_TRUE(waitUntil([this] { return contentOf(log).find("alive\n") != std::string::npos; }));
}

TEST_F(PosixProcessLauncherTest, aMissingExecutableIsAnErrorThatSaysSo)
{
    const auto launched = launcher.launch({.executable = folder.path() / "nothing", .environment = {}});
    ASSERT_FALSE(launched);
    EXPECT_EQ(launched.error().description, "No such file or directory");
}

TEST_F(PosixProcessLauncherTest, aFileThatIsNotExecutableIsAnErrorThatSaysSo)
{
    std::ofstream(folder.path() / "plain") << "text";
    const auto launched = launcher.launch({.executable = folder.path() / "plain", .environment = {}});
    ASSERT_FALSE(launched);
    EXPECT_EQ(launched.error().description, "Permission denied");
}

} // namespace
} // namespace stavelin::platform
