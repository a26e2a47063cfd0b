#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace stavelin::testkit {

/// Makes texts that come close to what the classifier looks for: the same ones for the same seed, on every
/// machine.
class RandomTexts
{
public:
    enum class Kind { pieces, lines, token, email, phone, url, command, letterCase, bytes };
    static constexpr int kindCount = 9;

    explicit RandomTexts(std::uint32_t seed) : m_engine(seed) {}

    [[nodiscard]] std::string next(Kind kind);

private:
    [[nodiscard]] std::size_t below(std::size_t end) { return m_engine() % end; }
    [[nodiscard]] bool oneIn(std::size_t chances) { return below(chances) == 0; }
    [[nodiscard]] const std::string &oneOf(const std::vector<std::string> &choices);
    [[nodiscard]] std::string joined(const std::vector<std::string> &choices, std::size_t most);
    [[nodiscard]] std::string token();
    [[nodiscard]] std::string email();
    [[nodiscard]] std::string phone();
    [[nodiscard]] std::string url();
    [[nodiscard]] std::string command();
    [[nodiscard]] std::string bytes();
    /// Now and then puts something where it does not belong.
    [[nodiscard]] std::string disturbed(std::string text);

    std::mt19937 m_engine;
};

} // namespace stavelin::testkit
