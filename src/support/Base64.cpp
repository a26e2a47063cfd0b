#include "support/Base64.h"

#include <array>
#include <cstdint>

namespace stavelin::support {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t notInAlphabet = 0xFF;

constexpr std::array<std::uint8_t, 256> makeValues()
{
    std::array<std::uint8_t, 256> values{};
    values.fill(notInAlphabet);
    for (std::size_t i = 0; i < alphabet.size(); ++i)
        values[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
    return values;
}
constexpr std::array<std::uint8_t, 256> values = makeValues();

std::uint32_t valueOf(char character)
{
    return values[static_cast<unsigned char>(character)];
}

} // namespace

std::optional<std::vector<std::byte>> decodeBase64(std::string_view text)
{
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::size_t padding = 0;
    if (text.ends_with("=="))
        padding = 2;
    else if (text.ends_with('='))
        padding = 1;

    std::vector<std::byte> bytes(text.size() / 4 * 3);
    std::byte *out = bytes.data();
    const std::size_t wholeGroups = text.size() / 4 - (padding > 0 ? 1 : 0);
    std::uint32_t invalid = 0; // looked at once, behind the loop
    for (std::size_t group = 0; group < wholeGroups; ++group) {
        const char *in = text.data() + 4 * group;
        const std::uint32_t a = valueOf(in[0]);
        const std::uint32_t b = valueOf(in[1]);
        const std::uint32_t c = valueOf(in[2]);
        const std::uint32_t d = valueOf(in[3]);
        invalid |= a | b | c | d;
        const std::uint32_t bits = a << 18 | b << 12 | c << 6 | d;
        *out++ = static_cast<std::byte>(bits >> 16);
        *out++ = static_cast<std::byte>(bits >> 8);
        *out++ = static_cast<std::byte>(bits);
    }
    if (padding > 0) {
        const char *in = text.data() + 4 * wholeGroups;
        const std::uint32_t a = valueOf(in[0]);
        const std::uint32_t b = valueOf(in[1]);
        const std::uint32_t c = padding == 1 ? valueOf(in[2]) : 0;
        invalid |= a | b | c;
        const std::uint32_t bits = a << 18 | b << 12 | c << 6;
        if ((bits & (padding == 1 ? 0xFFU : 0xFFFFU)) != 0)
            return std::nullopt; // the last character has bits that stand for no byte
        *out++ = static_cast<std::byte>(bits >> 16);
        if (padding == 1)
            *out++ = static_cast<std::byte>(bits >> 8);
    }
    if ((invalid & 0xC0U) != 0) // a value of the alphabet has six bits
        return std::nullopt;
    bytes.resize(bytes.size() - padding);
    return bytes;
}

std::string encodeBase64(std::span<const std::byte> bytes)
{
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    const auto append = [&text](std::uint32_t bits, std::size_t characters) {
        for (std::size_t i = 0; i < 4; ++i)
            text += i < characters ? alphabet[bits >> (18 - 6 * i) & 0x3FU] : '=';
    };
    const auto at = [&bytes](std::size_t i) { return std::to_integer<std::uint32_t>(bytes[i]); };

    std::size_t i = 0;
    for (; i + 3 <= bytes.size(); i += 3)
        append(at(i) << 16 | at(i + 1) << 8 | at(i + 2), 4);
    if (bytes.size() - i == 2)
        append(at(i) << 16 | at(i + 1) << 8, 3);
    else if (bytes.size() - i == 1)
        append(at(i) << 16, 2);
    return text;
}

} // namespace stavelin::support
