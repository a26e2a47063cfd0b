#include "model/classification/MarkerAutomaton.h"

#include <cassert>
#include <limits>

namespace stavelin::model::classification {

namespace {

/// The automaton while it is made: states numbered as they were met, one row of successors each.
struct Draft
{
    using Row = std::vector<std::size_t>;

    explicit Draft(std::size_t columns) : width(columns), rows(1, Row(columns, none)), traits(1) {}

    std::size_t successor(std::size_t state, std::size_t column)
    {
        if (rows[state][column] == none) {
            rows[state][column] = rows.size();
            rows.emplace_back(width, none);
            traits.emplace_back();
        }
        return rows[state][column];
    }

    /// Fills in where a text goes that leaves the marker it was in: to the longest beginning of another
    /// marker that its last bytes are. Breadth first, since a state's way back is shorter than the state.
    void completeTransitions()
    {
        std::vector<std::size_t> fallback(rows.size(), 0);
        std::vector<std::size_t> waiting{0};
        for (std::size_t done = 0; done < waiting.size(); ++done) {
            const std::size_t state = waiting[done];
            traits[state] |= traits[fallback[state]];
            for (std::size_t column = 0; column < width; ++column) {
                std::size_t &next = rows[state][column];
                const std::size_t otherwise = state == 0 ? 0 : rows[fallback[state]][column];
                if (next == none) {
                    next = otherwise;
                } else {
                    fallback[next] = otherwise;
                    waiting.push_back(next);
                }
            }
        }
        order = waiting;
    }

    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    std::size_t width;
    std::vector<Row> rows;
    std::vector<TextTraits> traits;
    std::vector<std::size_t> order; ///< breadth first: the states that are visited most stand together
};

constexpr char otherCase(char letter)
{
    if (letter >= 'a' && letter <= 'z') {
        return static_cast<char>(letter - 'a' + 'A');
    }
    if (letter >= 'A' && letter <= 'Z') {
        return static_cast<char>(letter - 'A' + 'a');
    }
    return letter;
}

} // namespace

MarkerAutomaton::MarkerAutomaton(std::span<const Marker> markers, LetterCase letterCase)
{
    const auto columnOf = [this](char byte) -> std::uint8_t & {
        return m_columns[static_cast<unsigned char>(byte)];
    };
    for (const Marker &marker : markers) {
        for (const char byte : marker.text) {
            if (columnOf(byte) == 0) {
                columnOf(byte) = static_cast<std::uint8_t>(m_width++);
                if (letterCase == LetterCase::ignoredForAscii) {
                    columnOf(otherCase(byte)) = columnOf(byte);
                }
            }
        }
    }

    Draft draft(m_width);
    for (const Marker &marker : markers) {
        std::size_t state = 0;
        for (const char byte : marker.text) {
            state = draft.successor(state, columnOf(byte));
        }
        draft.traits[state] |= marker.traits;
    }
    draft.completeTransitions();
    assert(draft.rows.size() * m_width <= std::numeric_limits<State>::max());

    std::vector<State> place(draft.rows.size());
    std::size_t placed = 0;
    for (const bool matching : {false, true}) {
        m_firstMatch = placed * m_width;
        for (const std::size_t state : draft.order) {
            if (draft.traits[state].isEmpty() != matching) {
                place[state] = static_cast<State>(placed++ * m_width);
                if (matching) {
                    m_found.push_back(draft.traits[state]);
                }
            }
        }
    }
    m_next.resize(placed * m_width);
    for (const std::size_t state : draft.order) {
        for (std::size_t column = 0; column < m_width; ++column) {
            m_next[place[state] + column] = place[draft.rows[state][column]];
        }
    }
}

} // namespace stavelin::model::classification
