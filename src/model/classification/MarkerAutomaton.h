#pragma once

#include "model/classification/TextTraits.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace stavelin::model::classification {

/// Finds every one of a set of markers in a single pass (Aho-Corasick): one table look-up per byte, however
/// many markers there are. Immutable once built, so that threads may share it.
class MarkerAutomaton
{
public:
    struct Marker
    {
        std::string_view text; ///< not empty
        TextTraits traits;     ///< what it means that the text was seen
    };
    enum class LetterCase { exact, ignoredForAscii };

    /// How far the last bytes have come in the markers. An offset into the table of transitions.
    using State = std::uint16_t;
    static constexpr State start = 0;

    MarkerAutomaton(std::span<const Marker> markers, LetterCase letterCase);

    [[nodiscard]] State next(State state, char byte) const
    {
        return m_next[state + m_columns[static_cast<unsigned char>(byte)]];
    }
    /// Whether a marker ends here. Rare, so that a search tests this alone for nearly every byte.
    [[nodiscard]] bool isMatch(State state) const { return state >= m_firstMatch; }
    /// The traits of all markers that end here; only for a state that is a match.
    [[nodiscard]] TextTraits found(State state) const { return m_found[(state - m_firstMatch) / m_width]; }

private:
    std::array<std::uint8_t, 256> m_columns{}; ///< column 0 is for all bytes that no marker holds
    std::size_t m_width = 1;                   ///< columns, thus the distance between two states
    std::vector<State> m_next;
    std::size_t m_firstMatch = 0; ///< the states that match come last
    std::vector<TextTraits> m_found;
};

} // namespace stavelin::model::classification
