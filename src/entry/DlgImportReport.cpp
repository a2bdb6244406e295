#include "entry/DlgImportReport.h"

#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "support/FaultText.h"
#include "toolkit/AnsiText.h"
#include "toolkit/FileDialog.h"

using namespace Dravel;

namespace {

enum Control : std::uint16_t { kList = 1401, kSave = 1402, kOverview = 1403 };
enum Column : int { kLine, kReason, kText };

constexpr int kWidth = 480, kHeight = 220, kMargin = 8, kOverviewHeight = 10,
              kButtonHeight = 14;  // dialog units
constexpr int kListTop = 22;
constexpr int kLineWidth = 44, kReasonWidth = 200, kScrollBar = 16;
constexpr int kSaveWidth = 90, kCloseWidth = 54;
constexpr char kCaption[] = "Import Report";

DialogTemplate Shape() {
    DialogTemplate shape(L"Import Report", kWidth, kHeight, true);
    shape
        .Add({.text = {},
              .id = kOverview,
              .x = kMargin,
              .y = kMargin,
              .width = kWidth - 2 * kMargin,
              .height = kOverviewHeight})
        .Add({.text = {},
              .id = kList,
              .x = kMargin,
              .y = kListTop,
              .width = kWidth - 2 * kMargin,
              .height = 168,
              .style = style::TabStop | style::Border | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS |
                       LVS_SINGLESEL | LVS_NOSORTHEADER,
              .className = WC_LISTVIEWW})
        .Add({.control = DialogControl::Button,
              .text = L"&Save Skipped Lines...",
              .id = kSave,
              .x = kWidth - 2 * kMargin - kSaveWidth - kCloseWidth,
              .y = 198,
              .width = kSaveWidth,
              .height = kButtonHeight,
              .style = style::TabStop})
        .Add({.control = DialogControl::Button,
              .text = L"Close",
              .id = IDCANCEL,
              .x = kWidth - kMargin - kCloseWidth,
              .y = 198,
              .width = kCloseWidth,
              .height = kButtonHeight,
              .style = style::TabStop | style::DefaultButton});
    return shape;
}

// Keeps a window from being used, and closed, while something else asks the user.
class Disabled {
 public:
    explicit Disabled(HWND window)
        : window_(window != nullptr && IsWindowEnabled(window) ? window : nullptr) {
        if (window_ != nullptr) EnableWindow(window_, FALSE);
    }
    ~Disabled() {
        if (window_ != nullptr) EnableWindow(window_, TRUE);
    }
    Disabled(const Disabled&) = delete;
    Disabled& operator=(const Disabled&) = delete;

 private:
    HWND window_;
};

// Beside the imported file: "trades.csv" gives "trades_skipped.csv".
std::wstring NameToPropose(const std::filesystem::path& file) {
    std::filesystem::path name = file.stem();
    name += "_skipped.csv";
    return (file.parent_path() / name).wstring();
}

}  // namespace

void DlgImportReport::Show(void* owner, std::shared_ptr<const ImportReport> report) {
    if (Window() == nullptr) {
        report_ = std::move(report);
        ShowModeless(owner, Shape());
    } else {
        Renew(std::move(report));
        SetForegroundWindow(static_cast<HWND>(Window()));
        FocusItem(kList);
    }
}

void DlgImportReport::Renew(std::shared_ptr<const ImportReport> report) {
    if (Window() == nullptr) return;
    report_ = std::move(report);
    ShowReport();
}

void DlgImportReport::OnInit() {
    const HWND list = static_cast<HWND>(Item(kList));
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT);
    int line = kLineWidth, reason = kReasonWidth, text = kWidth - 2 * kMargin - kScrollBar, unused = 0;
    MapUnits(line, unused);
    MapUnits(reason, unused);
    MapUnits(text, unused);
    AddColumn(kList, kLine, L"Line", line);
    AddColumn(kList, kReason, L"Reason", reason);
    AddColumn(kList, kText, L"Text", text - line - reason);
    ShowReport();
    SetFocus(list);
}

void DlgImportReport::ShowReport() {
    const HWND list = static_cast<HWND>(Item(kList));
    SendMessageW(list, LVM_SETITEMCOUNT, report_->Rows().size(), 0);
    InvalidateRect(list, nullptr, TRUE);
    LVITEMW first{};
    first.stateMask = first.state = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageW(list, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&first));
    SetAnsiText(kOverview, report_->Overview());
    Enable(kSave, report_->LinesSkipped() != 0);
}

// The list holds no rows: it asks for the cells that it draws.
bool DlgImportReport::OnNotify(int id, void* header, std::intptr_t&) {
    if (id != kList || static_cast<NMHDR*>(header)->code != LVN_GETDISPINFOW) return false;
    FillCell(&static_cast<NMLVDISPINFOW*>(header)->item);
    return true;
}

void DlgImportReport::FillCell(void* cell) {
    LVITEMW& item = *static_cast<LVITEMW*>(cell);
    const auto index = static_cast<std::size_t>(item.iItem);
    if ((item.mask & LVIF_TEXT) == 0 || item.cchTextMax < 1 || !report_ || index >= report_->Rows().size())
        return;
    const ReportRow& row = report_->Rows()[index];
    const std::wstring text = Widen(item.iSubItem == kLine     ? std::to_string(row.line)
                                    : item.iSubItem == kReason ? report_->Reason(row)
                                                               : ImportReport::TextToShow(row));
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(item.cchTextMax) - 1);
    std::copy_n(text.data(), length, item.pszText);
    item.pszText[length] = 0;
}

bool DlgImportReport::OnCommand(int id, int) {
    if (id != kSave) return false;
    Save();
    return true;
}

void DlgImportReport::OnSize(int width, int height) {
    if (Item(kList) != nullptr && width > 0 && height > 0) LayOut(width, height);
}

void DlgImportReport::LayOut(int width, int height) {
    int margin = kMargin, button = kButtonHeight, save = kSaveWidth, overview = kOverviewHeight;
    int close = kCloseWidth, top = kListTop;
    MapUnits(margin, button);
    MapUnits(save, overview);
    MapUnits(close, top);
    const auto place = [this](int id, int x, int y, int wide, int tall) {
        SetWindowPos(static_cast<HWND>(Item(id)), nullptr, x, y, std::max(wide, 0), std::max(tall, 0),
                     SWP_NOZORDER | SWP_NOACTIVATE);
    };
    const int buttons = height - margin - button;
    place(kOverview, margin, margin, width - 2 * margin, overview);
    place(kList, margin, top, width - 2 * margin, buttons - margin - top);
    place(kSave, width - 2 * margin - close - save, buttons, save, button);
    place(IDCANCEL, width - margin - close, buttons, close, button);
}

void DlgImportReport::OnDestroy() {
    report_.reset();
}

// The frame must not go while its dialog is up: this window would go with it, and the library after it.
void DlgImportReport::Save() {
    if (asking_) return;
    const std::shared_ptr<const ImportReport> report = report_;
    FileDialogParams params;
    params.save = true;
    params.title = L"Save Skipped Lines";
    params.filter = L"CSV files|*.CSV|All files|*.*";
    params.extension = L"csv";
    params.path = NameToPropose(report->File());
    const Disabled frame(GetWindow(static_cast<HWND>(Window()), GW_OWNER));
    asking_ = true;
    const struct Asked {
        bool& flag;
        ~Asked() { flag = false; }
    } asked{asking_};
    if (FileDialog(Window(), params)) {
        const FileStatus status = report->SaveSkipped(files_, params.path);
        if (!status)
            user_.Box(FaultText("The skipped lines could not be saved", status), kCaption, Buttons::Ok,
                      Icon::Error);
    }
    FocusItem(kList);
}
