// How letter case is set aside: in filters, sorting, groups, and in what a typed text can mean.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

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

constexpr char LowerLetter(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

inline bool BeginsWithLetters(std::string_view text, std::string_view start) {
    return text.size() >= start.size() &&
           std::equal(start.begin(), start.end(), text.begin(),
                      [](char a, char b) { return LowerLetter(a) == LowerLetter(b); });
}

inline bool SameLetters(std::string_view a, std::string_view b) {
    return a.size() == b.size() && BeginsWithLetters(a, b);
}

}  // namespace Dravel
