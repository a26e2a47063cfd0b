#include "model/classification/CharacterCensus.h"
#include "model/classification/CodePoints.h"
#include "model/classification/Pieces.h"
#include "model/classification/Recognisers.h"
#include "model/classification/SecretPrefixes.h"

#include <algorithm>
#include <array>

namespace stavelin::model::classification {

namespace {

constexpr std::size_t smallestLength = 32; ///< in characters, for a token without a known prefix
constexpr int smallestPieceCountOfProse = 3;

constexpr char lowerCased(char byte)
{
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

constexpr bool startsLowerCased(std::string_view text, std::string_view prefix)
{
    return text.size() >= prefix.size() &&
           std::ranges::equal(text.substr(0, prefix.size()), prefix, {}, lowerCased, lowerCased);
}

constexpr std::size_t longestPrefix =
    std::ranges::max(secretPrefixes, {}, [](std::string_view prefix) { return prefix.size(); }).size();

/// The beginning of `text` with the Kelvin sign, the one letter outside of ASCII whose lower-case form lies
/// within, written as the K that it is. (The capital I with dot becomes an i and a mark, which no prefix
/// has.)
class Beginning
{
public:
    explicit Beginning(std::string_view text)
    {
        constexpr char32_t kelvinSign = 0x212A;
        std::size_t offset = 0;
        while (offset < text.size() && m_size < m_bytes.size()) {
            const char32_t codePoint = nextCodePoint(text, offset);
            if (codePoint >= 0x80 && codePoint != kelvinSign) {
                break;
            }
            m_bytes[m_size++] = codePoint == kelvinSign ? 'K' : static_cast<char>(codePoint);
        }
    }

    [[nodiscard]] std::string_view text() const { return {m_bytes.data(), m_size}; }

private:
    std::array<char, longestPrefix> m_bytes{};
    std::size_t m_size = 0;
};

bool hasSecretPrefix(std::string_view text)
{
    const Beginning beginning(text);
    return std::ranges::any_of(
        secretPrefixes, [&](std::string_view prefix) { return startsLowerCased(beginning.text(), prefix); });
}

bool isProse(std::string_view text)
{
    for (int pieces = 0; pieces < smallestPieceCountOfProse; ++pieces) {
        if (takePiece(text, ' ').empty()) {
            return false;
        }
    }
    return true;
}

bool isDenseAndMixed(const CharacterCensus &census)
{
    if (census.characters < smallestLength || census.tokenCharacters < census.characters * 8 / 10) {
        return false;
    }
    return census.hasDigit ? census.hasUpperCase || census.hasLowerCase
                           : census.hasUpperCase && census.hasLowerCase;
}

} // namespace

std::optional<ContentClassification> recogniseSecret(std::string_view text)
{
    if (text.find('\n') != std::string_view::npos) {
        return std::nullopt;
    }
    // Prose is told after a few words, so it is asked for before every character is looked at.
    const bool isSecret = hasSecretPrefix(text) || (text.size() >= smallestLength && !isProse(text) &&
                                                    isDenseAndMixed(takeCensus(text)));
    if (!isSecret) {
        return std::nullopt;
    }
    return ContentClassification{ContentType::apiKey, "Sensitive"};
}

} // namespace stavelin::model::classification
