#include "model/FileReference.h"

#include "support/IsoDate.h"

#include <gtest/gtest.h>

namespace stavelin::model {
namespace {

using namespace std::chrono_literals;

const support::Timestamp now{std::chrono::seconds(1'700'000'000)};

daemon::FileReferenceData wireFile()
{
    return {.id = "F",
            .file_path = "/a/b.png",
            .file_name = "b.png",
            .file_size = 12,
            .file_type = "PNG",
            .is_image = true,
            .thumbnail = "AQI=",
            .sort_order = 4,
            .added_at = "2024-05-01T10:00:00Z"};
}

TEST(FileReference, isBuiltFromTheWire)
{
    const FileReference file = makeFileReference(wireFile(), now);
    EXPECT_EQ(file.id, "F");
    EXPECT_EQ(file.filePath, "/a/b.png");
    EXPECT_EQ(file.fileName, "b.png");
    EXPECT_EQ(file.fileSize, 12);
    EXPECT_EQ(file.fileType, "PNG");
    EXPECT_TRUE(file.isImage);
    EXPECT_EQ(file.thumbnailData, (std::vector{std::byte{1}, std::byte{2}}));
    EXPECT_EQ(file.sortOrder, 4);
    EXPECT_EQ(file.addedAt, support::parseIsoDate("2024-05-01T10:00:00Z"));
}

TEST(FileReference, lacksWhatTheWireLacks)
{
    auto data = wireFile();
    data.file_size.reset();
    data.file_type.reset();
    data.thumbnail.reset();
    const FileReference file = makeFileReference(std::move(data), now);
    EXPECT_FALSE(file.fileSize);
    EXPECT_FALSE(file.fileType);
    EXPECT_FALSE(file.thumbnailData);
}

TEST(FileReference, hasNoThumbnailWhenItsTextIsNotStrictBase64)
{
    for (const auto *thumbnail : {"AQI", "AQ I=", "AQI=\n", "%%%%", "AQJ="}) {
        auto data = wireFile();
        data.thumbnail = thumbnail;
        EXPECT_FALSE(makeFileReference(std::move(data), now).thumbnailData) << thumbnail;
    }
}

TEST(FileReference, withADateThatDoesNotParseIsFromNow)
{
    auto data = wireFile();
    data.added_at = "2024-05-01T10:00:00.123Z";
    EXPECT_EQ(makeFileReference(std::move(data), now).addedAt, now);
}

TEST(FileReference, listsKeepTheOrderOfTheWireNotTheSortOrder)
{
    auto first = wireFile();
    auto second = wireFile();
    first.id = "first";
    second.id = "second";
    second.sort_order = 0;
    const auto files = makeFileReferences({first, second}, now);
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files[0].id, "first");
    EXPECT_EQ(files[1].id, "second");
}

TEST(FileReference, listsAreTheSameWhateverIsNotSeenOnTheBoard)
{
    const std::vector<FileReference> files{makeFileReference(wireFile(), now)};
    auto other = files;
    other[0].fileName = "x";
    other[0].fileSize = 99;
    other[0].fileType.reset();
    other[0].isImage = false;
    other[0].sortOrder = 7;
    other[0].addedAt += 1h;
    other[0].thumbnailData = {std::byte{9}};
    EXPECT_TRUE(sameFileReferences(files, other));
    EXPECT_TRUE(sameFileReferences({}, {}));
}

TEST(FileReference, listsDifferInLengthIdPathOrPresenceOfAThumbnail)
{
    const std::vector<FileReference> files{makeFileReference(wireFile(), now)};
    EXPECT_FALSE(sameFileReferences(files, {}));
    auto other = files;
    other[0].id = "G";
    EXPECT_FALSE(sameFileReferences(files, other));
    other = files;
    other[0].filePath = "/a/c.png";
    EXPECT_FALSE(sameFileReferences(files, other));
    other = files;
    other[0].thumbnailData.reset();
    EXPECT_FALSE(sameFileReferences(files, other));
    EXPECT_FALSE(sameFileReferences(other, files));
}

} // namespace
} // namespace stavelin::model
