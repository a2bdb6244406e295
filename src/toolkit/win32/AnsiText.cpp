#include "toolkit/AnsiText.h"

#include <windows.h>

#include <algorithm>
#include <limits>

namespace Dravel {
namespace {

int Units(std::size_t length) {
    return static_cast<int>(std::min<std::size_t>(length, std::numeric_limits<int>::max()));
}

// Code pages that take no such flags refuse them: UTF-8 among them, which needs none.
std::string Bytes(UINT page, DWORD flags, std::wstring_view text) {
    if (text.empty()) return {};
    const int count =
        WideCharToMultiByte(page, flags, text.data(), Units(text.size()), nullptr, 0, nullptr, nullptr);
    if (count == 0 && flags != 0) return Bytes(page, 0, text);
    std::string bytes(static_cast<std::size_t>(count), '\0');
    WideCharToMultiByte(page, flags, text.data(), Units(text.size()), bytes.data(), count, nullptr, nullptr);
    return bytes;
}

// No page gives more units than bytes, so one pass is enough. 0: the text is none of the page, or empty.
int WideUnits(UINT page, DWORD flags, std::string_view text, std::wstring& wide) {
    wide.resize(text.size());
    if (text.empty()) return 0;
    return MultiByteToWideChar(page, flags, text.data(), Units(text.size()), wide.data(), Units(wide.size()));
}

}  // namespace

void Widen(std::string_view text, std::wstring& wide) {
    wide.resize(static_cast<std::size_t>(WideUnits(CP_ACP, 0, text, wide)));
}

std::wstring Widen(std::string_view text) {
    std::wstring wide;
    Widen(text, wide);
    return wide;
}

std::string Narrow(std::wstring_view text) {
    // Or the infinity sign would become an 8.
    return Bytes(CP_ACP, WC_NO_BEST_FIT_CHARS, text);
}

std::string Utf8(std::wstring_view text) {
    return Bytes(CP_UTF8, 0, text);
}

std::wstring FromUtf8(std::string_view text) {
    std::wstring wide;
    const int count = WideUnits(CP_UTF8, MB_ERR_INVALID_CHARS, text, wide);
    if (count == 0) return Widen(text);
    wide.resize(static_cast<std::size_t>(count));
    return wide;
}

}  // namespace Dravel
