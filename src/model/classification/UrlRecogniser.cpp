#include "model/classification/CodePoints.h"
#include "model/classification/Recognisers.h"
#include "model/classification/UserCharacters.h"
#include "model/classification/WebHost.h"
#include "model/classification/WellKnownServices.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/stringpiece.h>

#include <algorithm>
#include <string>

namespace stavelin::model::classification {

namespace {

constexpr std::size_t mostCharacters = 20; ///< of a host that is shown whole
constexpr std::size_t shownCharacters = 17;
constexpr std::string_view ellipsis = "...";

constexpr char asciiLowerCased(char byte)
{
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

std::string lowerCased(std::string_view text)
{
    std::string lower;
    lower.reserve(text.size());
    if (std::ranges::all_of(text, isAscii)) {
        std::ranges::transform(text, std::back_inserter(lower), asciiLowerCased);
        return lower;
    }
    UErrorCode error = U_ZERO_ERROR;
    icu::StringByteSink<std::string> sink(&lower);
    constexpr const char *anyLanguage = "";
    icu::CaseMap::utf8ToLower(anyLanguage, 0,
                              icu::StringPiece(text.data(), static_cast<int32_t>(text.size())), sink, nullptr,
                              error);
    return lower;
}

/// What follows the scheme; an address that starts with "www." is all of that.
std::optional<std::string_view> afterScheme(std::string_view text)
{
    for (const std::string_view scheme : {"https://", "http://"}) {
        if (text.starts_with(scheme)) {
            return text.substr(scheme.size());
        }
    }
    constexpr std::string_view www = "www.";
    if (std::ranges::equal(text.substr(0, www.size()), www, {}, asciiLowerCased)) {
        return text;
    }
    return std::nullopt;
}

std::string shownHost(std::string_view host)
{
    if (host.starts_with("www.")) {
        host.remove_prefix(4);
    }
    if (firstCharacters(host, mostCharacters) == host) {
        return std::string(host);
    }
    return std::string(firstCharacters(host, shownCharacters)).append(ellipsis);
}

} // namespace

std::optional<ContentClassification> recogniseUrl(std::string_view text)
{
    if (text.find('\n') != std::string_view::npos) {
        return std::nullopt;
    }
    const auto address = afterScheme(text);
    if (!address) {
        return std::nullopt;
    }
    const auto writtenHost = webHost(*address);
    if (!writtenHost) {
        return ContentClassification{ContentType::url, std::nullopt};
    }
    const std::string host = lowerCased(*writtenHost);
    if (const auto service = wellKnownService(host)) {
        return ContentClassification{ContentType::url, std::string(*service)};
    }
    return ContentClassification{ContentType::url, shownHost(host)};
}

} // namespace stavelin::model::classification
