// The window of a property list: its life and its messages.
#include "toolkit/Module.h"
#include "toolkit/win32/BufferedPaint.h"
#include "toolkit/win32/PropertyListState.h"
#include "toolkit/win32/WindowBinding.h"

using namespace Dravel;

namespace {

constexpr UINT kKeepEdit = WM_APP + 0x41;  // posted: a box must not come up while the focus moves
constexpr int kRowPadding = 4;

void SetScrollBar(HWND window, int rows, int visible, int top) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = std::max(rows - 1, 0);
    info.nPage = static_cast<UINT>(visible);
    info.nPos = top;
    SetScrollInfo(window, SB_VERT, &info, TRUE);
}

void PaintBuffered(CKRVPPropertyList& list, HWND window) {
    PAINTSTRUCT paint;
    const HDC screen = BeginPaint(window, &paint);
    {
        const BufferedPaint buffer(screen, window);
        PropertyPaint::Paint(list, buffer.Device());
        buffer.Show(buffer.Client());
    }
    EndPaint(window, &paint);
}

}  // namespace

CKRVPPropertyList::CKRVPPropertyList() : state_(std::make_unique<State>()) {}

CKRVPPropertyList::~CKRVPPropertyList() {
    if (window_ != nullptr) DestroyWindow(static_cast<HWND>(window_));
}

bool CKRVPPropertyList::Create(void* parent, const Rect& place, std::uint32_t id) {
    const auto procedure = reinterpret_cast<void*>(&BoundProcedure<CKRVPPropertyList>);
    if (!RegisterWindowClass(kPropertyListClass, procedure, CS_DBLCLKS, 32512 /* IDC_ARROW */)) return false;
    const HWND owner = static_cast<HWND>(parent);
    state_->font = reinterpret_cast<HFONT>(SendMessageW(owner, WM_GETFONT, 0, 0));
    if (!state_->font) state_->font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    LOGFONTW bold{};
    GetObjectW(state_->font, sizeof bold, &bold);
    bold.lfWeight = FW_BOLD;
    state_->bold = CreateFontIndirectW(&bold);
    const HDC device = GetDC(owner);
    const HGDIOBJ old = SelectObject(device, state_->font);
    TEXTMETRICW text{};
    GetTextMetricsW(device, &text);
    SelectObject(device, old);
    ReleaseDC(owner, device);
    state_->textHeight = text.tmHeight;
    const UINT dpi = GetDpiForWindow(owner);
    if (dpi != 0) state_->dpi = static_cast<int>(dpi);
    state_->rowHeight = text.tmHeight + Scale(kRowPadding, state_->dpi) + 1;
    const HWND window = CreateWindowExW(WS_EX_CLIENTEDGE, kPropertyListClass, L"",
                                        WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPCHILDREN | WS_VSCROLL,
                                        place.left, place.top, place.Width(), place.Height(), owner,
                                        reinterpret_cast<HMENU>(static_cast<std::uintptr_t>(id)),
                                        static_cast<HINSTANCE>(Module()), this);
    if (!window) return false;
    SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    Refresh();
    return true;
}

void CKRVPPropertyList::Refresh() {
    const HWND window = static_cast<HWND>(window_);
    if (!window) return;
    const int visible = state_->Visible(window), most = std::max(list_.RowCount() - visible, 0);
    state_->top = std::clamp(state_->top, 0, most);
    SetScrollBar(window, list_.RowCount(), visible, state_->top);
    InvalidateRect(window, nullptr, FALSE);
}

void CKRVPPropertyList::FinishEdit() {
    if (window_) PropertyInput(*this).EndEdit(true);
}

std::intptr_t CKRVPPropertyList::HandleMessage(void* handle, std::uint32_t message, std::uintptr_t wparam,
                                               std::intptr_t lparam) {
    const HWND window = static_cast<HWND>(handle);
    if (message == WM_NCCREATE) window_ = window;
    PropertyInput input(*this);
    LRESULT result = 0;
    switch (message) {
        case WM_NCDESTROY:
            window_ = nullptr;
            break;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            PaintBuffered(*this, window);
            return 0;
        case WM_SIZE:
        case WM_SYSCOLORCHANGE:
            Refresh();
            return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            state_->focused = message == WM_SETFOCUS || reinterpret_cast<HWND>(wparam) == state_->edit;
            InvalidateRect(window, nullptr, FALSE);
            return 0;
        case WM_GETFONT:
            return reinterpret_cast<LRESULT>(state_->font);
        case WM_GETDLGCODE: {
            // Enter opens what the row has; Escape goes on to the dialog.
            const auto* key = reinterpret_cast<const MSG*>(lparam);
            const bool enter = key && key->message == WM_KEYDOWN && key->wParam == VK_RETURN;
            return DLGC_WANTARROWS | DLGC_WANTCHARS | (enter ? DLGC_WANTMESSAGE : 0);
        }
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            if (input.KeyDown(wparam)) return 0;
            break;
        case WM_CHAR:
            if (input.Char(wparam)) return 0;
            break;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            input.Press(static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam)),
                        message == WM_LBUTTONDBLCLK);
            return 0;
        case WM_MOUSEWHEEL:
            input.Scroll(-3 * GET_WHEEL_DELTA_WPARAM(wparam) / WHEEL_DELTA);
            return 0;
        case WM_VSCROLL: {
            SCROLLINFO info{};
            info.cbSize = sizeof info;
            info.fMask = SIF_TRACKPOS;
            GetScrollInfo(window, SB_VERT, &info);
            const int page = state_->Visible(window);
            const int code = LOWORD(wparam);
            input.Scroll(code == SB_LINEUP                                   ? -1
                         : code == SB_LINEDOWN                               ? 1
                         : code == SB_PAGEUP                                 ? -page
                         : code == SB_PAGEDOWN                               ? page
                         : code == SB_THUMBTRACK || code == SB_THUMBPOSITION ? info.nTrackPos - state_->top
                                                                             : 0);
            return 0;
        }
        case kKeepEdit:
            input.EndEdit(true);
            return 0;
        case WM_COMMAND:
            if (HIWORD(wparam) == EN_KILLFOCUS) PostMessageW(window, kKeepEdit, 0, 0);
            return 0;
        default:
            if (input.ReadAsListBox(message, wparam, lparam, result)) return result;
            break;
    }
    return DefWindowProcW(window, message, wparam, lparam);
}
