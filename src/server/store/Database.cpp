#include "server/store/Database.h"

#include "server/store/SqliteResult.h"

#include <sqlite3.h>

namespace stavelin::server {

namespace {

/// A file's name as SQLite's URI: what has a meaning there is written as %xx.
std::string uriOf(const std::filesystem::path &file)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string uri = "file:";
    for (const char c : file.string()) {
        if (c == '%' || c == '?' || c == '#') {
            const auto byte = static_cast<unsigned char>(c);
            uri += '%';
            uri += digits[byte >> 4];
            uri += digits[byte & 0x0F];
        } else {
            uri += c;
        }
    }
    return uri;
}

} // namespace

void Database::Close::operator()(sqlite3 *database) const
{
    sqlite3_close(database);
}

std::expected<Database, DatabaseError> Database::open(const std::filesystem::path &file, Access access)
{
    const bool isReadOnly = access == Access::readOnly;
    const std::string uri = uriOf(file) + (isReadOnly ? "?immutable=1" : "");
    const int flags = SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX |
                      (isReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    sqlite3 *handle = nullptr;
    const int result = sqlite3_open_v2(uri.c_str(), &handle, flags, nullptr);
    Database database(handle);
    if (result != SQLITE_OK)
        return std::unexpected(databaseError(handle, result));
    sqlite3_extended_result_codes(handle, 1);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    // A person looking at the file with a tool of their own holds it only for moments.
    sqlite3_busy_timeout(handle, 1000);
    return database;
}

void Database::tidyUpWhenClosed()
{
    sqlite3_db_config(m_database.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
}

std::expected<void, DatabaseError> Database::execute(const std::string &sql)
{
    const int result = sqlite3_exec(m_database.get(), sql.c_str(), nullptr, nullptr, nullptr);
    if (result != SQLITE_OK)
        return std::unexpected(databaseError(m_database.get(), result));
    return {};
}

std::expected<Statement, DatabaseError> Database::prepare(std::string_view sql)
{
    sqlite3_stmt *statement = nullptr;
    const int result =
        sqlite3_prepare_v2(m_database.get(), sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
    if (result != SQLITE_OK)
        return std::unexpected(databaseError(m_database.get(), result));
    return Statement(statement);
}

std::expected<std::int64_t, DatabaseError> Database::integer(std::string_view sql)
{
    auto statement = prepare(sql);
    if (!statement)
        return std::unexpected(std::move(statement.error()));
    const auto row = statement->step();
    if (!row)
        return std::unexpected(row.error());
    return *row ? statement->integer(0) : 0;
}

std::expected<std::string, DatabaseError> Database::text(std::string_view sql)
{
    auto statement = prepare(sql);
    if (!statement)
        return std::unexpected(std::move(statement.error()));
    const auto row = statement->step();
    if (!row)
        return std::unexpected(row.error());
    return *row ? statement->text(0) : std::string();
}

} // namespace stavelin::server
