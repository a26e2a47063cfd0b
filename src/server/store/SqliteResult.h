#pragma once

#include "server/store/DatabaseError.h"

#include <sqlite3.h>

namespace stavelin::server {

/// What a result code of SQLite means to the store. `database` may be null.
[[nodiscard]] inline DatabaseError databaseError(sqlite3 *database, int result)
{
    const int primary = result & 0xFF;
    // Our statements are right, so a plain error says that the tables are not the ones that they were written
    // for.
    const bool isDamaged = primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_ERROR;
    return {isDamaged ? DatabaseError::Kind::damaged : DatabaseError::Kind::unavailable,
            database == nullptr ? sqlite3_errstr(result) : sqlite3_errmsg(database)};
}

} // namespace stavelin::server
