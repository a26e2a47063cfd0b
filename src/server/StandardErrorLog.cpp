#include "server/StandardErrorLog.h"

#include <algorithm>
#include <string>

#include <unistd.h>

namespace stavelin::server {

void StandardErrorLog::line(std::string_view text)
{
    std::string whole(text);
    std::ranges::replace_if(
        whole, [](char c) { return c == '\n' || c == '\r'; }, ' ');
    whole += '\n';
    // Where the log cannot be written there is nobody left to tell.
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, whole.data(), whole.size());
}

} // namespace stavelin::server
