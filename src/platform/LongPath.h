// Paths beyond the 260 characters that Windows takes as they stand.
#pragma once

#include <string>
#include <string_view>

namespace Dravel {

// The form in which a full Windows path (absolute, as GetFullPathName gives it) may have up to 32,767
// characters. Paths of devices and those that have that form already are given back as they are, and so is
// what is no full path.
inline std::wstring LongPathForm(std::wstring_view full) {
    constexpr std::wstring_view kLong = L"\\\\?\\", kDevice = L"\\\\.\\", kShare = L"\\\\";
    const bool drive = full.size() >= 3 && full[1] == L':' && full[2] == L'\\';
    if (full.starts_with(kLong) || full.starts_with(kDevice) || !(drive || full.starts_with(kShare)))
        return std::wstring(full);
    std::wstring path(kLong);
    if (!drive) path += L"UNC\\";
    return path += full.substr(drive ? 0 : kShare.size());
}

}  // namespace Dravel
