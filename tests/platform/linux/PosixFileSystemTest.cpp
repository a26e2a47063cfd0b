#include "platform/linux/PosixFileSystem.h"

#include "testkit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sys/stat.h>

namespace stavelin::platform {
namespace {

using std::filesystem::perms;

class PosixFileSystemTest : public testing::Test
{
protected:
    [[nodiscard]] std::filesystem::path makeFile(const char *name, perms mode) const
    {
        const auto path = folder.path() / name;
        std::ofstream(path) << "#!/bin/sh\n";
        std::filesystem::permissions(path, mode);
        return path;
    }
    [[nodiscard]] static perms modeOf(const std::filesystem::path &path)
    {
        return std::filesystem::status(path).permissions();
    }

    testkit::TemporaryFolder folder;
    PosixFileSystem files;
};

TEST_F(PosixFileSystemTest, aFileWithTheExecuteRightIsExecutable)
{
    EXPECT_TRUE(files.isExecutableFile(makeFile("program", perms::owner_all)));
}

TEST_F(PosixFileSystemTest, aLinkToAnExecutableFileIsExecutable)
{
    std::filesystem::create_symlink(makeFile("program", perms::owner_all), folder.path() / "link");
    EXPECT_TRUE(files.isExecutableFile(folder.path() / "link"));
}

TEST_F(PosixFileSystemTest, aFileWithoutTheExecuteRightIsNotExecutable)
{
    EXPECT_FALSE(files.isExecutableFile(makeFile("text", perms::owner_read | perms::owner_write)));
}

TEST_F(PosixFileSystemTest, aFolderIsNotAnExecutableFile)
{
    EXPECT_FALSE(files.isExecutableFile(folder.path()));
}

TEST_F(PosixFileSystemTest, aMissingFileIsNotExecutable)
{
    EXPECT_FALSE(files.isExecutableFile(folder.path() / "nothing"));
}

TEST_F(PosixFileSystemTest, newFoldersAreForThisUserAloneWhateverTheUmask)
{
    const mode_t previous = ::umask(0177);
    const bool made = files.createDirectories(folder.path() / "Stavelin" / "logs");
    ::umask(previous);
    EXPECT_TRUE(made);
    EXPECT_EQ(modeOf(folder.path() / "Stavelin"), perms::owner_all);
    EXPECT_EQ(modeOf(folder.path() / "Stavelin" / "logs"), perms::owner_all);
}

TEST_F(PosixFileSystemTest, foldersThatExistKeepTheirMode)
{
    const auto existing = folder.path() / "existing";
    std::filesystem::create_directory(existing);
    std::filesystem::permissions(existing, perms::owner_all | perms::group_read);
    EXPECT_TRUE(files.createDirectories(existing));
    EXPECT_TRUE(files.createDirectories(existing / "new"));
    EXPECT_EQ(modeOf(existing), perms::owner_all | perms::group_read);
}

TEST_F(PosixFileSystemTest, aFileInTheWayMakesTheCreationFail)
{
    const auto file = makeFile("file", perms::owner_read);
    EXPECT_FALSE(files.createDirectories(file));
    EXPECT_FALSE(files.createDirectories(file / "logs"));
}

} // namespace
} // namespace stavelin::platform
