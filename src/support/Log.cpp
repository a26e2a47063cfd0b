#include "support/Log.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace stavelin::support {

void StandardOutputLog::line(std::string_view text)
{
    std::string whole(text);
    std::ranges::replace_if(
        whole, [](char c) { return c == '\n' || c == '\r'; }, ' ');
    whole += '\n';
    std::fwrite(whole.data(), 1, whole.size(), stdout);
    std::fflush(stdout);
}

} // namespace stavelin::support
