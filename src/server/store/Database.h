#pragma once

#include "server/store/DatabaseError.h"
#include "server/store/Statement.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;

namespace stavelin::server {

/// One connection to one SQLite file. One thread.
class Database
{
public:
    enum class Access {
        readWrite, ///< makes the file when there is none
        readOnly,  ///< the file as it stands, without its write-ahead log, and writing nothing beside it
    };
    [[nodiscard]] static std::expected<Database, DatabaseError> open(const std::filesystem::path &file,
                                                                     Access access);

    /// From now on closing the database also brings the write-ahead log into it and removes it. Until then
    /// closing leaves both files as they were found.
    void tidyUpWhenClosed();

    /// One or several statements whose rows, if they give any, do not matter.
    [[nodiscard]] std::expected<void, DatabaseError> execute(const std::string &sql);
    [[nodiscard]] std::expected<Statement, DatabaseError> prepare(std::string_view sql);
    /// The first column of the first row; 0 or empty when there is no row.
    [[nodiscard]] std::expected<std::int64_t, DatabaseError> integer(std::string_view sql);
    [[nodiscard]] std::expected<std::string, DatabaseError> text(std::string_view sql);

private:
    struct Close
    {
        void operator()(sqlite3 *database) const;
    };
    explicit Database(sqlite3 *database) : m_database(database) {}

    std::unique_ptr<sqlite3, Close> m_database;
};

} // namespace stavelin::server
