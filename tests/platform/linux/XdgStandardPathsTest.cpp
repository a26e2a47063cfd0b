#include "platform/linux/XdgStandardPaths.h"

#include "testkit/EnvironmentVariable.h"
#include "testkit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <pwd.h>
#include <unistd.h>

namespace stavelin::platform {
namespace {

using std::filesystem::path;
using testkit::EnvironmentVariable;

class InstalledFiles : public testing::Test
{
protected:
    static void makeFile(const path &file)
    {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << "content";
    }

    testkit::TemporaryFolder prefix;
    XdgStandardPaths paths{prefix.path() / "bin" / "stavelin"};
};

TEST_F(InstalledFiles, aResourceIsInTheShareFolderIfItIsThere)
{
    makeFile(prefix.path() / "share/stavelin/stavelin-daemon");
    EXPECT_EQ(paths.resource("stavelin-daemon"), prefix.path() / "share/stavelin/stavelin-daemon");
}

TEST_F(InstalledFiles, anAuxiliaryExecutableIsInTheLibexecFolderIfItIsThere)
{
    makeFile(prefix.path() / "libexec/stavelin/stavelin-daemon");
    EXPECT_EQ(paths.auxiliaryExecutable("stavelin-daemon"),
              prefix.path() / "libexec/stavelin/stavelin-daemon");
}

TEST_F(InstalledFiles, bothAreBesideTheApplicationOtherwise)
{
    EXPECT_EQ(paths.resource("stavelin-daemon"), prefix.path() / "bin/stavelin-daemon");
    EXPECT_EQ(paths.auxiliaryExecutable("stavelin-daemon"), prefix.path() / "bin/stavelin-daemon");
}

class UserFolders : public testing::Test
{
protected:
    XdgStandardPaths paths{"/usr/bin/stavelin"};
};

TEST_F(UserFolders, homeIsTheVariablesValue)
{
    const EnvironmentVariable home("HOME", "/somewhere/else");
    EXPECT_EQ(paths.home(), path("/somewhere/else"));
}

TEST_F(UserFolders, homeComesFromTheUserDatabaseWhenTheVariableIsMissingOrNotAbsolute)
{
    const passwd *user = ::getpwuid(::getuid());
    ASSERT_NE(user, nullptr);
    const path expected = user->pw_dir;
    for (const std::optional<std::string> &value : {std::optional<std::string>(), {""}, {"relative"}}) {
        const EnvironmentVariable home("HOME", value);
        EXPECT_EQ(paths.home(), expected) << value.value_or("(missing)");
    }
}

TEST_F(UserFolders, applicationSupportIsTheDataHomeThatTheUserSet)
{
    const EnvironmentVariable dataHome("XDG_DATA_HOME", "/data");
    EXPECT_EQ(paths.applicationSupport(), path("/data"));
}

TEST_F(UserFolders, aMissingOrRelativeDataHomeMeansTheDefaultInTheHomeFolder)
{
    const EnvironmentVariable home("HOME", "/home/someone");
    for (const std::optional<std::string> &value : {std::optional<std::string>(), {""}, {"data"}}) {
        const EnvironmentVariable dataHome("XDG_DATA_HOME", value);
        EXPECT_EQ(paths.applicationSupport(), path("/home/someone/.local/share"))
            << value.value_or("(missing)");
    }
}

} // namespace
} // namespace stavelin::platform
