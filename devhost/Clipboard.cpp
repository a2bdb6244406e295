// Reads the clipboard.
#include "Clipboard.h"

namespace Dravel::DevHost {

UINT OwnClipboardFormat() {
    return RegisterClipboardFormatW(L"VELT_CLIPBOARD");
}

bool ReadClipboard(UINT format, std::string& bytes) {
    if (!OpenClipboard(nullptr)) return false;
    bytes.clear();
    const HANDLE data = GetClipboardData(format);
    if (const void* block = data ? GlobalLock(data) : nullptr) {
        bytes.assign(static_cast<const char*>(block), GlobalSize(data));
        GlobalUnlock(data);
    }
    return CloseClipboard() != 0;
}

}  // namespace Dravel::DevHost
