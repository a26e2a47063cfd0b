#include "daemon/link/DaemonLifecycleManager.h"

#include "testkit/FakeFileSystem.h"
#include "testkit/FakeProcessLauncher.h"
#include "testkit/FakeProcessTable.h"
#include "testkit/FakeStandardPaths.h"
#include "testkit/RecordingLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace stavelin::daemon {
namespace {

using std::filesystem::path;
using testing::ElementsAre;
using testing::IsEmpty;

const path resource = "/prefix/share/stavelin-daemon";
const path auxiliary = "/prefix/libexec/stavelin-daemon";
const path debugBuild =
    "/home/u/Documents/projects/swift/Stavelin/stavelin-daemon/target/debug/stavelin-daemon";
const path releaseBuild =
    "/home/u/Documents/projects/swift/Stavelin/stavelin-daemon/target/release/stavelin-daemon";
const path installed = "/home/u/.local/share/Stavelin/stavelin-daemon";

class DaemonLifecycleManagerTest : public testing::Test
{
protected:
    DaemonLifecycleManagerTest()
    {
        paths.resourceFolder = "/prefix/share";
        paths.auxiliaryFolder = "/prefix/libexec";
        paths.homeFolder = "/home/u";
        paths.applicationSupportFolder = "/home/u/.local/share";
    }

    testkit::FakeProcessTable processes;
    testkit::FakeProcessLauncher launcher;
    testkit::FakeStandardPaths paths;
    testkit::FakeFileSystem files;
    testkit::RecordingLog log;
    DaemonLifecycleManager manager{processes, launcher, paths, files, log};
};

TEST_F(DaemonLifecycleManagerTest, theDaemonRunsWhenAProcessHasExactlyItsName)
{
    EXPECT_FALSE(manager.isDaemonRunning());
    processes.running = {"stavelin", "stavelin-daemon2"};
    EXPECT_FALSE(manager.isDaemonRunning());
    processes.running = {"stavelin-daemon"};
    EXPECT_TRUE(manager.isDaemonRunning());
}

TEST_F(DaemonLifecycleManagerTest, aRunningDaemonIsNotLaunchedASecondTime)
{
    processes.running = {"stavelin-daemon"};
    files.executables = {resource};
    manager.startDaemon();
    EXPECT_THAT(launcher.launched, IsEmpty());
    EXPECT_THAT(files.createdFolders, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(DaemonLifecycleManagerTest, theFirstExecutableInSearchOrderIsLaunched)
{
    std::vector<path> candidates = {resource, auxiliary, debugBuild, releaseBuild, installed};
    while (!candidates.empty()) {
        files.executables = {candidates.begin(), candidates.end()};
        manager.startDaemon();
        ASSERT_FALSE(launcher.launched.empty());
        EXPECT_EQ(launcher.launched.back().executable, candidates.front());
        candidates.erase(candidates.begin());
    }
}

TEST_F(DaemonLifecycleManagerTest, withoutAnyExecutableOneLineListsAllCandidatesInSearchOrder)
{
    manager.startDaemon();
    EXPECT_THAT(launcher.launched, IsEmpty());
    EXPECT_EQ(manager.daemonProcess(), std::nullopt);
    EXPECT_THAT(log.lines(),
                ElementsAre("Daemon executable not found. Searched: [\"" + resource.native() + "\", \"" +
                            auxiliary.native() + "\", \"" + debugBuild.native() + "\", \"" +
                            releaseBuild.native() + "\", \"" + installed.native() + "\"]"));
}

TEST_F(DaemonLifecycleManagerTest, placesThatCannotBeDeterminedAreLeftOut)
{
    paths.resourceFolder.reset();
    paths.homeFolder.reset();
    manager.startDaemon();
    EXPECT_THAT(log.lines(), ElementsAre("Daemon executable not found. Searched: [\"" + auxiliary.native() +
                                         "\", \"" + installed.native() + "\"]"));
}

TEST_F(DaemonLifecycleManagerTest, withNoPlaceAtAllTheListIsEmpty)
{
    paths = {};
    manager.startDaemon();
    EXPECT_THAT(log.lines(), ElementsAre("Daemon executable not found. Searched: []"));
}

TEST_F(DaemonLifecycleManagerTest, aQuotationMarkInAPathIsEscapedInTheList)
{
    paths = {};
    paths.auxiliaryFolder = "/a \"b\"\\c";
    manager.startDaemon();
    EXPECT_THAT(log.lines(),
                ElementsAre(R"(Daemon executable not found. Searched: ["/a \"b\"\\c/stavelin-daemon"])"));
}

TEST_F(DaemonLifecycleManagerTest, theDaemonGetsOneVariableAndTheLogFile)
{
    files.executables = {auxiliary};
    manager.startDaemon();
    ASSERT_EQ(launcher.launched.size(), 1U);
    const platform::LaunchRequest &request = launcher.launched[0];
    EXPECT_THAT(request.environment, ElementsAre(std::pair("RUST_LOG", "info")));
    EXPECT_EQ(request.outputFile, path("/home/u/.local/share/Stavelin/logs/daemon.log"));
    EXPECT_THAT(files.createdFolders, ElementsAre(path("/home/u/.local/share/Stavelin/logs")));
}

TEST_F(DaemonLifecycleManagerTest, aLaunchIsRememberedAndLogged)
{
    files.executables = {auxiliary};
    manager.startDaemon();
    EXPECT_EQ(manager.daemonProcess(), 1001);
    EXPECT_THAT(log.lines(), ElementsAre("Daemon started at " + auxiliary.native()));
}

TEST_F(DaemonLifecycleManagerTest, aLogFolderThatCannotBeMadeIsNoReasonNotToLaunch)
{
    files.executables = {auxiliary};
    files.refusesFolders = true;
    manager.startDaemon();
    EXPECT_THAT(log.lines(), ElementsAre("Daemon started at " + auxiliary.native()));
}

TEST_F(DaemonLifecycleManagerTest, withoutADataFolderTheDaemonKeepsTheApplicationsOutput)
{
    files.executables = {auxiliary};
    paths.applicationSupportFolder.reset();
    manager.startDaemon();
    ASSERT_EQ(launcher.launched.size(), 1U);
    EXPECT_EQ(launcher.launched[0].outputFile, std::nullopt);
    EXPECT_THAT(files.createdFolders, IsEmpty());
}

TEST_F(DaemonLifecycleManagerTest, aFailedLaunchIsOneLineWithItsReason)
{
    files.executables = {auxiliary};
    launcher.failure = platform::LaunchError{.description = "Exec format error"};
    manager.startDaemon();
    EXPECT_EQ(manager.daemonProcess(), std::nullopt);
    EXPECT_THAT(log.lines(), ElementsAre("Failed to start daemon: Exec format error"));
}

} // namespace
} // namespace stavelin::daemon
