#include "toolkit/AnsiText.h"

#include <windows.h>

#include <algorithm>
#include <limits>

namespace Dravel {
namespace {

int Units(std::size_t length) {
    return static_cast<int>(std::min<std::size_t>(length, std::numeric_limits<int>::max()));
}

}  // namespace

void Widen(std::string_view text, std::wstring& wide) {
    // No code page gives more units than bytes, so one pass is enough.
    wide.resize(text.size());
    const int count = text.empty() ? 0
                                   : MultiByteToWideChar(CP_ACP, 0, text.data(), Units(text.size()),
                                                         wide.data(), Units(wide.size()));
    wide.resize(static_cast<std::size_t>(count));
}

std::wstring Widen(std::string_view text) {
    std::wstring wide;
    Widen(text, wide);
    return wide;
}

std::string Narrow(std::wstring_view text) {
    if (text.empty()) return {};
    const int count =
        WideCharToMultiByte(CP_ACP, 0, text.data(), Units(text.size()), nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(count), '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), Units(text.size()), narrow.data(), count, nullptr, nullptr);
    return narrow;
}

}  // namespace Dravel
