#include "entry/DlgImportDravel.h"

#include <windows.h>

#include <exception>
#include <string>
#include <system_error>

#include "formatset/FileNameFormat.h"
#include "formatset/dialog/DlgFormatSet.h"
#include "toolkit/AnsiText.h"
#include "toolkit/FileDialog.h"
#include "toolkit/Module.h"
#include "tradebook/TradeColumns.h"

using namespace Dravel;

namespace {

enum Control : int {
    kPath = 1001,
    kBrowse,
    kFileName,
    kEditSets,
    kSet,
    kProgress,
    kState,
    kSetHint,
};

constexpr UINT_PTR kSliceTimer = 1;
constexpr ULONGLONG kSliceMilliseconds = 40;  // short enough for typing and painting in between
constexpr std::size_t kSliceLines = 200;
constexpr ULONGLONG kShowMilliseconds = 250;  // between two looks at how far it is
constexpr ULONGLONG kLongRun = 2000;  // milliseconds, from which on the button says what it would cancel

constexpr wchar_t kNoSet[] = L"(none)";
constexpr char kSettingsKey[] = "Import", kLastSet[] = "LastSet", kLastFolder[] = "LastFolder";

constexpr std::uint32_t kEditStyle = style::TabStop | style::EditAutoHScroll;

// Each label stands in front of its field, so that its mnemonic goes there.
DialogTemplate Shape() {
    const DialogItem items[] = {
        {DialogControl::Static, L"&File:", 0, 8, 12, 46, 9},
        {DialogControl::Edit, {}, kPath, 56, 10, 188, 14, kEditStyle},
        {DialogControl::Button, L"&Browse...", kBrowse, 250, 10, 62, 14, style::TabStop},
        {DialogControl::Static, L"File &name:", 0, 8, 32, 46, 9},
        {DialogControl::Edit, {}, kFileName, 56, 30, 188, 14, kEditStyle},
        {DialogControl::Button, L"F&ormat Sets...", kEditSets, 250, 30, 62, 14, style::TabStop},
        {DialogControl::Static, L"Format &set:", 0, 8, 52, 46, 9},
        {DialogControl::ComboBox,
         {},
         kSet,
         56,
         50,
         188,
         120,
         style::TabStop | style::VScroll | style::ComboDropDownList},
        {DialogControl::Static, {}, kSetHint, 56, 67, 256, 9},
        {DialogControl::Static, {}, kProgress, 8, 82, 304, 10, 0, kProgressClass},
        {DialogControl::Static, {}, kState, 8, 98, 304, 9},
        {DialogControl::Button, L"&Import", IDOK, 200, 114, 54, 14, style::TabStop | style::DefaultButton},
        {DialogControl::Button, L"Cancel", IDCANCEL, 258, 114, 54, 14, style::TabStop},
    };
    DialogTemplate shape(L"Import Trades", 320, 136);
    for (const DialogItem& item : items)
        shape.Add(item);
    return shape;
}

// Whether the thread has no message to deal with: then a timer's wait would be lost time.
bool NobodyWaits() {
    return HIWORD(GetQueueStatus(QS_ALLINPUT)) == 0;
}

}  // namespace

void Dravel::ShowImportDialog(void* owner, const ImportPorts& ports, const BarContext& bar,
                              const std::filesystem::path& file) {
    DlgImportDravel(ports, bar).Open(owner, file);
}

DlgImportDravel::DlgImportDravel(const ImportPorts& ports, const BarContext& bar)
    : ports_(ports), bar_(bar), sets_(ports.files, bar.folder.FormatSets()) {}

std::intptr_t DlgImportDravel::Open(void* owner, const std::filesystem::path& file) {
    file_ = file.wstring();
    if (ports_.bookGoes != nullptr) *ports_.bookGoes = [this] { BookGone(); };
    const std::intptr_t result = DoModal(owner, Shape());
    if (import_) import_->Finish();  // the book or the frame went
    return result;
}

void DlgImportDravel::BookGone() {
    bookGone_ = true;
    if (import_) import_->BookGone();
    End(kDialogCancel);
}

// The set used last is chosen again; a file that is given may ask for another.
void DlgImportDravel::OnInit() {
    std::string last;
    if (bar_.settings.Open(kSettingsKey)) bar_.settings.ReadText(kLastSet, last);
    sets_.Choose(FromUtf8(last));
    ListSets();
    ShowChosen();
    if (!file_.empty()) TakeFile(file_);
    FocusItem(kPath);
}

bool DlgImportDravel::OnCommand(int id, int code) {
    if (id == kPath && code == EN_KILLFOCUS) {
        SuggestSet();
    } else if (id == kBrowse && code == BN_CLICKED) {
        Browse();
    } else if (id == kEditSets && code == BN_CLICKED) {
        EditSets();
    } else if (id == kSet && code == CBN_SELCHANGE) {
        ChooseListed();
    } else {
        return false;
    }
    return true;
}

void DlgImportDravel::Browse() {
    FileDialogParams params;
    params.title = L"Import Trades";
    params.filter = L"CSV files|*.CSV|All files|*.*";
    const std::filesystem::path file = FileToImport();
    const bool folder = IsFolder(file);
    if (!folder) params.path = file.wstring();
    params.folder = folder ? file.wstring() : FolderToPropose();
    if (FileDialog(Window(), params)) TakeFile(params.path);
}

void DlgImportDravel::EditSets() {
    const auto titles = TextsOfColumns(&TradeColumn::header), keys = TextsOfColumns(&TradeColumn::importKey);
    CDlgFormatSet dialog(bar_.files, bar_.user, bar_.folder, titles, keys);
    sets_.Choose(dialog.Open(Window(), sets_.Chosen()));
    SetAnsiText(kSetHint, "");
    ListSets();
    ShowChosen();
}

void DlgImportDravel::ListSets() {
    sets_.Reload();
    ClearList(kSet);
    AddString(kSet, kNoSet);
    int chosen = 0;
    for (const auto& name : sets_.Names()) {
        AddString(kSet, name.wstring());
        if (name == sets_.Chosen()) chosen = 1 + static_cast<int>(&name - sets_.Names().data());
    }
    Select(kSet, chosen);
}

void DlgImportDravel::ChooseListed() {
    const int listed = Selected(kSet);
    byHand_ = true;
    sets_.Choose(listed > 0 ? sets_.Names()[static_cast<std::size_t>(listed) - 1] : std::filesystem::path());
    SetAnsiText(kSetHint, listed > 0 && sets_.Chosen().empty() ? "This format set can not be read" : "");
    ShowChosen();
}

// The set's name and folder go into their fields; a file that the user chose stays. A set that cannot be read
// imports nothing: the file's own keys could take the wrong columns.
void DlgImportDravel::ShowChosen() {
    Enable(kDialogOk, Selected(kSet) <= 0 || !sets_.Chosen().empty());
    SetAnsiText(kFileName, ExpandFileName(sets_.Mapping().fileNameFormat, ports_.clock));
    const std::wstring path = Text(kPath), folder = Widen(sets_.Mapping().filePath);
    if (!path.empty() && path != setsPath_) return;
    SetText(kPath, folder);
    setsPath_ = folder;
}

void DlgImportDravel::TakeFile(const std::wstring& path) {
    SetText(kPath, path);
    SuggestSet();
}

// Once a path. What the user chose by hand stands, and is told of the other.
void DlgImportDravel::SuggestSet() {
    const std::wstring path = Unquoted(Text(kPath));
    if (import_ || path == suggestedFor_) return;
    suggestedFor_ = path;
    SetAnsiText(kSetHint, "");
    if (path.empty()) return;
    const std::filesystem::path name = sets_.Suggestion(FileToImport());
    if (name.empty()) return;
    if (byHand_) {
        SetText(kSetHint, std::wstring(L"The file's first line names the fields of ").append(name.wstring()));
        return;
    }
    sets_.Choose(name);
    ListSets();
    ShowChosen();
    SetAnsiText(kSetHint, "Chosen because the file's first line names its fields");
}

bool DlgImportDravel::IsFolder(const std::filesystem::path& path) const {
    FileInfo info;
    return ports_.files.Info(path, info) && info.folder;
}

// A folder stands for the file of the expanded name in it.
std::filesystem::path DlgImportDravel::FileToImport() const {
    const std::filesystem::path path(Unquoted(Text(kPath))), name(Unquoted(Text(kFileName)));
    return !name.empty() && !path.empty() && IsFolder(path) ? path / name : path;
}

// Where the last import came from; the system passes over one that is gone.
std::wstring DlgImportDravel::FolderToPropose() const {
    std::string folder;
    if (bar_.settings.Open(kSettingsKey)) bar_.settings.ReadText(kLastFolder, folder);
    return FromUtf8(folder);
}

void DlgImportDravel::Remember(const std::filesystem::path& file) const {
    if (!bar_.settings.CreateKey(kSettingsKey)) return;
    bar_.settings.WriteText(kLastSet, Utf8(sets_.Chosen().wstring()));
    bar_.settings.WriteText(kLastFolder, Utf8(file.parent_path().wstring()));
    bar_.SaveSettings();
}

void DlgImportDravel::OnOk() {
    if (import_ || bookGone_) return;
    const std::filesystem::path path = FileToImport();
    if (path.empty()) {
        ports_.user.Box("Please Select File", "DravelImport", Buttons::Ok, Icon::Warning);
        FocusItem(kPath);
        return;
    }
    import_ = std::make_unique<CsvImport>(ports_, sets_.Mapping());
    if (!import_->Begin(path)) {
        import_.reset();
        FocusItem(kPath);
        return;
    }
    EnableControls(false);
    started_ = GetTickCount64();
    NextSlice();
    Remember(path);
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
    if (!import_) return true;
    bool more = true;
    try {
        more = Slice();
    } catch (const std::exception& failure) {
        // Of showing how far it is: the import never throws, and a run without a timer would never end.
        ReportFailure("import dialog", failure.what());
    }
    if (more) {
        NextSlice();
    } else {
        EndRun();
    }
    return true;
}

// A timer comes after keys and paints; a posted message would come before them.
void DlgImportDravel::NextSlice() {
    SetTimer(static_cast<HWND>(Window()), kSliceTimer, USER_TIMER_MINIMUM, nullptr);
}

// False: the run has come to its end.
bool DlgImportDravel::Slice() {
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
    return more;
}

void DlgImportDravel::EndRun() {
    const bool imported = import_->Finish() && !import_->Counts().cancelled;
    import_.reset();
    if (bookGone_) return;
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
    for (const int id : {static_cast<int>(kPath), static_cast<int>(kBrowse), static_cast<int>(kFileName),
                         static_cast<int>(kEditSets), static_cast<int>(kSet), kDialogOk})
        Enable(id, idle);
    if (!idle) return;
    saysCancel_ = false;
    SetText(kDialogCancel, L"Cancel");
    SetProgress(kProgress, 0);
    SetAnsiText(kState, "");
    FocusItem(kPath);
}
