// The fixed-capacity texts of a record.
#pragma once

#include <algorithm>
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

// Cuts `value` to the capacity, and at a zero byte within it; the rest of the array becomes zero.
template <std::size_t Capacity>
void SetText(char (&text)[Capacity], std::string_view value) {
    value = value.substr(0, std::min(value.find('\0'), Capacity));
    if (!value.empty()) std::memmove(text, value.data(), value.size());
    std::memset(text + value.size(), 0, Capacity - value.size());
}

}  // namespace Dravel
