#include "platform/linux/ProcProcessTable.h"

#include "platform/linux/PosixProcessLauncher.h"
#include "testkit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <signal.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace stavelin::platform {
namespace {

struct Process
{
    const char *label;
    std::string commandName;
    char state;
    std::string executable; ///< empty: unreadable
    bool isNamed;           ///< "stavelin-daemon", which is exactly as long as a command name can be
};

void PrintTo(const Process &process, std::ostream *stream)
{
    *stream << process.label;
}

class ProcessNames : public testing::TestWithParam<Process>
{};

TEST_P(ProcessNames, areMatchedExactly)
{
    const Process &process = GetParam();
    const testkit::TemporaryFolder proc;
    std::filesystem::create_directory(proc.path() / "self-test"); // not a process
    const auto entry = proc.path() / "4711";
    std::filesystem::create_directory(entry);
    std::ofstream(entry / "stat") << "4711 (" << process.commandName << ") " << process.state << " 1 4711\n";
    if (!process.executable.empty())
        std::filesystem::create_symlink(process.executable, entry / "exe");

    EXPECT_EQ(ProcProcessTable(proc.path()).isProcessRunning("stavelin-daemon"), process.isNamed);
}

const Process processes[] = {
    {"the daemon", "stavelin-daemon", 'S', "/usr/libexec/stavelin/stavelin-daemon", true},
    {"running at this moment", "stavelin-daemon", 'R', "/usr/bin/stavelin-daemon", true},
    {"stopped", "stavelin-daemon", 'T', "/usr/bin/stavelin-daemon", true},
    {"another user's, whose executable cannot be read", "stavelin-daemon", 'S', "", true},
    {"run by an interpreter", "stavelin-daemon", 'S', "/usr/bin/python3.11", true},
    {"renamed its main thread", "worker", 'S', "/usr/bin/stavelin-daemon", true},
    {"updated while it runs", "stavelin-daemon", 'S', "/usr/bin/stavelin-daemon (deleted)", true},
    {"a zombie", "stavelin-daemon", 'Z', "", false},
    {"a longer name, cut by the kernel", "stavelin-daemon", 'S', "/usr/bin/stavelin-daemonize", false},
    {"a shorter name", "stavelin", 'S', "/usr/bin/stavelin", false},
    {"the name inside another", "my-stavelin-dae", 'S', "/usr/bin/my-stavelin-daemon", false},
    {"other case", "Stavelin-Daemon", 'S', "/usr/bin/Stavelin-Daemon", false},
    {"the name as a folder only", "sh", 'S', "/opt/stavelin-daemon/sh", false},
    {"a name with parentheses", "x) S (y", 'S', "/usr/bin/x", false},
};
INSTANTIATE_TEST_SUITE_P(ProcProcessTable, ProcessNames, testing::ValuesIn(processes));

TEST(ProcProcessTable, nothingRunsWhereThereIsNoProcFileSystem)
{
    const testkit::TemporaryFolder folder;
    EXPECT_FALSE(ProcProcessTable(folder.path() / "missing").isProcessRunning("stavelin-daemon"));
}

TEST(ProcProcessTable, aRealProcessIsFoundByItsWholeNameAndNotByAPartOfIt)
{
    const testkit::TemporaryFolder folder;
    const std::string name = "probe-with-a-rather-long-name-" + std::to_string(::getpid());
    std::filesystem::copy_file(STAVELIN_LAUNCH_PROBE, folder.path() / name);
    ProcProcessTable table;
    EXPECT_FALSE(table.isProcessRunning(name));

    PosixProcessLauncher launcher;
    const auto child = launcher.launch({.executable = folder.path() / name, .environment = {}});
    ASSERT_TRUE(child);
    EXPECT_TRUE(table.isProcessRunning(name));
    EXPECT_FALSE(table.isProcessRunning(name.substr(0, 15)));
    EXPECT_FALSE(table.isProcessRunning(name.substr(0, name.size() - 1)));
    ::kill(*child, SIGKILL);
}

TEST(ProcProcessTable, aRealZombieDoesNotCount)
{
    const std::string name = "z" + std::to_string(::getpid());
    const pid_t child = ::fork();
    if (child == 0) {
        ::prctl(PR_SET_NAME, name.c_str());
        ::_exit(0);
    }
    ASSERT_GT(child, 0);
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(ProcProcessTable().isProcessRunning(name));
    ::waitpid(child, nullptr, 0);
}

} // namespace
} // namespace stavelin::platform
