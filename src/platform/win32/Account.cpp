#include "platform/Account.h"

#include <windows.h>

namespace Dravel {

std::string AccountName() {
    wchar_t wide[257];  // what the system grants an account, and the zero
    DWORD size = static_cast<DWORD>(std::size(wide));
    if (!GetUserNameW(wide, &size) || size < 2) return {};
    char narrow[1024];
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide, static_cast<int>(size - 1), narrow,
                                           static_cast<int>(std::size(narrow)), nullptr, nullptr);
    return std::string(narrow, static_cast<std::size_t>(length));
}

}  // namespace Dravel
