#include "records/RecordText.h"

#include <bit>

namespace Dravel {

namespace {

bool Continues(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Bytes of the UTF-8 character that begins with `lead`; 0: none does.
std::size_t CharacterLength(char lead) {
    const int ones = std::countl_one(static_cast<unsigned char>(lead));
    return ones == 0 ? 1 : ones >= 2 && ones <= 4 ? static_cast<std::size_t>(ones) : 0;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text.front());
        if (length == 0 || length > text.size()) return false;
        for (std::size_t i = 1; i < length; ++i) {
            if (!Continues(text[i])) return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

}  // namespace

// The code page is nobody's business here; a text of another one that reads as UTF-8 to its last byte is
// rare.
std::size_t CutLength(std::string_view text, std::size_t capacity) {
    if (text.size() <= capacity) return text.size();
    std::size_t cut = capacity;
    while (cut > 0 && Continues(text[cut]))
        --cut;
    return cut == capacity || !IsUtf8(text) ? capacity : cut;
}

}  // namespace Dravel
