#pragma once

#include "server/LogLevel.h"
#include "support/Clock.h"
#include "support/Log.h"

#include <functional>
#include <string_view>

namespace stavelin::server {

/// The daemon's log: each line with its date and level, the levels beyond the chosen one left out. A slot's
/// text never gets here. Any thread.
class LeveledLog
{
public:
    using Now = std::function<support::Timestamp()>;

    LeveledLog(support::Log &lines, LogLevel most, Now now);

    void error(std::string_view text) { write(LogLevel::error, text); }
    void warn(std::string_view text) { write(LogLevel::warn, text); }
    void info(std::string_view text) { write(LogLevel::info, text); }
    void debug(std::string_view text) { write(LogLevel::debug, text); }

private:
    void write(LogLevel level, std::string_view text);

    support::Log &m_lines;
    const LogLevel m_most;
    const Now m_now;
};

} // namespace stavelin::server
