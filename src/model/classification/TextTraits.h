#pragma once

#include "model/classification/TextTrait.h"

#include <cstdint>

namespace stavelin::model::classification {

/// A set of traits.
class TextTraits
{
public:
    constexpr TextTraits() = default;
    constexpr TextTraits(TextTrait trait) : m_bits(std::uint32_t{1} << static_cast<unsigned>(trait)) {}

    [[nodiscard]] constexpr bool has(TextTrait trait) const
    {
        return (m_bits & TextTraits(trait).m_bits) != 0;
    }
    [[nodiscard]] constexpr bool isEmpty() const { return m_bits == 0; }

    constexpr TextTraits &operator|=(TextTraits more)
    {
        m_bits |= more.m_bits;
        return *this;
    }
    friend constexpr bool operator==(TextTraits, TextTraits) = default;

private:
    std::uint32_t m_bits = 0;
};

} // namespace stavelin::model::classification
