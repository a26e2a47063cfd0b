#pragma once

#include <cstdint>

namespace stavelin::model::classification {

/// Finds where user-perceived characters begin, by the rules for extended grapheme clusters (Unicode Standard
/// Annex 29) with the rule that keeps Indic conjuncts together, as ICU has it. It is fed the code points of a
/// text from its beginning, one after the other.
class CharacterBreaks
{
public:
    /// How a code point behaves beside its neighbours.
    enum class Class : std::uint8_t {
        other,
        hangulLV,
        hangulLVT,
        carriageReturn,
        lineFeed,
        control,
        extend,
        combiningExtend, ///< an extending mark with a combining class, which a conjunct may hold
        virama,          ///< joins the consonants of a conjunct
        linkingConsonant,
        zeroWidthJoiner,
        spacingMark,
        prepend,
        regionalIndicator,
        pictographic,
        hangulL,
        hangulV,
        hangulT
    };

    /// The class of any code point.
    [[nodiscard]] static Class classOf(char32_t codePoint);

    /// Takes the text's next code point and tells whether a new character begins with it.
    [[nodiscard]] bool startsCharacter(char32_t codePoint)
    {
        const Class next = classOf(codePoint);
        // Among the first classes only CR LF joins, and texts consist of little else.
        if (next <= lastOfTheUsual && m_previous <= lastOfTheUsual) {
            const bool joined = m_previous == Class::carriageReturn && next == Class::lineFeed;
            m_previous = next;
            return !joined;
        }
        return startsCharacter(next);
    }

    /// Whether every ASCII code point would begin a character here.
    [[nodiscard]] bool asciiStartsCharacter() const
    {
        return m_previous != Class::prepend && m_previous != Class::carriageReturn;
    }

    /// Goes on as if a run of ASCII, each of its code points a character, had been taken; `last` ended it.
    void skipAscii(char last);

private:
    static constexpr Class lastOfTheUsual = Class::control;

    enum class Pictograph : std::uint8_t { none, begun, joined };
    enum class Conjunct : std::uint8_t { none, consonant, linked };

    [[nodiscard]] bool startsCharacter(Class next);
    [[nodiscard]] bool joins(Class next) const;
    void follow(Class next, bool joined);

    Class m_previous = Class::control; ///< nothing joins a control, nor the beginning of a text
    Pictograph m_pictograph = Pictograph::none;
    Conjunct m_conjunct = Conjunct::none;
    bool m_flagBegun = false; ///< the last code point is the first half of a flag
};

} // namespace stavelin::model::classification
