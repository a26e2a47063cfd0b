#include "model/classification/CharacterBreaks.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <array>
#include <cstddef>

namespace stavelin::model::classification {

namespace {

using Class = CharacterBreaks::Class;

constexpr char32_t hangulBegin = 0xAC00;
constexpr char32_t hangulEnd = 0xD7A4;

/// The scripts whose viramas form conjuncts that people see as one character.
bool formsConjuncts(UChar32 codePoint)
{
    UErrorCode error = U_ZERO_ERROR;
    switch (uscript_getScript(codePoint, &error)) {
    case USCRIPT_BENGALI:
    case USCRIPT_DEVANAGARI:
    case USCRIPT_GUJARATI:
    case USCRIPT_MALAYALAM:
    case USCRIPT_ORIYA:
    case USCRIPT_TELUGU:
        return true;
    default:
        return false;
    }
}

Class classByBreakProperty(UChar32 codePoint)
{
    switch (u_getIntPropertyValue(codePoint, UCHAR_GRAPHEME_CLUSTER_BREAK)) {
    case U_GCB_CR:
        return Class::carriageReturn;
    case U_GCB_LF:
        return Class::lineFeed;
    case U_GCB_CONTROL:
        return Class::control;
    case U_GCB_EXTEND:
        return u_getCombiningClass(codePoint) == 0 ? Class::extend : Class::combiningExtend;
    case U_GCB_ZWJ:
        return Class::zeroWidthJoiner;
    case U_GCB_SPACING_MARK:
        return Class::spacingMark;
    case U_GCB_PREPEND:
        return Class::prepend;
    case U_GCB_REGIONAL_INDICATOR:
        return Class::regionalIndicator;
    case U_GCB_L:
        return Class::hangulL;
    case U_GCB_V:
        return Class::hangulV;
    case U_GCB_T:
        return Class::hangulT;
    case U_GCB_LV:
        return Class::hangulLV;
    case U_GCB_LVT:
        return Class::hangulLVT;
    default:
        return u_hasBinaryProperty(codePoint, UCHAR_EXTENDED_PICTOGRAPHIC) != 0 ? Class::pictographic
                                                                                : Class::other;
    }
}

Class anyClass(UChar32 codePoint)
{
    const auto syllabicCategory = u_getIntPropertyValue(codePoint, UCHAR_INDIC_SYLLABIC_CATEGORY);
    if (syllabicCategory == U_INSC_VIRAMA && formsConjuncts(codePoint)) {
        return Class::virama;
    }
    if (syllabicCategory == U_INSC_CONSONANT && formsConjuncts(codePoint)) {
        return Class::linkingConsonant;
    }
    return classByBreakProperty(codePoint);
}

/// The classes of a block of code points. Two or three properties per code point are slow to ask for, so
/// those of the blocks that long texts may consist of are asked for once.
template <char32_t begin, char32_t end>
class Block
{
public:
    [[nodiscard]] static bool holds(char32_t codePoint) { return codePoint >= begin && codePoint < end; }

    /// Only for a code point that the block holds.
    [[nodiscard]] static Class classOf(char32_t codePoint)
    {
        static const Block block;
        return block.m_classes[codePoint - begin];
    }

private:
    Block()
    {
        for (char32_t codePoint = begin; codePoint < end; ++codePoint) {
            m_classes[codePoint - begin] = anyClass(static_cast<UChar32>(codePoint));
        }
    }

    std::array<Class, end - begin> m_classes{};
};
using IndicBlock = Block<0x0900, 0x0E00>;
using EmojiBlock = Block<0x1F000, 0x1FB00>;

Class asciiClass(char32_t c)
{
    if (c == U'\n') {
        return Class::lineFeed;
    }
    if (c == U'\r') {
        return Class::carriageReturn;
    }
    return c < 0x20 || c == 0x7F ? Class::control : Class::other;
}

constexpr bool breaksOnBothSides(Class c)
{
    return c == Class::control || c == Class::carriageReturn || c == Class::lineFeed;
}

constexpr bool extends(Class c)
{
    return c == Class::extend || c == Class::combiningExtend || c == Class::virama;
}

constexpr bool joinsHangul(Class previous, Class next)
{
    switch (previous) {
    case Class::hangulL:
        return next == Class::hangulL || next == Class::hangulV || next == Class::hangulLV ||
               next == Class::hangulLVT;
    case Class::hangulLV:
    case Class::hangulV:
        return next == Class::hangulV || next == Class::hangulT;
    case Class::hangulLVT:
    case Class::hangulT:
        return next == Class::hangulT;
    default:
        return false;
    }
}

/// What the rules ask of the code points before a place.
struct Context
{
    enum class Pictograph : std::uint8_t { none, begun, joined };
    enum class Conjunct : std::uint8_t { none, consonant, linked };

    Class previous = Class::control; ///< nothing joins a control, nor the beginning of a text
    Pictograph pictograph = Pictograph::none;
    Conjunct conjunct = Conjunct::none;
    bool flagBegun = false; ///< the last code point is the first half of a flag

    /// Whether `next` belongs to the same character as what stands before it.
    [[nodiscard]] constexpr bool joins(Class next) const
    {
        if (previous == Class::carriageReturn && next == Class::lineFeed) {
            return true;
        }
        if (breaksOnBothSides(previous) || breaksOnBothSides(next)) {
            return false;
        }
        if (extends(next) || next == Class::zeroWidthJoiner || next == Class::spacingMark ||
            previous == Class::prepend) {
            return true;
        }
        switch (next) {
        case Class::pictographic:
            return pictograph == Pictograph::joined;
        case Class::linkingConsonant:
            return conjunct == Conjunct::linked;
        case Class::regionalIndicator:
            return flagBegun;
        default:
            return joinsHangul(previous, next);
        }
    }

    /// The context behind `next`.
    [[nodiscard]] constexpr Context after(Class next) const
    {
        Context made;
        made.previous = next;
        made.flagBegun = next == Class::regionalIndicator && !flagBegun;

        if (next == Class::pictographic || (extends(next) && pictograph == Pictograph::begun)) {
            made.pictograph = Pictograph::begun;
        } else if (next == Class::zeroWidthJoiner && pictograph == Pictograph::begun) {
            made.pictograph = Pictograph::joined;
        }

        if (next == Class::linkingConsonant) {
            made.conjunct = Conjunct::consonant;
        } else if (next == Class::virama && conjunct != Conjunct::none) {
            made.conjunct = Conjunct::linked;
        } else if (next == Class::combiningExtend || next == Class::virama ||
                   next == Class::zeroWidthJoiner) {
            made.conjunct = conjunct;
        }
        return made;
    }
};

constexpr std::size_t classCount = static_cast<std::size_t>(Class::hangulLVT) + 1;
constexpr std::size_t contextsPerClass = 3 * 3 * 2;
constexpr std::size_t contextCount = classCount * contextsPerClass;

constexpr std::uint16_t numberOf(Context context)
{
    return static_cast<std::uint16_t>(static_cast<unsigned>(context.previous) * contextsPerClass +
                                      static_cast<unsigned>(context.pictograph) * 6 +
                                      static_cast<unsigned>(context.conjunct) * 2 +
                                      (context.flagBegun ? 1 : 0));
}

constexpr Context contextOf(std::size_t number)
{
    return {.previous = static_cast<Class>(number / contextsPerClass),
            .pictograph = static_cast<Context::Pictograph>(number / 6 % 3),
            .conjunct = static_cast<Context::Conjunct>(number / 2 % 3),
            .flagBegun = number % 2 != 0};
}

struct Step
{
    std::uint16_t context : 15;
    std::uint16_t joined : 1;
};

/// The rules for every context and every class: asked one by one they would take longer than all else.
constexpr auto steps = [] {
    std::array<std::array<Step, classCount>, contextCount> table{};
    for (std::size_t number = 0; number < contextCount; ++number) {
        const Context context = contextOf(number);
        for (std::size_t i = 0; i < classCount; ++i) {
            const auto next = static_cast<Class>(i);
            table[number][i].context = numberOf(context.after(next));
            table[number][i].joined = context.joins(next);
        }
    }
    return table;
}();

} // namespace

CharacterBreaks::CharacterBreaks() : m_context(numberOf({}))
{
    static_assert(numberOf(Context{}.after(Class::other)) == behindOther);
}

Class CharacterBreaks::classOf(char32_t codePoint)
{
    if (codePoint < 0x80) {
        return asciiClass(codePoint);
    }
    if (isOrdinary(codePoint)) {
        return Class::other;
    }
    if (IndicBlock::holds(codePoint)) {
        return IndicBlock::classOf(codePoint);
    }
    if (EmojiBlock::holds(codePoint)) {
        return EmojiBlock::classOf(codePoint);
    }
    if (codePoint >= hangulBegin && codePoint < hangulEnd) {
        // Every 28th syllable has no final consonant.
        return (codePoint - hangulBegin) % 28 == 0 ? Class::hangulLV : Class::hangulLVT;
    }
    return classByBreakProperty(static_cast<UChar32>(codePoint));
}

bool CharacterBreaks::startsByTheRules(char32_t codePoint)
{
    const Step step = steps[m_context][static_cast<std::size_t>(classOf(codePoint))];
    m_context = step.context;
    return step.joined == 0;
}

bool CharacterBreaks::asciiStartsCharacter() const
{
    const Class previous = contextOf(m_context).previous;
    return previous != Class::prepend && previous != Class::carriageReturn;
}

void CharacterBreaks::skipAscii(char last)
{
    m_context = numberOf(Context{}.after(asciiClass(static_cast<unsigned char>(last))));
}

} // namespace stavelin::model::classification
