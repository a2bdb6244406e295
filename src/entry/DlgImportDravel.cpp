#include "entry/DlgImportDravel.h"

#include <windows.h>

#include <string>

#include "toolkit/FileDialog.h"

using namespace Dravel;

namespace {

enum Control : int { kPath = 1001, kBrowse = 1002, kProgress = 1006, kState = 1007 };

constexpr UINT_PTR kSliceTimer = 1;
constexpr ULONGLONG kSliceMilliseconds = 40;  // short enough for typing and painting in between
constexpr std::size_t kSliceLines = 200;
constexpr ULONGLONG kShowMilliseconds = 250;  // between two looks at how far it is
constexpr ULONGLONG kLongRun = 2000;  // milliseconds, from which on the button says what it would cancel

DialogTemplate Shape() {
    DialogTemplate shape(L"Import Trades", 300, 92);
    shape
        .Add(
            {.control = DialogControl::Static, .text = L"&File:", .x = 8, .y = 12, .width = 24, .height = 10})
        .Add({.control = DialogControl::Edit,
              .text = {},
              .id = kPath,
              .x = 36,
              .y = 10,
              .width = 196,
              .height = 14,
              .style = style::TabStop | style::Border | style::EditAutoHScroll})
        .Add({.control = DialogControl::Button,
              .text = L"&Browse...",
              .id = kBrowse,
              .x = 238,
              .y = 10,
              .width = 54,
              .height = 14,
              .style = style::TabStop})
        .Add({.text = {},
              .id = kProgress,
              .x = 8,
              .y = 34,
              .width = 284,
              .height = 10,
              .className = kProgressClass})
        .Add({.control = DialogControl::Static,
              .text = {},
              .id = kState,
              .x = 8,
              .y = 50,
              .width = 284,
              .height = 10})
        .Add({.control = DialogControl::Button,
              .text = L"&Import",
              .id = IDOK,
              .x = 180,
              .y = 70,
              .width = 54,
              .height = 14,
              .style = style::TabStop | style::DefaultButton})
        .Add({.control = DialogControl::Button,
              .text = L"Cancel",
              .id = IDCANCEL,
              .x = 238,
              .y = 70,
              .width = 54,
              .height = 14,
              .style = style::TabStop});
    return shape;
}

// Whether the thread has no message to deal with: then a timer's wait would be lost time.
bool NobodyWaits() {
    return HIWORD(GetQueueStatus(QS_ALLINPUT)) == 0;
}

// What is pasted from a file manager stands in quotes.
std::wstring Unquoted(std::wstring path) {
    const auto first = path.find_first_not_of(L" \t\"");
    if (first == std::wstring::npos) return {};
    return path.substr(first, path.find_last_not_of(L" \t\"") - first + 1);
}

}  // namespace

void Dravel::ShowImportDialog(void* owner, const ImportPorts& ports) {
    DlgImportDravel(ports).Open(owner);
}

std::intptr_t DlgImportDravel::Open(void* owner) {
    return DoModal(owner, Shape());
}

void DlgImportDravel::OnInit() {
    FocusItem(kPath);
}

bool DlgImportDravel::OnCommand(int id, int) {
    if (id != kBrowse) return false;
    Browse();
    return true;
}

void DlgImportDravel::Browse() {
    FileDialogParams params;
    params.title = L"Import Trades";
    params.filter = L"CSV files|*.CSV|All files|*.*";
    params.path = Unquoted(Text(kPath));
    if (FileDialog(Window(), params)) SetText(kPath, params.path);
}

void DlgImportDravel::OnOk() {
    if (import_) return;
    const std::wstring path = Unquoted(Text(kPath));
    if (path.empty()) {
        ports_.user.Box("Please Select File", "DravelImport", Buttons::Ok, Icon::Warning);
        FocusItem(kPath);
        return;
    }
    import_ = std::make_unique<CsvImport>(ports_, mapping_);
    if (!import_->Begin(path)) {
        import_.reset();
        return;
    }
    EnableControls(false);
    started_ = GetTickCount64();
    NextSlice();
}

void DlgImportDravel::OnCancel() {
    if (import_) {
        import_->Cancel();
    } else {
        End(kDialogCancel);
    }
}

bool DlgImportDravel::OnMessage(std::uint32_t message, std::uintptr_t wparam, std::intptr_t,
                                std::intptr_t& result) {
    if (message != WM_TIMER || wparam != kSliceTimer) return false;
    result = 0;
    // Off while the slice runs: a box that it opens lets timers through.
    KillTimer(static_cast<HWND>(Window()), kSliceTimer);
    if (import_) Slice();
    return true;
}

// A timer comes after keys and paints; a posted message would come before them.
void DlgImportDravel::NextSlice() {
    SetTimer(static_cast<HWND>(Window()), kSliceTimer, USER_TIMER_MINIMUM, nullptr);
}

void DlgImportDravel::Slice() {
    bool more = true;
    ULONGLONG now = GetTickCount64();
    do {
        const ULONGLONG until = now + kSliceMilliseconds;
        while (more && now < until) {
            more = import_->Step(kSliceLines);
            now = GetTickCount64();
        }
    } while (more && now - shown_ < kShowMilliseconds && NobodyWaits());
    if (!more || now - shown_ >= kShowMilliseconds) {
        shown_ = now;
        import_->ShowTrades();
        ShowProgress();
    }
    if (more) {
        NextSlice();
        return;
    }
    const bool imported = import_->Finish() && !import_->Counts().cancelled;
    import_.reset();
    if (imported) {
        End(kDialogOk);
    } else {
        EnableControls(true);
    }
}

void DlgImportDravel::ShowProgress() {
    const ImportProgress progress = import_->Progress();
    if (progress.bytesOfAll != 0)
        SetProgress(kProgress, static_cast<int>(progress.bytes * 1000 / progress.bytesOfAll));
    SetAnsiText(kState, ProgressText(progress));
    if (!saysCancel_ && GetTickCount64() - started_ >= kLongRun) {
        saysCancel_ = true;
        SetText(kDialogCancel, L"Cancel Import");
    }
}

void DlgImportDravel::EnableControls(bool idle) {
    if (!idle) FocusItem(kDialogCancel);  // a disabled control would swallow the keys
    for (const int id : {static_cast<int>(kPath), static_cast<int>(kBrowse), static_cast<int>(kDialogOk)})
        Enable(id, idle);
    if (!idle) return;
    saysCancel_ = false;
    SetText(kDialogCancel, L"Cancel");
    SetProgress(kProgress, 0);
    SetAnsiText(kState, "");
    FocusItem(kPath);
}
