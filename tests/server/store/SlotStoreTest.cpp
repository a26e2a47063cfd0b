#include "server/store/SlotStore.h"

#include "server/store/StoreLock.h"
#include "testkit/RecordingLog.h"
#include "testkit/TemporaryFolder.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace stavelin;
using namespace std::chrono_literals;
using server::SlotStore;
using testing::Contains;
using testing::HasSubstr;

namespace {

class SlotStorage : public testing::Test
{
protected:
    std::unique_ptr<SlotStore> open()
    {
        return std::make_unique<SlotStore>(m_folder, m_log, [this] { return m_now; });
    }

    void executeSql(const std::string &sql) const
    {
        sqlite3 *database = nullptr;
        ASSERT_EQ(sqlite3_open((m_folder / "slots.sqlite3").c_str(), &database), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database);
        sqlite3_close(database);
    }

    [[nodiscard]] std::vector<std::string> fileNames() const
    {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(m_folder))
            names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }

    void overwrite(std::size_t offset, const std::string &bytes) const
    {
        std::fstream file(m_folder / "slots.sqlite3", std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(offset));
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    [[nodiscard]] static mode_t modeOf(const std::filesystem::path &path)
    {
        struct stat status
        {};
        return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    testkit::TemporaryFolder m_temporary;
    std::filesystem::path m_folder = m_temporary.path() / "data" / "Stavelin";
    support::Timestamp m_now{std::chrono::seconds(1714557600)};
    testkit::RecordingLog m_lines;
    server::LeveledLog m_log{m_lines, server::LogLevel::trace, [this] { return m_now; }};
};

} // namespace

TEST_F(SlotStorage, beginsWithNineEmptySlots)
{
    const auto store = open();
    ASSERT_EQ(store->slots().size(), 9U);
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(store->slots()[i].slot_index, static_cast<std::int64_t>(i + 1));
        EXPECT_EQ(store->slots()[i].content, "");
        EXPECT_EQ(store->slots()[i].updated_at, "2024-05-01T10:00:00Z");
    }
    EXPECT_TRUE(m_lines.lines().empty());
}

TEST_F(SlotStorage, keepsTextsAndTheirDatesOverARestart)
{
    const std::string odd("line\n\"quoted\" \\ \xF0\x9F\x93\x8B and a zero: \0.", 36);
    {
        const auto store = open();
        m_now += 90s;
        ASSERT_TRUE(store->set(3, odd));
        ASSERT_TRUE(store->set(9, "nine"));
        ASSERT_TRUE(store->set(9, ""));
    }
    m_now += 1h;
    const auto store = open();
    EXPECT_EQ(store->slot(3).content, odd);
    EXPECT_EQ(store->slot(3).updated_at, "2024-05-01T10:01:30Z");
    EXPECT_EQ(store->slot(9).content, "");
    EXPECT_EQ(store->slot(9).updated_at, "2024-05-01T10:01:30Z");
    EXPECT_EQ(store->slot(1).updated_at, "2024-05-01T10:00:00Z");
}

TEST_F(SlotStorage, keepsALargeText)
{
    const std::string large(20 * 1024 * 1024, 'x');
    ASSERT_TRUE(open()->set(1, large));
    EXPECT_TRUE(open()->slot(1).content == large);
}

TEST_F(SlotStorage, isForTheUserAloneWhateverTheUmask)
{
    const mode_t before = ::umask(0);
    std::filesystem::create_directories(m_folder);
    const auto store = open();
    const auto stored = store->set(1, "hi");
    ::umask(before);
    ASSERT_TRUE(stored);
    EXPECT_EQ(modeOf(m_folder), mode_t{0700});
    const auto names = fileNames();
    ASSERT_THAT(names, Contains("slots.sqlite3-wal"));
    for (const std::string &name : names)
        EXPECT_EQ(modeOf(m_folder / name), mode_t{0600}) << name;
}

TEST_F(SlotStorage, leavesNothingOfAClearedTextInItsFiles)
{
    const std::string text(5000, 'Q');
    {
        const auto store = open();
        ASSERT_TRUE(store->set(1, text));
        ASSERT_TRUE(store->set(1, ""));
    }
    for (const auto &entry : std::filesystem::directory_iterator(m_folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(bytes.find("QQQQQQQQQQ"), std::string::npos) << entry.path();
    }
}

TEST_F(SlotStorage, losesNothingThatWasAcknowledgedWhenItIsKilled)
{
    for (int round = 0; round < 10; ++round) {
        SCOPED_TRACE(round);
        int acknowledged[2];
        ASSERT_EQ(::pipe(acknowledged), 0);
        const pid_t writer = ::fork();
        if (writer == 0) {
            const auto store = open();
            for (int number = 1;; ++number) {
                if (!store->set(number % 9 + 1, std::to_string(number) + std::string(3000, '.')))
                    ::_exit(1);
                if (::write(acknowledged[1], &number, sizeof number) != sizeof number)
                    ::_exit(1);
            }
        }
        ::close(acknowledged[1]);
        int last = 0;
        int number = 0;
        const int enough = 3 + round * 7;
        while (::read(acknowledged[0], &number, sizeof number) == sizeof number) {
            last = number;
            if (last == enough)
                ::kill(writer, SIGKILL); // what is in the pipe already is still read
        }
        ::close(acknowledged[0]);
        ::waitpid(writer, nullptr, 0);
        ASSERT_GE(last, enough);

        const auto store = open();
        for (int held = std::max(1, last - 8); held <= last; ++held) {
            const std::string &content = store->slot(held % 9 + 1).content;
            // One change more may have been stored whose acknowledgement never came.
            const bool isTheNextOne = held == last - 8 && content.starts_with(std::to_string(last + 1) + ".");
            EXPECT_TRUE(content.starts_with(std::to_string(held) + ".") || isTheNextOne) << held;
        }
        EXPECT_TRUE(m_lines.lines().empty());
    }
}

TEST_F(SlotStorage, movesADamagedFileAsideAndBeginsANewOne)
{
    struct Row
    {
        const char *what;
        std::size_t offset;
        std::size_t size;
    };
    // The head of the file; the page of the table.
    for (const Row &row : {Row{"head", 0, 64}, Row{"table", 8192, 4096}}) {
        SCOPED_TRACE(row.what);
        m_now += 24h;
        ASSERT_TRUE(open()->set(1, std::string(20000, 'a')));
        overwrite(row.offset, std::string(row.size, '\xA5'));
        const auto before = fileNames().size();

        const auto store = open();
        EXPECT_EQ(store->slot(1).content, "");
        EXPECT_TRUE(store->set(2, "goes on"));
        const std::string date = row.offset == 0 ? "2024-05-02T10-00-00Z" : "2024-05-03T10-00-00Z";
        EXPECT_THAT(fileNames(), Contains("slots.sqlite3.aside-" + date));
        EXPECT_GT(fileNames().size(), before);
        ASSERT_FALSE(m_lines.lines().empty());
        EXPECT_THAT(m_lines.lines().back(), HasSubstr("slots.sqlite3.aside-" + date));
    }
}

TEST_F(SlotStorage, takesTheDamagedFilesLogAlong)
{
    open().reset();
    overwrite(0, std::string(64, '\xA5'));
    std::ofstream(m_folder / "slots.sqlite3-wal") << "left behind";
    open().reset();
    std::ifstream moved(m_folder / "slots.sqlite3.aside-2024-05-01T10-00-00Z-wal");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(moved), {}), "left behind");
    EXPECT_THAT(fileNames(), Contains("slots.sqlite3"));
    EXPECT_THAT(fileNames(), Contains("slots.sqlite3.aside-2024-05-01T10-00-00Z"));
    EXPECT_THAT(fileNames(), testing::Not(Contains("slots.sqlite3-wal")));
}

TEST_F(SlotStorage, neverOverwritesAFileThatWasMovedAsideBefore)
{
    for (int i = 0; i < 3; ++i) {
        open().reset();
        overwrite(0, std::string(64, '\xA5'));
    }
    open().reset();
    EXPECT_THAT(fileNames(), testing::ElementsAre("slots.sqlite3", "slots.sqlite3.aside-2024-05-01T10-00-00Z",
                                                  "slots.sqlite3.aside-2024-05-01T10-00-00Z-2",
                                                  "slots.sqlite3.aside-2024-05-01T10-00-00Z-3"));
}

TEST_F(SlotStorage, movesTheFileOfAnotherProgramOrOfALaterVersionAsideUnchanged)
{
    for (const char *sql : {"PRAGMA application_id = 7", "PRAGMA user_version = 99", "DROP TABLE slots"}) {
        SCOPED_TRACE(sql);
        m_now += 24h;
        ASSERT_TRUE(open()->set(1, "old"));
        executeSql(sql);
        const auto before = fileNames().size();
        const auto store = open();
        EXPECT_EQ(store->slot(1).content, "");
        EXPECT_TRUE(store->set(1, "new"));
        EXPECT_GT(fileNames().size(), before);
    }
}

TEST_F(SlotStorage, showsATextThatIsNotUtf8AsEmpty)
{
    open().reset();
    executeSql("UPDATE slots SET content = CAST(x'C3' AS TEXT) WHERE slot_index = 4");
    const auto store = open();
    EXPECT_EQ(store->slot(4).content, "");
    EXPECT_THAT(m_lines.lines(), Contains(HasSubstr("Slot 4")));
}

TEST_F(SlotStorage, thatCannotBeWrittenRefusesChangesAndHoldsWhatItHas)
{
    // A file stands where the folder should be: nobody, root included, can write there.
    std::filesystem::create_directories(m_folder.parent_path());
    std::ofstream(m_folder) << "in the way";
    const auto store = open();
    EXPECT_THAT(m_lines.lines(), Contains(HasSubstr("cannot be written")));
    const auto stored = store->set(1, "hi");
    ASSERT_FALSE(stored);
    EXPECT_FALSE(stored.error().description.empty());
    EXPECT_EQ(store->slot(1).content, "");

    std::filesystem::remove(m_folder);
    ASSERT_TRUE(store->set(1, "hi"));
    EXPECT_EQ(store->slot(1).content, "hi");
    EXPECT_EQ(open()->slot(1).content, "hi");
}

TEST_F(SlotStorage, inAReadOnlyFolderServesWhatIsThereAndRefusesChanges)
{
    ASSERT_EQ(::geteuid(), 0U) << "this test needs root, to become somebody else";
    constexpr uid_t nobody = 65534;
    ASSERT_TRUE(open()->set(5, "kept"));
    std::filesystem::permissions(m_temporary.path(), std::filesystem::perms::all);
    for (const auto &path : {m_folder.parent_path(), m_folder, m_folder / "slots.sqlite3"})
        ASSERT_EQ(::chown(path.c_str(), nobody, nobody), 0);
    // The owner of a folder may open it up again, so this one belongs to root and only lets others read.
    ASSERT_EQ(::chown(m_folder.c_str(), 0, 0), 0);
    ASSERT_EQ(::chmod(m_folder.c_str(), 0755), 0);
    ASSERT_EQ(::chmod((m_folder / "slots.sqlite3").c_str(), 0444), 0);
    ASSERT_EQ(::chown((m_folder / "slots.sqlite3").c_str(), 0, 0), 0);

    ASSERT_EQ(::seteuid(nobody), 0);
    auto store = open();
    const auto stored = store->set(5, "changed");
    const std::string held = store->slot(5).content;
    store.reset();
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_FALSE(stored);
    EXPECT_EQ(held, "kept");
}

TEST_F(SlotStorage, onAFullDiskRefusesTheChangeAndGoesOn)
{
    const auto store = open();
    ASSERT_TRUE(store->set(1, "before"));
    // A limit on the size of files stands for the full disk: writing beyond it fails in the same place.
    const auto ignore = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit tight{rlim_t{256} * 1024, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    const auto refused = store->set(1, std::string(1024 * 1024, 'x'));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, ignore);

    EXPECT_FALSE(refused);
    EXPECT_EQ(store->slot(1).content, "before");
    EXPECT_TRUE(store->set(2, "after"));
    EXPECT_EQ(open()->slot(1).content, "before");
    EXPECT_EQ(open()->slot(2).content, "after");
}

TEST_F(SlotStorage, logsNoText)
{
    std::filesystem::create_directories(m_folder.parent_path());
    std::ofstream(m_folder) << "in the way";
    EXPECT_FALSE(open()->set(1, "the secret text"));
    for (const std::string &line : m_lines.lines())
        EXPECT_THAT(line, testing::Not(HasSubstr("secret")));
}

TEST_F(SlotStorage, isLockedAgainstASecondDaemonUntilTheFirstEnds)
{
    auto first = std::make_unique<std::expected<server::StoreLock, server::StoreLock::Held>>(
        server::StoreLock::take(m_folder));
    ASSERT_TRUE(*first);
    EXPECT_FALSE(server::StoreLock::take(m_folder));
    first.reset();
    EXPECT_TRUE(server::StoreLock::take(m_folder));
    EXPECT_EQ(modeOf(m_folder), mode_t{0700});
}
