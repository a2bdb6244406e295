// PNG, the least of it: one header, one deflated block of unfiltered RGB rows, the end.
#include "Png.h"

#include <zlib.h>

#include <fstream>
#include <string>

namespace Dravel::DevHost {
namespace {

std::string BigEndian(std::uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift);
    return bytes;
}

std::string Chunk(const std::string& type, const std::string& data) {
    const std::string body = type + data;
    const auto sum = crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
    return BigEndian(static_cast<std::uint32_t>(data.size())) + body +
           BigEndian(static_cast<std::uint32_t>(sum));
}

std::string Rows(const std::vector<std::uint32_t>& pixels, std::uint32_t width, std::uint32_t height) {
    std::string rows;
    rows.reserve((3 * width + 1) * height);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (i % width == 0) rows += '\0';  // row filter: none
        for (int shift = 16; shift >= 0; shift -= 8)
            rows += static_cast<char>(pixels[i] >> shift);
    }
    return rows;
}

}  // namespace

bool WritePng(const std::filesystem::path& file, const std::vector<std::uint32_t>& pixels,
              std::uint32_t width, std::uint32_t height) {
    if (!width || pixels.size() != static_cast<std::size_t>(width) * height) return false;
    const std::string rows = Rows(pixels, width, height);
    uLongf size = compressBound(static_cast<uLong>(rows.size()));
    std::string packed(size, '\0');
    if (compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(rows.data()),
                 static_cast<uLong>(rows.size())) != Z_OK)
        return false;
    packed.resize(size);
    const std::string eightBitRgb("\x08\x02\x00\x00\x00", 5);
    std::ofstream out(file, std::ios::binary);
    out << "\x89PNG\r\n\x1A\n"
        << Chunk("IHDR", BigEndian(width) + BigEndian(height) + eightBitRgb) << Chunk("IDAT", packed)
        << Chunk("IEND", "");
    return out.good();
}

}  // namespace Dravel::DevHost
