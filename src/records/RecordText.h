// The fixed-capacity texts of a record.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace Dravel {

// The text up to its first zero byte, all of the capacity when there is none. Borrows the array.
template <std::size_t Capacity>
std::string_view TextOf(const char (&text)[Capacity]) {
    const void* end = std::memchr(text, 0, Capacity);
    return {text, end ? static_cast<std::size_t>(static_cast<const char*>(end) - text) : Capacity};
}

// How much of a text that is too long is kept: `capacity` bytes, or less when the text is UTF-8 and would be
// cut within a character.
std::size_t CutLength(std::string_view text, std::size_t capacity);

// Cuts `value` to the capacity (CutLength), and at a zero byte within it; the rest of the array becomes zero.
// `value` may lie in the array. Clearing, looking for that byte and storing go over the whole array, whose
// size the compiler knows; with calls for the length of each text the import of a line took a sixth longer.
template <std::size_t Capacity>
void SetText(char (&text)[Capacity], std::string_view value) {
    static_assert(Capacity < 256);
    const std::size_t size = value.size() <= Capacity ? value.size() : CutLength(value, Capacity);
    char whole[Capacity] = {};
    if (size != 0) std::memcpy(whole, value.data(), size);
    unsigned char zeros = 0;
    for (const char c : whole)
        zeros += c == 0;
    if (zeros != Capacity - size) {
        const std::size_t cut = TextOf(whole).size();
        std::memset(whole + cut, 0, Capacity - cut);
    }
    std::memcpy(text, whole, Capacity);
}

}  // namespace Dravel
