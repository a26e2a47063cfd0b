#include "model/LoadFullImage.h"

#include <gtest/gtest.h>

namespace stavelin::model {
namespace {

FileReference fileAt(std::string path, bool isImage)
{
    FileReference file;
    file.filePath = std::move(path);
    file.isImage = isImage;
    return file;
}

const auto exists = [](const std::string & /*path*/) { return true; };
const auto isGone = [](const std::string & /*path*/) { return false; };
const auto decodesToItsPath = [](const std::string &path) { return std::optional(path); };
const auto decodesToNothing = [](const std::string & /*path*/) { return std::optional<std::string>(); };

TEST(LoadFullImage, decodesTheFileAtThePath)
{
    EXPECT_EQ(loadFullImage(fileAt("/a.png", true), exists, decodesToItsPath), "/a.png");
}

TEST(LoadFullImage, yieldsNothingForAFileThatIsGone)
{
    EXPECT_FALSE(loadFullImage(fileAt("/a.png", true), isGone, decodesToItsPath));
}

TEST(LoadFullImage, yieldsNothingForAFileThatTheDaemonDoesNotCallAnImage)
{
    EXPECT_FALSE(loadFullImage(fileAt("/a.png", false), exists, decodesToItsPath));
}

TEST(LoadFullImage, yieldsNothingForAFileThatDoesNotDecode)
{
    EXPECT_FALSE(loadFullImage(fileAt("/a.png", true), exists, decodesToNothing));
}

TEST(LoadFullImage, readsAgainAtEveryCall)
{
    int reads = 0;
    const auto counts = [&reads](const std::string & /*path*/) { return std::optional(++reads); };
    const FileReference file = fileAt("/a.png", true);
    EXPECT_EQ(loadFullImage(file, exists, counts), 1);
    EXPECT_EQ(loadFullImage(file, exists, counts), 2);
}

} // namespace
} // namespace stavelin::model
