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
        hangulT,
        hangulLV,
        hangulLVT
    };

    CharacterBreaks();

    /// The class of any code point.
    [[nodiscard]] static Class classOf(char32_t codePoint);

    /// Takes the text's next code point and tells whether a new character begins with it.
    [[nodiscard]] bool startsCharacter(char32_t codePoint)
    {
        return (m_context == behindOther && isOrdinary(codePoint)) || startsByTheRules(codePoint);
    }

    /// Whether every ASCII code point would begin a character here.
    [[nodiscard]] bool asciiStartsCharacter() const;

    /// Goes on as if a run of ASCII, each of its code points a character, had been taken; `last` ended it.
    void skipAscii(char last);

private:
    static constexpr std::uint16_t behindOther = 0; ///< the context behind a code point of the class `other`

    /// Long stretches that hold nothing of a class but `other`, which most texts consist of, and the
    /// replacement character, which broken texts consist of.
    [[nodiscard]] static constexpr bool isOrdinary(char32_t c)
    {
        if (c < 0x300) {
            return (c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c != 0xA9 && c != 0xAD && c != 0xAE);
        }
        if (c >= 0x3400) {
            return c < 0xA000 || c == 0xFFFD;
        }
        return (c >= 0x370 && c < 0x483) || (c >= 0x48A && c < 0x591) || (c >= 0x1E00 && c < 0x200B) ||
               (c >= 0x3041 && c < 0x3099) || (c >= 0x30A0 && c < 0x3100);
    }

    [[nodiscard]] bool startsByTheRules(char32_t codePoint);

    std::uint16_t m_context; ///< what matters of the code points so far: a row of the table of rules
};

} // namespace stavelin::model::classification
