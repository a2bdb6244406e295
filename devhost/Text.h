// Texts as the host needs them: narrow <-> wide in the ANSI code page, numbers by to_chars / from_chars.
#pragma once

#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

namespace Dravel::DevHost {

std::wstring Wide(std::string_view ansi);
std::string Narrow(std::wstring_view wide);

// UTF-8, in which scripts are written and reports are printed.
std::wstring FromUtf8(std::string_view utf8);
std::string ToUtf8(std::wstring_view wide);

// Shortest form that reads back as the same number.
template <class Number>
std::string NumberText(Number value) {
    char buffer[64];
    auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    return {buffer, end};
}

// False unless the whole text is one number of this type.
template <class Number>
bool ParseNumber(std::string_view text, Number& value) {
    auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}
bool ParseHex(std::string_view text, std::uint64_t& value);

std::string Upper(std::string_view text);
std::string_view Trim(std::string_view text);
// "hh:mm:ss.mmm" of the local time now.
std::string TimeOfDay();
// `pattern` with a star at its start or end matches the rest anywhere / up to there; without one the whole
// text counts.
bool Matches(std::wstring_view pattern, std::wstring_view text);

}  // namespace Dravel::DevHost
