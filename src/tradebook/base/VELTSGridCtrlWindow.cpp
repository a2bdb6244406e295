#include <windows.h>

#include <cstring>
#include <numeric>
#include <span>
#include <vector>

#include "toolkit/AnsiText.h"
#include "tradebook/base/GridHtml.h"
#include "tradebook/base/GridText.h"
#include "tradebook/base/VELTSGridCtrl.h"

namespace {

constexpr wchar_t kHtmlFormat[] = L"HTML Format";
constexpr char kBusyClipboard[] = "The clipboard is in use by another program, please repeat command.";

struct ClipboardPart {
    UINT format;
    const void* bytes;
    std::size_t size;
};

// The clipboard owns the memory afterwards.
bool Put(const ClipboardPart& part) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, part.size);
    if (!memory) return false;
    std::memcpy(GlobalLock(memory), part.bytes, part.size);
    GlobalUnlock(memory);
    if (SetClipboardData(part.format, memory)) return true;
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

// All parts or none.
bool PutAll(HWND window, std::span<const ClipboardPart> parts) {
    if (!OpenClipboardPatiently(window)) return false;
    EmptyClipboard();
    bool all = true;
    for (const ClipboardPart& part : parts)
        all = all && Put(part);
    if (!all) EmptyClipboard();
    CloseClipboard();
    return all;
}

ClipboardPart TextPart(const std::wstring& text) {
    return {CF_UNICODETEXT, text.c_str(), (text.size() + 1) * sizeof(wchar_t)};
}

std::vector<int> ShownColumns(const Dravel::GridColumns& columns) {
    std::vector<int> shown;
    for (int position = 0; position < columns.ShownCount(); ++position)
        shown.push_back(columns.AtPosition(position));
    return shown;
}

}  // namespace

void CVELTSGridCtrl::Tell(const char* text) {
    if (Dravel::IUser* user = User())
        user->Box(text, "Dravel", Dravel::Buttons::Ok, Dravel::Icon::Information);
}

bool CVELTSGridCtrl::CopySelection() {
    if (!Source() || Selection().Empty()) return false;
    std::vector<int> all(static_cast<std::size_t>(Columns().Count()));
    std::iota(all.begin(), all.end(), 0);
    const std::string whole = Dravel::RowsAsText(*Source(), Selection(), all);
    const std::wstring shown =
        Dravel::Widen(Dravel::RowsAsText(*Source(), Selection(), ShownColumns(Columns())));
    const ClipboardPart parts[] = {
        TextPart(shown), {RegisterClipboardFormatW(kClipboardFormat), whole.c_str(), whole.size() + 1}};
    if (PutAll(static_cast<HWND>(Window()), parts)) return true;
    Tell(kBusyClipboard);
    return false;
}

bool CVELTSGridCtrl::MayCopy() {
    if (!Window() || !Source()) return false;
    const char* refusal = Dravel::RefusalToCopy(Selection());
    if (refusal) Tell(refusal);
    return !refusal;
}

bool CVELTSGridCtrl::CopyAsHtml() {
    if (!MayCopy()) return false;
    const std::vector<int> shown = ShownColumns(Columns());
    const std::wstring text = Dravel::Widen(Dravel::RowsAsText(*Source(), Selection(), shown));
    const std::string html = Dravel::ClipboardHtml(
        Dravel::Utf8(Dravel::Widen(Dravel::RowsAsHtml(*Source(), Selection(), Columns(), shown))));
    const ClipboardPart parts[] = {{RegisterClipboardFormatW(kHtmlFormat), html.c_str(), html.size() + 1},
                                   TextPart(text)};
    if (!PutAll(static_cast<HWND>(Window()), parts)) {
        Tell(kBusyClipboard);
        return false;
    }
    // The second text can only show when the selection is lost between the check and here.
    Tell(Selection().Empty() ? "Content of the grid was copied to the clipboard as HTML"
                             : "Selection was copied to the clipboard as HTML");
    return true;
}

void CVELTSGridCtrl::ToggleFilterBar() {
    if (FilterBarShown()) {
        DisableFilterBar();
    } else {
        EnableFilterBar(kNoFilter, GridName());
    }
}
