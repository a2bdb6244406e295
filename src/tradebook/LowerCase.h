// How the trade book sets letter case aside when it filters, sorts and groups.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

namespace Dravel {

// Eight characters at once. The 26 letters only: bytes above 127 mean different letters under different code
// pages, and a book must not change its order with the machine.
constexpr std::uint64_t LowerCase8(std::uint64_t text) {
    constexpr std::uint64_t kEach = 0x0101010101010101;
    const std::uint64_t low = text & (kEach * 0x7F);
    const std::uint64_t fromA = low + kEach * (0x80 - 'A'), afterZ = low + kEach * (0x7F - 'Z');
    return text | ((fromA & ~afterZ & ~text & (kEach * 0x80)) >> 2);
}

inline void LowerCase(std::string& text) {
    for (std::size_t at = 0; at < text.size(); at += 8) {
        const std::size_t count = text.size() - at < 8 ? text.size() - at : 8;
        std::uint64_t part = 0;
        std::memcpy(&part, text.data() + at, count);
        part = LowerCase8(part);
        std::memcpy(text.data() + at, &part, count);
    }
}

}  // namespace Dravel
