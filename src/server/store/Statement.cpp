#include "server/store/Statement.h"

#include "server/store/SqliteResult.h"

#include <sqlite3.h>

namespace stavelin::server {

Statement::~Statement()
{
    sqlite3_finalize(m_statement);
}

void Statement::bind(int parameter, std::int64_t value)
{
    sqlite3_bind_int64(m_statement, parameter, value);
}

void Statement::bind(int parameter, std::string_view text)
{
    // A null pointer would bind NULL.
    sqlite3_bind_text64(m_statement, parameter, text.empty() ? "" : text.data(), text.size(), SQLITE_STATIC,
                        SQLITE_UTF8);
}

std::expected<bool, DatabaseError> Statement::step()
{
    const int result = sqlite3_step(m_statement);
    if (result == SQLITE_ROW)
        return true;
    if (result == SQLITE_DONE)
        return false;
    return std::unexpected(databaseError(sqlite3_db_handle(m_statement), result));
}

std::int64_t Statement::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

std::string Statement::text(int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    const int size = sqlite3_column_bytes(m_statement, column);
    return bytes == nullptr ? std::string() : std::string(bytes, static_cast<std::size_t>(size));
}

std::expected<void, DatabaseError> Statement::run()
{
    auto row = step();
    while (row && *row)
        row = step();
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
    if (!row)
        return std::unexpected(std::move(row.error()));
    return {};
}

} // namespace stavelin::server
