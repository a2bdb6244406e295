// Writes pictures as PNG.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace Dravel::DevHost {

// `pixels`: height rows of width 32-bit values, blue in the low byte, top row first.
bool WritePng(const std::filesystem::path& file, const std::vector<std::uint32_t>& pixels,
              std::uint32_t width, std::uint32_t height);

}  // namespace Dravel::DevHost
