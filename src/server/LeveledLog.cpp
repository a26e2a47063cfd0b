#include "server/LeveledLog.h"

#include "support/IsoDate.h"

#include <string>
#include <utility>

namespace stavelin::server {

LeveledLog::LeveledLog(support::Log &lines, LogLevel most, Now now)
    : m_lines(lines), m_most(most), m_now(std::move(now))
{}

void LeveledLog::write(LogLevel level, std::string_view text)
{
    if (level > m_most)
        return;
    std::string line = support::formatIsoDate(m_now());
    line += ' ';
    line += name(level);
    line += ' ';
    line += text;
    m_lines.line(line);
}

} // namespace stavelin::server
