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

/// Long stretches that hold nothing but ordinary letters, which most texts consist of, and the replacement
/// character, which broken texts consist of.
bool isOrdinary(char32_t c)
{
    if (c < 0x300) {
        return c >= 0xA0 && c != 0xA9 && c != 0xAD && c != 0xAE;
    }
    if (c >= 0x3400) {
        return c < 0xA000 || c == 0xFFFD;
    }
    return (c >= 0x370 && c < 0x483) || (c >= 0x48A && c < 0x591) || (c >= 0x1E00 && c < 0x200B) ||
           (c >= 0x3041 && c < 0x3099) || (c >= 0x30A0 && c < 0x3100);
}

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

bool breaksOnBothSides(Class c)
{
    return c == Class::control || c == Class::carriageReturn || c == Class::lineFeed;
}

bool extends(Class c)
{
    return c == Class::extend || c == Class::combiningExtend || c == Class::virama;
}

bool joinsHangul(Class previous, Class next)
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

} // namespace

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

void CharacterBreaks::skipAscii(char last)
{
    follow(asciiClass(static_cast<unsigned char>(last)), false);
}

bool CharacterBreaks::startsCharacter(Class next)
{
    const bool joined = joins(next);
    follow(next, joined);
    return !joined;
}

bool CharacterBreaks::joins(Class next) const
{
    if (m_previous == Class::carriageReturn && next == Class::lineFeed) {
        return true;
    }
    if (breaksOnBothSides(m_previous) || breaksOnBothSides(next)) {
        return false;
    }
    if (extends(next) || next == Class::zeroWidthJoiner || next == Class::spacingMark ||
        m_previous == Class::prepend) {
        return true;
    }
    switch (next) {
    case Class::pictographic:
        return m_pictograph == Pictograph::joined;
    case Class::linkingConsonant:
        return m_conjunct == Conjunct::linked;
    case Class::regionalIndicator:
        return m_flagBegun;
    default:
        return joinsHangul(m_previous, next);
    }
}

void CharacterBreaks::follow(Class next, bool joined)
{
    m_previous = next;
    m_flagBegun = next == Class::regionalIndicator && !(joined && m_flagBegun);

    if (next == Class::pictographic) {
        m_pictograph = Pictograph::begun;
    } else if (next == Class::zeroWidthJoiner && m_pictograph == Pictograph::begun) {
        m_pictograph = Pictograph::joined;
    } else if (!extends(next) || m_pictograph == Pictograph::joined) {
        m_pictograph = Pictograph::none;
    }

    if (next == Class::linkingConsonant) {
        m_conjunct = Conjunct::consonant;
    } else if (next == Class::virama && m_conjunct != Conjunct::none) {
        m_conjunct = Conjunct::linked;
    } else if (next != Class::combiningExtend && next != Class::virama && next != Class::zeroWidthJoiner) {
        m_conjunct = Conjunct::none;
    }
}

} // namespace stavelin::model::classification
