#pragma once

#include <string>

namespace stavelin::server {

/// What went wrong in SQLite. Never quotes what is stored.
struct DatabaseError
{
    enum class Kind {
        unavailable, ///< cannot be read or written now: permissions, a full disk, another program's lock
        damaged,     ///< no database, or one whose parts contradict each other
    };
    Kind kind = Kind::unavailable;
    std::string description;
};

} // namespace stavelin::server
