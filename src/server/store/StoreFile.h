#pragma once

#include "server/LeveledLog.h"
#include "server/store/Database.h"

#include <expected>
#include <filesystem>
#include <functional>

namespace stavelin::server {

/// The database file in the store's folder: who may read it, what must stand in it, and what happens to one
/// in which something else stands.
class StoreFile
{
public:
    using Now = std::function<support::Timestamp()>;

    StoreFile(const std::filesystem::path &folder, LeveledLog &log, Now now);

    /// Opens the file for reading and writing, ready for use: migrated to the present schema, all nine slots
    /// in it. Makes what is missing, the folder included, for the user alone (0700, 0600). A damaged file, or
    /// one of another program or of a later version, is moved aside under a name with the date, never
    /// deleted, and a new one begun.
    [[nodiscard]] std::expected<Database, DatabaseError> open();

    /// Opens the file as it stands, for reading only, where open() is not permitted to write.
    [[nodiscard]] std::expected<Database, DatabaseError> openReadOnly() const;

    [[nodiscard]] const std::filesystem::path &path() const { return m_file; }

private:
    [[nodiscard]] std::expected<Database, DatabaseError> openAsItIs() const;
    [[nodiscard]] std::expected<void, DatabaseError> prepare(Database &database) const;
    [[nodiscard]] std::expected<void, DatabaseError> moveAside(const std::string &reason) const;

    std::filesystem::path m_file;
    LeveledLog &m_log;
    Now m_now;
};

} // namespace stavelin::server
