// The tip over a cell or header whose text is cut off.
#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include "toolkit/ActivationContext.h"
#include "toolkit/AnsiText.h"
#include "toolkit/Module.h"
#include "toolkit/win32/GridState.h"

using namespace Dravel;

namespace {

constexpr std::size_t kMaxBytes = 512;
constexpr int kMaxWidth = 600;  // at 96 dpi, then it wraps

TTTOOLINFOW Describe(HWND grid) {
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_TRACK | TTF_ABSOLUTE | TTF_TRANSPARENT;
    tool.hwnd = grid;
    return tool;
}

}  // namespace

bool GridTip::Make() {
    if (window_ != nullptr) return true;
    const ActivationScope scope;
    const auto grid = static_cast<HWND>(grid_.Window());
    window_ = CreateWindowExW(WS_EX_TOPMOST | WS_EX_TRANSPARENT, TOOLTIPS_CLASSW, L"",
                              WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0, 0, grid, nullptr,
                              static_cast<HINSTANCE>(Module()), nullptr);
    if (window_ == nullptr) return false;
    TTTOOLINFOW tool = Describe(grid);
    SendMessageW(window_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    SendMessageW(window_, TTM_SETMAXTIPWIDTH, 0, Scale(kMaxWidth, grid_.state_->dpi));
    return true;
}

bool GridTip::CutOff(const GridHit& hit, std::wstring& text, RECT& shown) const {
    const GridView& view = grid_.Model().View();
    const int position = grid_.Columns().Position(hit.column);
    if (position < 0 || grid_.Source() == nullptr) return false;
    const bool header = hit.part == GridPart::Header;
    if (!header && (hit.part != GridPart::Cell || hit.row >= grid_.Source()->RowCount())) return false;
    std::string ansi;
    if (header) {
        ansi = grid_.Columns()[hit.column].header;
    } else {
        grid_.Source()->CellText(hit.row, hit.column, ansi);
    }
    Widen(std::string_view(ansi).substr(0, kMaxBytes), text);
    const int left = view.ColumnLeft(position), top = header ? 0 : view.RowTop(hit.row);
    RECT client{};
    GetClientRect(static_cast<HWND>(grid_.Window()), &client);
    shown = {std::max(left, view.ClipLeft(position)), top,
             std::min<LONG>(left + grid_.Columns().PixelWidth(position), client.right),
             top + (header ? view.Metrics().headerHeight : view.Metrics().rowHeight)};
    const int taken = (header && grid_.Model().Sort().Direction(hit.column) != 0 ? kGridSortMarkWidth : 0) +
                      2 * kGridCellPadding;
    const HDC device = GetDC(static_cast<HWND>(grid_.Window()));
    const HGDIOBJ font = SelectObject(device, grid_.state_->font);
    const int width = GridTextWidth(device, text) + Scale(taken, grid_.state_->dpi);
    SelectObject(device, font);
    ReleaseDC(static_cast<HWND>(grid_.Window()), device);
    return !text.empty() && width > shown.right - shown.left;
}

void GridTip::PointerMoved(const GridHit& hit) {
    if (hit == at_) return;
    at_ = hit;
    Hide();
    TRACKMOUSEEVENT track{};
    track.cbSize = sizeof track;
    track.dwFlags = TME_HOVER | TME_LEAVE;
    track.hwndTrack = static_cast<HWND>(grid_.Window());
    track.dwHoverTime = HOVER_DEFAULT;
    TrackMouseEvent(&track);
}

void GridTip::PointerRests(const GridHit& hit) {
    std::wstring text;
    RECT at{};
    if (!CutOff(hit, text, at) || !Make()) return;
    const auto grid = static_cast<HWND>(grid_.Window());
    TTTOOLINFOW tool = Describe(grid);
    tool.lpszText = text.data();
    SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(grid_.state_->font), FALSE);
    SendMessageW(window_, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
    POINT below{at.left, at.bottom};
    ClientToScreen(grid, &below);
    SendMessageW(window_, TTM_TRACKPOSITION, 0, MAKELPARAM(below.x, below.y));
    SendMessageW(window_, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&tool));
    shown_ = true;
}

void GridTip::Hide() {
    if (!shown_ || window_ == nullptr) return;
    TTTOOLINFOW tool = Describe(static_cast<HWND>(grid_.Window()));
    SendMessageW(window_, TTM_TRACKACTIVATE, FALSE, reinterpret_cast<LPARAM>(&tool));
    shown_ = false;
}

void GridTip::Drop() {
    if (window_ != nullptr && IsWindow(window_)) DestroyWindow(window_);
    window_ = nullptr;
    shown_ = false;
    at_ = {};
}
