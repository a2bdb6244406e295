#include "tradebook/base/RememberedAnswers.h"

#include <charconv>

namespace Dravel {

namespace {

// FNV-1a, 64 bits: names a text of any length within the settings. Begins with a letter, as a name of a value
// must.
std::string NameOf(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof(digits), hash, 16);
    return "T" + std::string(digits, end.ptr);
}

// A caption is part of the key's path, so only what cannot be taken for anything else stays of it.
std::string KeyOf(std::string_view caption) {
    std::string key = "MessageBox\\";
    for (const char c : caption) {
        const bool plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
        key += plain ? c : '_';
    }
    return key;
}

}  // namespace

std::optional<std::uint32_t> RememberedAnswers::Find(std::string_view caption, std::string_view text) const {
    std::int32_t button = 0;
    if (!settings_.Open(KeyOf(caption)) || !settings_.ReadInteger(NameOf(text), button) || button < 1)
        return {};
    return static_cast<std::uint32_t>(button);
}

void RememberedAnswers::Remember(std::string_view caption, std::string_view text, std::uint32_t button) {
    if (!settings_.CreateKey(KeyOf(caption))) return;
    settings_.WriteInteger(NameOf(text), static_cast<std::int32_t>(button));
}

}  // namespace Dravel
