#include "server/store/StoreFile.h"

#include "support/IsoDate.h"

#include <algorithm>
#include <array>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace stavelin::server {

namespace {

constexpr std::string_view fileName = "slots.sqlite3";
// "Stvl": tells this program's files from any other's.
constexpr std::int64_t applicationId = 0x5374766C;

// The schema grows by appending here; the file remembers in user_version how many of these it has had.
constexpr std::array<const char *, 1> migrations{
    "CREATE TABLE slots ("
    "  slot_index INTEGER PRIMARY KEY CHECK (slot_index BETWEEN 1 AND 9),"
    "  content TEXT NOT NULL,"
    "  updated_at TEXT NOT NULL"
    ") STRICT;",
};

DatabaseError unavailable(const std::filesystem::path &path, int errorNumber)
{
    return {DatabaseError::Kind::unavailable,
            path.string() + ": " + std::generic_category().message(errorNumber)};
}

DatabaseError damaged(std::string reason)
{
    return {DatabaseError::Kind::damaged, std::move(reason)};
}

std::filesystem::path withSuffix(const std::filesystem::path &path, const std::string &suffix)
{
    return path.string() + suffix;
}

/// Makes the folder and the file for the user alone, whatever the umask, before SQLite would make them for
/// more. The files that SQLite puts beside the database take their mode from it.
std::expected<void, DatabaseError> makePrivate(const std::filesystem::path &file)
{
    const std::filesystem::path folder = file.parent_path();
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        return std::unexpected(unavailable(folder, error.value()));
    // Where the mode cannot be set the folder is not ours, and what follows fails or is what its owner wants.
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, error);

    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        return std::unexpected(unavailable(file, errno));
    const int result = ::fchmod(descriptor, S_IRUSR | S_IWUSR);
    const int errorNumber = errno;
    ::close(descriptor);
    if (result != 0)
        return std::unexpected(unavailable(file, errorNumber));
    return {};
}

} // namespace

StoreFile::StoreFile(const std::filesystem::path &folder, LeveledLog &log, Now now)
    : m_file(folder / fileName), m_log(log), m_now(std::move(now))
{}

std::expected<Database, DatabaseError> StoreFile::open()
{
    auto database = openAsItIs();
    if (database || database.error().kind != DatabaseError::Kind::damaged)
        return database;
    if (auto moved = moveAside(database.error().description); !moved)
        return std::unexpected(std::move(moved.error()));
    return openAsItIs();
}

std::expected<Database, DatabaseError> StoreFile::openReadOnly() const
{
    return Database::open(m_file, Database::Access::readOnly);
}

std::expected<Database, DatabaseError> StoreFile::openAsItIs() const
{
    if (auto made = makePrivate(m_file); !made)
        return std::unexpected(std::move(made.error()));
    auto database = Database::open(m_file, Database::Access::readWrite);
    if (!database)
        return database;
    if (auto prepared = prepare(*database); !prepared)
        return std::unexpected(std::move(prepared.error()));
    database->tidyUpWhenClosed();
    return database;
}

std::expected<void, DatabaseError> StoreFile::prepare(Database &database) const
{
    const auto id = database.integer("PRAGMA application_id");
    if (!id)
        return std::unexpected(id.error());
    const auto version = database.integer("PRAGMA user_version");
    if (!version)
        return std::unexpected(version.error());
    const auto tables = database.integer("SELECT count(*) FROM sqlite_schema");
    if (!tables)
        return std::unexpected(tables.error());

    const bool isNew = *id == 0 && *version == 0 && *tables == 0;
    if (!isNew && *id != applicationId)
        return std::unexpected(damaged("it is another program's database"));
    const auto latest = static_cast<std::int64_t>(migrations.size());
    if (*version > latest || *version < 0)
        return std::unexpected(damaged("it was written by a later version of this program"));
    if (!isNew) {
        const auto check = database.text("PRAGMA quick_check(1)");
        if (!check)
            return std::unexpected(check.error());
        if (*check != "ok")
            return std::unexpected(damaged(*check));
    }

    // auto_vacuum counts only before the first table. A text that was cleared must not stay behind in free
    // pages.
    std::string sql = "PRAGMA auto_vacuum = FULL;"
                      "PRAGMA journal_mode = WAL;"
                      "PRAGMA synchronous = FULL;"
                      "PRAGMA secure_delete = ON;"
                      "PRAGMA temp_store = MEMORY;"
                      "PRAGMA journal_size_limit = 1048576;"
                      "BEGIN IMMEDIATE;";
    for (std::int64_t next = *version; next < latest; ++next)
        sql += migrations[static_cast<std::size_t>(next)];
    sql += "PRAGMA application_id = " + std::to_string(applicationId) + ";";
    sql += "PRAGMA user_version = " + std::to_string(latest) + ";";
    const std::string now = support::formatIsoDate(m_now());
    for (int slot = 1; slot <= 9; ++slot)
        sql += "INSERT OR IGNORE INTO slots VALUES (" + std::to_string(slot) + ", '', '" + now + "');";
    sql += "COMMIT;";
    return database.execute(sql);
}

std::expected<void, DatabaseError> StoreFile::moveAside(const std::string &reason) const
{
    // Colons in file names trouble other systems, onto which a folder may be copied.
    std::string date = support::formatIsoDate(m_now());
    std::ranges::replace(date, ':', '-');
    std::filesystem::path aside = withSuffix(m_file, ".aside-" + date);
    std::error_code error;
    for (int number = 2; std::filesystem::exists(aside, error); ++number)
        aside = withSuffix(m_file, ".aside-" + date + "-" + std::to_string(number));

    // The database itself last: a new one must never find the old one's write-ahead log beside it.
    for (const char *suffix : {"-wal", "-shm", ""}) {
        const std::filesystem::path from = withSuffix(m_file, suffix);
        if (!std::filesystem::exists(from, error))
            continue;
        std::filesystem::rename(from, withSuffix(aside, suffix), error);
        if (error)
            return std::unexpected(unavailable(from, error.value()));
    }
    m_log.error("The store could not be used (" + reason + "). It was moved to " + aside.string() +
                " and a new one begun.");
    return {};
}

} // namespace stavelin::server
