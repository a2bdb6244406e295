#include <windows.h>

#include <cstring>
#include <numeric>
#include <vector>

#include "toolkit/AnsiText.h"
#include "tradebook/base/GridText.h"
#include "tradebook/base/VELTSGridCtrl.h"

namespace {

// Hands `bytes` over to the clipboard, which owns them afterwards.
bool PutOnClipboard(UINT format, const void* bytes, std::size_t size) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
    if (!memory) return false;
    std::memcpy(GlobalLock(memory), bytes, size);
    GlobalUnlock(memory);
    if (SetClipboardData(format, memory)) return true;
    GlobalFree(memory);
    return false;
}

// Another program may hold the clipboard for a moment.
bool OpenClipboardPatiently(HWND window) {
    for (int tries = 0; tries < 10; ++tries) {
        if (OpenClipboard(window)) return true;
        Sleep(20);
    }
    return false;
}

std::vector<int> ShownColumns(const Dravel::GridColumns& columns) {
    std::vector<int> shown;
    for (int position = 0; position < columns.ShownCount(); ++position)
        shown.push_back(columns.AtPosition(position));
    return shown;
}

}  // namespace

bool CVELTSGridCtrl::CopySelection() {
    if (!Source() || Selection().Empty()) return false;
    std::vector<int> all(static_cast<std::size_t>(Columns().Count()));
    std::iota(all.begin(), all.end(), 0);
    const std::string whole = Dravel::RowsAsText(*Source(), Selection(), all);
    const std::wstring shown =
        Dravel::Widen(Dravel::RowsAsText(*Source(), Selection(), ShownColumns(Columns())));
    if (!OpenClipboardPatiently(static_cast<HWND>(Window()))) return false;
    EmptyClipboard();
    const bool text = PutOnClipboard(CF_UNICODETEXT, shown.c_str(), (shown.size() + 1) * sizeof(wchar_t));
    const bool own =
        PutOnClipboard(RegisterClipboardFormatW(kClipboardFormat), whole.c_str(), whole.size() + 1);
    CloseClipboard();
    return text && own;
}
