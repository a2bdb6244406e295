#include "formatset/dialog/DlgFormatSet.h"

#include <windows.h>

#include "support/FaultText.h"
#include "toolkit/AnsiText.h"
#include "toolkit/FileDialog.h"

using namespace Dravel;

namespace {

namespace fs = std::filesystem;

enum Control : int {
    kHeader = 1101,
    kFileName,
    kFilePath,
    kGrid,
    kSample,
    kBrowse,
    kTest,
    kReset,
    kSave,
    kName,
    kResult,
    kNew,
    kDuplicate,
    kRename,
    kDelete,
};

constexpr char kTitle[] = "Format Set";
constexpr wchar_t kNewName[] = L"New Set", kCopySuffix[] = L" Copy";

constexpr int kWidth = 396, kHeight = 316, kMargin = 8, kGridTop = 84, kGridHeight = 174;
constexpr std::uint32_t kTab = style::TabStop, kEditStyle = style::TabStop | style::EditAutoHScroll;
constexpr std::uint32_t kComboAutoHScroll = 0x40;

// Each label stands in front of its field, so that its mnemonic goes there. The grid is put behind the label
// "Columns" once the dialog is there.
constexpr DialogItem kItems[] = {
    {DialogControl::Static, L"Set &Name:", 0, 8, 10, 62, 9},
    {DialogControl::ComboBox,
     {},
     kName,
     72,
     8,
     130,
     140,
     kTab | style::VScroll | style::ComboDropDown | kComboAutoHScroll},
    {DialogControl::Button, L"Ne&w", kNew, 208, 8, 42, 14, kTab},
    {DialogControl::Button, L"D&uplicate", kDuplicate, 254, 8, 42, 14, kTab},
    {DialogControl::Button, L"Rena&me", kRename, 300, 8, 42, 14, kTab},
    {DialogControl::Button, L"&Delete", kDelete, 346, 8, 42, 14, kTab},
    {DialogControl::Button, L"&Header Row Available", kHeader, 72, 26, 130, 11, kTab | style::CheckBox},
    {DialogControl::Static, L"File Name &Format:", 0, 8, 43, 62, 9},
    {DialogControl::Edit, {}, kFileName, 72, 41, 316, 13, kEditStyle},
    {DialogControl::Static, L"File &Path:", 0, 8, 60, 62, 9},
    {DialogControl::Edit, {}, kFilePath, 72, 58, 316, 13, kEditStyle},
    {DialogControl::Static, L"&Columns:", 0, 8, 74, 62, 9},
    {DialogControl::Static, L"Samp&le File:", 0, 8, 266, 62, 9},
    {DialogControl::Edit, {}, kSample, 72, 264, 200, 13, kEditStyle},
    {DialogControl::Button, L"&Browse...", kBrowse, 278, 263, 50, 14, kTab},
    {DialogControl::Button, L"Sample &Test", kTest, 332, 263, 56, 14, kTab},
    {DialogControl::Static, {}, kResult, 72, 281, 316, 9},
    {DialogControl::Button, L"&Reset", kReset, 8, 296, 54, 14, kTab},
    {DialogControl::Button, L"&Save", kSave, 276, 296, 54, 14, kTab | style::DefaultButton},
    {DialogControl::Button, L"Cl&ose", IDCANCEL, 334, 296, 54, 14, kTab},
};

DialogTemplate Shape() {
    DialogTemplate shape(L"Format Set", kWidth, kHeight);
    for (const DialogItem& item : kItems)
        shape.Add(item);
    return shape;
}

std::string Quoted(std::string_view text) {
    return std::string(1, '"').append(text).append(1, '"');
}
std::string Quoted(const fs::path& name) {
    return Quoted(std::string_view(Narrow(name.wstring())));
}

}  // namespace

CDlgFormatSet::CDlgFormatSet(IFiles& files, IUser& user, const DataFolder& folder, ColumnTexts titles,
                             ColumnTexts keys)
    : files_(files),
      user_(user),
      folder_(folder),
      titles_(titles),
      keys_(keys),
      sets_(files, folder.FormatSets()),
      grid_(files, folder.Root(), titles) {}

fs::path CDlgFormatSet::Open(void* owner, const fs::path& name) {
    result_ = name;
    DoModal(owner, Shape());
    return result_;
}

void CDlgFormatSet::OnInit() {
    if (!MakeGrid()) return End(kDialogCancel);
    List();
    const fs::path wanted = sets_.Find(result_);
    wanted.empty() ? ShowFirst() : ShowStored(wanted);
    FocusItem(kName);
}

// Behind its label in the order of the controls, which is the order of the Tab key.
bool CDlgFormatSet::MakeGrid() {
    int left = kMargin, top = kGridTop, right = kWidth - kMargin, bottom = kGridTop + kGridHeight;
    MapUnits(left, top);
    MapUnits(right, bottom);
    grid_.onEdit = [this](const std::string& refused) {
        Say(refused.empty() ? refused
                            : Quoted(std::string_view(refused)) + " is not one of the date patterns");
    };
    if (!grid_.Create(Window(), {left, top, right, bottom}, kGrid)) return false;
    const HWND label = GetWindow(static_cast<HWND>(Item(kFilePath)), GW_HWNDNEXT);
    return SetWindowPos(static_cast<HWND>(grid_.Window()), label, 0, 0, 0, 0,
                        SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE) != 0;
}

void CDlgFormatSet::OnDestroy() {
    grid_.onEdit = nullptr;
    grid_.SaveProfile();
}

bool CDlgFormatSet::OnCommand(int id, int code) {
    if (id == kName) {
        if (code == CBN_EDITCHANGE) typed_ = Text(kName);
        if (code == CBN_SELCHANGE) ChooseListed();
        return true;
    }
    if (code != BN_CLICKED) return false;
    static constexpr struct {
        int id;
        void (CDlgFormatSet::*action)();
    } kActions[] = {
        {kNew, &CDlgFormatSet::New},
        {kDuplicate, &CDlgFormatSet::Duplicate},
        {kRename, &CDlgFormatSet::Rename},
        {kDelete, &CDlgFormatSet::Delete},
        {kBrowse, &CDlgFormatSet::BrowseSample},
        {kTest, &CDlgFormatSet::TestSample},
        {kReset, &CDlgFormatSet::Reset},
        {kSave, &CDlgFormatSet::SaveShown},
    };
    for (const auto& [button, action] : kActions) {
        if (button != id) continue;
        Say({});
        (this->*action)();
        return true;
    }
    return false;
}

void CDlgFormatSet::OnCancel() {
    if (LeaveSet()) End(kDialogCancel);
}

// --- what is shown

void CDlgFormatSet::List() {
    names_ = sets_.Names();
    ClearList(kName);
    for (const fs::path& name : names_)
        AddString(kName, name.wstring());
    SetName(current_);
    for (const int button : {kDuplicate, kRename, kDelete})
        Enable(button, !current_.empty());
}

void CDlgFormatSet::ChooseListed() {
    const int listed = Selected(kName);
    if (listed < 0 || static_cast<std::size_t>(listed) >= names_.size()) return;
    const fs::path name = names_[static_cast<std::size_t>(listed)];
    // The list has put its entry into the field already; saving first means the set that is still shown.
    SetName(typed_);
    if (LeaveSet()) ShowStored(name);
}

void CDlgFormatSet::ShowStored(const fs::path& name) {
    FormatSet set;
    const FileStatus status = sets_.Load(name, set);
    current_ = name;
    unread_ = !status;
    List();
    Show(set);
    Say(status ? std::string() : FaultText("The format set could not be read", status));
}

void CDlgFormatSet::Show(const FormatSet& set) {
    Check(kHeader, set.header);
    SetAnsiText(kFileName, set.fileNameFormat);
    SetAnsiText(kFilePath, set.filePath);
    grid_.SetContent(set.rows);
    saved_ = Shown();
}

void CDlgFormatSet::ShowFirst() {
    names_.empty() ? ShowNew() : ShowStored(names_.front());
}

FormatSet CDlgFormatSet::Shown() {
    grid_.EndOpenEdit();
    return {Checked(kHeader), AnsiText(kFileName), AnsiText(kFilePath), grid_.Content()};
}

// --- what is done with it

// Asks about changes before another set is shown. False: the user goes on with this one.
bool CDlgFormatSet::LeaveSet() {
    if (Shown() == saved_) return true;
    const std::uint32_t answer =
        user_.Box("Do you want to save the format set ?", kTitle, Buttons::YesNoCancel, Icon::Question);
    if (answer == kAnswerYes) return Save();
    if (answer != kAnswerNo) return false;
    Show(saved_);
    return true;
}

void CDlgFormatSet::New() {
    if (LeaveSet()) ShowNew();
}

void CDlgFormatSet::ShowNew() {
    current_.clear();
    List();
    Show({});
    SetName(sets_.FreeName(kNewName));
    FocusItem(kName);
}

void CDlgFormatSet::Duplicate() {
    if (!LeaveSet()) return;
    fs::path name = current_;
    name += kCopySuffix;
    name = sets_.FreeName(name);
    if (NameIsUsable(name) && Store(name, Shown())) FocusItem(kName);
}

void CDlgFormatSet::Rename() {
    const fs::path name = TypedName();
    if (name == current_ || !NameIsUsable(name)) return FocusItem(kName);
    const FileStatus status = sets_.Rename(current_, name);
    if (status.fault == FileFault::Exists)
        return Refuse(std::string("There is a format set called ").append(Quoted(name)));
    if (!status) return Say(FaultText("The format set could not be renamed", status));
    if (result_ == current_) result_ = name;
    current_ = name;
    List();
}

void CDlgFormatSet::Delete() {
    if (!Ask(std::string("Are you sure want to delete ").append(Quoted(current_)) + " ?")) return;
    if (const FileStatus status = sets_.Remove(current_); !status)
        return Say(FaultText("The format set could not be deleted", status));
    if (result_ == current_) result_.clear();
    FocusItem(kName);  // its own button goes when no set is left
    current_.clear();
    List();
    ShowFirst();
}

bool CDlgFormatSet::Save() {
    const FormatSet set = Shown();
    const fs::path name = TypedName();
    if (!NameIsUsable(name)) {
        FocusItem(kName);
        return false;
    }
    if (const std::string* value = UnwritableValue(set)) {
        Refuse(Quoted(std::string_view(*value)) +
               " can not be saved: a value must not hold a comma or a line end");
        return false;
    }
    const fs::path stored = sets_.Find(name);
    // What is shown of a set that could not be read is not that set.
    if (!stored.empty() && (stored != current_ || unread_) &&
        !Ask(std::string("Do you want to replace ").append(Quoted(stored)) + " ?"))
        return false;
    return Store(stored.empty() ? name : stored, set);
}

// A save that fails shows no box; the set stays changed, so that leaving it asks again.
bool CDlgFormatSet::Store(const fs::path& name, const FormatSet& set) {
    if (const FileStatus status = sets_.Save(name, set, titles_); !status) {
        Say(FaultText("The format set could not be saved", status));
        return false;
    }
    result_ = current_ = name;
    unread_ = false;
    saved_ = set;
    List();
    Say(std::string("Format set ").append(Quoted(name)) + " saved" +
        (TakesFiles(set) ? "" : "; without a field for ClientID it refuses every file"));
    return true;
}

void CDlgFormatSet::Reset() {
    if (Ask("Are you sure want to Reset ?")) grid_.SetContent({});
}

void CDlgFormatSet::BrowseSample() {
    FileDialogParams params;
    params.title = L"Sample File";
    params.filter = L"CSV files|*.CSV|All files|*.*";
    params.path = Unquoted(Text(kSample));
    if (FileDialog(Window(), params)) SetText(kSample, params.path);
}

void CDlgFormatSet::TestSample() {
    std::string firstLine;
    if (!FirstLineOf(files_, Unquoted(Text(kSample)), firstLine)) {
        user_.Box("File Not Found", kTitle, Buttons::Ok, Icon::Warning);
        return FocusItem(kSample);
    }
    if (!Checked(kHeader)) {
        user_.Box("You have uncheck Header Row Available", kTitle, Buttons::Ok, Icon::Warning);
        return SetText(kSample, {});
    }
    grid_.TakeSample(firstLine, keys_);
    Say("Sample File Imported Successfully");
}

// --- how it is told

void CDlgFormatSet::SetName(const fs::path& name) {
    typed_ = name.wstring();
    SetText(kName, typed_);
}

fs::path CDlgFormatSet::TypedName() const {
    return Text(kName);
}

bool CDlgFormatSet::NameIsUsable(const fs::path& name) {
    if (IsSetName(name)) return true;
    Refuse(Quoted(name) + " can not be the name of a format set");
    return false;
}

void CDlgFormatSet::Refuse(const std::string& text) {
    user_.Box(text, kTitle, Buttons::Ok, Icon::Warning);
}

bool CDlgFormatSet::Ask(const std::string& text) {
    return user_.Box(text, kTitle, Buttons::OkCancel, Icon::Question) == kAnswerOk;
}

void CDlgFormatSet::Say(const std::string& text) {
    SetAnsiText(kResult, text);
}
