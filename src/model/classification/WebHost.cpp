#include "model/classification/WebHost.h"

#include "model/classification/CodePoints.h"
#include "model/classification/WhiteSpace.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace stavelin::model::classification {

namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view hexDigits = "0123456789ABCDEFabcdef";
constexpr std::string_view addressCharacters = "0123456789ABCDEFabcdef:.";
/// unreserved and sub-delims, but for letters and digits
constexpr std::string_view marks = "-._~!$&'()*+,;=";

bool consistsOf(std::string_view text, std::string_view characters)
{
    return text.find_first_not_of(characters) == std::string_view::npos;
}

bool isNameCharacter(char32_t codePoint)
{
    if (codePoint < 0x80) {
        return (codePoint >= U'a' && codePoint <= U'z') || (codePoint >= U'A' && codePoint <= U'Z') ||
               (codePoint >= U'0' && codePoint <= U'9') ||
               marks.find(static_cast<char>(codePoint)) != std::string_view::npos;
    }
    return codePoint != replacementCharacter && !isWhiteSpace(codePoint) &&
           u_isgraph(static_cast<UChar32>(codePoint)) != 0;
}

/// Name characters, escaped bytes ("%C3") and, where they may stand, colons.
bool isName(std::string_view text, bool colonsAllowed)
{
    std::size_t offset = 0;
    while (offset < text.size()) {
        if (text[offset] == '%') {
            const std::string_view escaped = text.substr(offset + 1, 2);
            if (escaped.size() != 2 || !consistsOf(escaped, hexDigits)) {
                return false;
            }
            offset += 3;
            continue;
        }
        const char32_t codePoint = nextCodePoint(text, offset);
        const bool mayStand = isNameCharacter(codePoint) || (colonsAllowed && codePoint == U':');
        if (!mayStand) {
            return false;
        }
    }
    return true;
}

bool isPort(std::string_view text)
{
    return text.empty() || (text.front() == ':' && consistsOf(text.substr(1), digits));
}

std::optional<std::string_view> addressInBrackets(std::string_view hostAndPort)
{
    const std::size_t end = hostAndPort.find(']');
    if (end == std::string_view::npos || !isPort(hostAndPort.substr(end + 1))) {
        return std::nullopt;
    }
    const std::string_view address = hostAndPort.substr(1, end - 1);
    if (std::ranges::count(address, ':') < 2 || !consistsOf(address, addressCharacters)) {
        return std::nullopt;
    }
    return address;
}

} // namespace

std::optional<std::string_view> webHost(std::string_view afterScheme)
{
    std::string_view hostAndPort = afterScheme.substr(0, afterScheme.find_first_of("/?#"));
    if (const std::size_t at = hostAndPort.find('@'); at != std::string_view::npos) {
        if (!isName(hostAndPort.substr(0, at), true)) {
            return std::nullopt;
        }
        hostAndPort.remove_prefix(at + 1);
    }
    if (hostAndPort.starts_with('[')) {
        return addressInBrackets(hostAndPort);
    }
    const std::string_view host = hostAndPort.substr(0, hostAndPort.find(':'));
    if (host.empty() || !isName(host, false) || !isPort(hostAndPort.substr(host.size()))) {
        return std::nullopt;
    }
    return host;
}

} // namespace stavelin::model::classification
