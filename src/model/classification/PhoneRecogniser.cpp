#include "model/classification/CodePoints.h"
#include "model/classification/Recognisers.h"
#include "model/classification/WhiteSpace.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

/// The patterns of telephone numbers, matched without going back: a set of bits holds all places that the
/// elements so far can have reached, and each element moves them on at once.
namespace stavelin::model::classification {

namespace {

using Places = std::uint32_t; ///< bit n: the place before symbol n

enum Kind : std::uint8_t { plus, one, digit, separator, openingBracket, closingBracket, kindCount };

struct Element
{
    Kind kind;
    int least;
    int most;
};

// ^\+?1?[-.\s]?\(?\d{3}\)?[-.\s]?\d{3}[-.\s]?\d{4}$
constexpr std::array northAmerican{Element{plus, 0, 1},      Element{one, 0, 1},
                                   Element{separator, 0, 1}, Element{openingBracket, 0, 1},
                                   Element{digit, 3, 3},     Element{closingBracket, 0, 1},
                                   Element{separator, 0, 1}, Element{digit, 3, 3},
                                   Element{separator, 0, 1}, Element{digit, 4, 4}};
// ^\+\d{1,3}[-.\s]?\d{1,4}[-.\s]?\d{1,4}[-.\s]?\d{1,9}$
constexpr std::array international{
    Element{plus, 1, 1},      Element{digit, 1, 3}, Element{separator, 0, 1}, Element{digit, 1, 4},
    Element{separator, 0, 1}, Element{digit, 1, 4}, Element{separator, 0, 1}, Element{digit, 1, 9}};
// ^\d{3}[-.\s]?\d{3}[-.\s]?\d{4}$
constexpr std::array local{Element{digit, 3, 3}, Element{separator, 0, 1}, Element{digit, 3, 3},
                           Element{separator, 0, 1}, Element{digit, 4, 4}};

constexpr std::size_t longest(std::span<const Element> pattern)
{
    std::size_t length = 0;
    for (const Element &element : pattern) {
        length += static_cast<std::size_t>(element.most);
    }
    return length;
}
constexpr std::size_t mostSymbols =
    std::max({longest(northAmerican), longest(international), longest(local)});
static_assert(mostSymbols < 32, "the places must fit into the set");

/// A text as the patterns see it: per kind, the symbols that are of it.
class Symbols
{
public:
    /// Nothing can match a text that is too long or has a symbol of no kind.
    explicit Symbols(std::string_view text)
    {
        std::size_t offset = 0;
        while (offset < text.size() && m_canMatch) {
            if (m_count == mostSymbols) {
                m_canMatch = false;
                return;
            }
            add(nextCodePoint(text, offset));
        }
    }

    [[nodiscard]] bool match(std::span<const Element> pattern) const
    {
        Places places = 1;
        for (const Element &element : pattern) {
            places = advance(places, element);
        }
        return m_canMatch && (places >> m_count & 1) != 0;
    }

private:
    void add(char32_t codePoint)
    {
        const Places bit = Places{1} << m_count++;
        if (codePoint == U'+') {
            m_ofKind[plus] |= bit;
        } else if (codePoint == U'(') {
            m_ofKind[openingBracket] |= bit;
        } else if (codePoint == U')') {
            m_ofKind[closingBracket] |= bit;
        } else if (codePoint == U'-' || codePoint == U'.' || isWhiteSpace(codePoint)) {
            m_ofKind[separator] |= bit;
        } else if (u_isdigit(static_cast<UChar32>(codePoint)) != 0) {
            m_ofKind[digit] |= bit;
            m_ofKind[one] |= codePoint == U'1' ? bit : 0;
        } else {
            m_canMatch = false;
        }
    }

    [[nodiscard]] Places advance(Places places, const Element &element) const
    {
        Places reached = element.least == 0 ? places : 0;
        for (int taken = 1; taken <= element.most; ++taken) {
            places = (places & m_ofKind[element.kind]) << 1;
            reached |= taken >= element.least ? places : 0;
        }
        return reached;
    }

    std::array<Places, kindCount> m_ofKind{};
    std::size_t m_count = 0;
    bool m_canMatch = true;
};

} // namespace

std::optional<ContentClassification> recognisePhone(std::string_view text)
{
    if (text.find('\n') != std::string_view::npos) {
        return std::nullopt;
    }
    const Symbols symbols(text);
    if (symbols.match(northAmerican) || symbols.match(international) || symbols.match(local)) {
        return ContentClassification{ContentType::phone, std::nullopt};
    }
    return std::nullopt;
}

} // namespace stavelin::model::classification
