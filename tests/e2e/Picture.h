#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace stavelin::e2e {

/// What a screen or a window showed: one 0x00RRGGBB per pixel, row by row from the top.
struct Picture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    /// How many different colours there are: a window that painted nothing has one.
    [[nodiscard]] std::size_t colourCount() const;

    /// Throws Unmet when the file cannot be written.
    void savePng(const std::filesystem::path &file) const;

    friend bool operator==(const Picture &, const Picture &) = default;
};

} // namespace stavelin::e2e
