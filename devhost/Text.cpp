// Conversions between the texts of frames (ANSI), of windows (wide) and of scripts (UTF-8).
#include "Text.h"

#include <windows.h>

namespace Dravel::DevHost {
namespace {

std::wstring ToWide(UINT page, std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(page, 0, text.data(), size, nullptr, 0)),
                      L'\0');
    MultiByteToWideChar(page, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string ToNarrow(UINT page, std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(page, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(page, 0, text.data(), size, narrow.data(), needed, nullptr, nullptr);
    return narrow;
}

std::string TwoDigits(int value, int digits = 2) {
    std::string text = NumberText(value);
    return std::string(static_cast<std::size_t>(digits) - text.size(), '0') + text;
}

}  // namespace

std::wstring Wide(std::string_view ansi) {
    return ToWide(CP_ACP, ansi);
}
std::string Narrow(std::wstring_view wide) {
    return ToNarrow(CP_ACP, wide);
}
std::wstring FromUtf8(std::string_view utf8) {
    return ToWide(CP_UTF8, utf8);
}
std::string ToUtf8(std::wstring_view wide) {
    return ToNarrow(CP_UTF8, wide);
}

bool ParseHex(std::string_view text, std::uint64_t& value) {
    auto result = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

std::string Upper(std::string_view text) {
    std::string upper(text);
    for (char& c : upper)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return upper;
}

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::string TimeOfDay() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return TwoDigits(now.wHour) + ':' + TwoDigits(now.wMinute) + ':' + TwoDigits(now.wSecond) + '.' +
           TwoDigits(now.wMilliseconds, 3);
}

bool Matches(std::wstring_view pattern, std::wstring_view text) {
    const bool before = !pattern.empty() && pattern.front() == L'*';
    if (before) pattern.remove_prefix(1);
    const bool after = !pattern.empty() && pattern.back() == L'*';
    if (after) pattern.remove_suffix(1);
    if (before && after) return text.find(pattern) != text.npos;
    if (before) return text.ends_with(pattern);
    if (after) return text.starts_with(pattern);
    return text == pattern;
}

}  // namespace Dravel::DevHost
