// The editor of a cell: opening and leaving it, its keys, type-ahead.
#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include <utility>

#include "toolkit/ActivationContext.h"
#include "toolkit/AnsiText.h"
#include "toolkit/DockingBar.h"
#include "toolkit/Guarded.h"
#include "toolkit/Module.h"
#include "toolkit/win32/GridState.h"

using namespace Dravel;

namespace {

constexpr int kMaxUnits = 1000;   // of a text, UTF-16
constexpr int kButtonWidth = 15;  // at 96 dpi

struct ChoicePair {
    WPARAM system;
    GridChoiceKey key;
};
constexpr ChoicePair kChoiceKeys[] = {
    {VK_UP, GridChoiceKey::Up},
    {VK_DOWN, GridChoiceKey::Down},
    {VK_PRIOR, GridChoiceKey::PageUp},
    {VK_NEXT, GridChoiceKey::PageDown},
};

}  // namespace

std::wstring GridEditor::Text() const {
    std::wstring text(kMaxUnits, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(field_, text.data(), kMaxUnits + 1)));
    return text;
}

// What the user did not change is given back byte for byte: a field does not hold every byte of a text, nor
// does each have a counterpart in the code page (half a character in UTF-8 has none), and who only looks into
// a cell must not change it.
std::string GridEditor::Bytes() const {
    const std::wstring text = Text();
    return text == shown_ ? opened_ : Narrow(text);
}

bool GridEditor::Make(const std::wstring& text) {
    const ActivationScope scope;
    const auto window = static_cast<HWND>(grid_.Window());
    const GridAlign align = grid_.Columns()[grid_.CurrentColumn()].align;
    const DWORD side = align == GridAlign::Right    ? ES_RIGHT
                       : align == GridAlign::Centre ? ES_CENTER
                                                    : ES_LEFT;
    field_ = CreateWindowExW(0, L"EDIT", text.c_str(), WS_CHILD | ES_AUTOHSCROLL | side, 0, 0, 0, 0, window,
                             reinterpret_cast<HMENU>(static_cast<std::uintptr_t>(kGridEditorID)),
                             static_cast<HINSTANCE>(Module()), nullptr);
    if (field_ == nullptr) return false;
    SetWindowSubclass(field_, &GridEditor::Procedure, 0, reinterpret_cast<DWORD_PTR>(this));
    SendMessageW(field_, EM_LIMITTEXT, kMaxUnits, 0);
    SetFont();
    place_ = {};
    Layout();
    // Above the filter's fields when it had to leave the view.
    SetWindowPos(field_, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    SetFocus(field_);
    return Active();  // who is told of the focus may do anything
}

bool GridEditor::Open(wchar_t typed) {
    if (closing_ || !Close(true) || grid_.Window() == nullptr || grid_.Source() == nullptr) return false;
    const std::uint32_t row = grid_.CurrentRow();
    const int column = grid_.CurrentColumn();
    if (row == kNoRow) return false;
    if (grid_.Columns().Position(column) < 0 || grid_.HeadOf(row).level >= 0) return false;
    std::string text;
    grid_.Source()->CellText(row, column, text);
    kind_ = GridEditKind::Text;
    if (!grid_.OnBeginEdit(row, column, text, kind_)) return false;
    grid_.EnsureVisible(row, column);
    typed_.clear();
    list_.Choices().Set({});
    fetched_ = erasing_ = false;
    if (!Make(Widen(text))) return false;
    opened_ = std::move(text);
    shown_ = Text();
    SendMessageW(field_, EM_SETSEL, 0, -1);
    // As if typed into the opened field, so that type-ahead sees it.
    if (typed != 0) SendMessageW(field_, WM_CHAR, typed, 1);
    grid_.Redraw();
    return true;
}

void GridEditor::OpenWithList() {
    if (Open(0) && HasButton()) OpenList();
}

void GridEditor::Drop() {
    list_.Close();
    if (field_ == nullptr) return;
    const HWND field = field_, window = static_cast<HWND>(grid_.Window());
    const bool asking = std::exchange(closing_, true);  // of its row's end: then it goes on being asked
    if (GetFocus() == field) SetFocus(window);
    if (IsWindow(field)) DestroyWindow(field);
    field_ = nullptr;
    closing_ = asking;
    grid_.Redraw();
}

bool GridEditor::Close(bool commit, bool byKey) {
    if (!Active()) return true;
    if (closing_) return false;  // the owner is being asked
    byKey_ = byKey;
    const HWND window = static_cast<HWND>(grid_.Window());
    list_.Close();
    closing_ = true;
    const std::uint32_t row = grid_.CurrentRow();
    const int column = grid_.CurrentColumn();
    bool ended = true;
    try {
        if (commit) {
            ended = grid_.OnEndEdit(row, column, Bytes());
        } else {
            grid_.OnCancelEdit(row, column);
        }
    } catch (...) {
        if (IsWindow(window)) closing_ = false;
        throw;
    }
    // Whoever takes a text may close the book, and the grid with it.
    if (!IsWindow(window)) return true;
    closing_ = false;
    if (ended) Drop();
    return ended;
}

Rect GridEditor::Button() const {
    if (!Active() || !HasButton()) return {};
    Rect cell = grid_.CellRect(grid_.CurrentRow(), grid_.CurrentColumn());
    const int width = Scale(kButtonWidth, grid_.state_->dpi);
    if (cell.Width() < 2 * width) return {};
    return {cell.right - 1 - width, cell.top, cell.right - 1, cell.bottom - 1};
}

// Within the frame that the grid draws round the current cell. Out of view it keeps the focus, and comes back
// with its cell.
void GridEditor::Layout() {
    if (!Active()) return;
    const GridView& view = grid_.Model().View();
    const int position = grid_.Columns().Position(grid_.CurrentColumn());
    const Rect cell = grid_.CellRect(grid_.CurrentRow(), grid_.CurrentColumn());
    RECT at{-32000, 0, -31900, 20};
    if (!(cell == Rect{})) {
        const Rect button = Button();
        const LONG height = grid_.state_->textHeight, top = cell.top + (cell.Height() - 1 - height) / 2;
        at = {std::max(cell.left, view.ClipLeft(position)) + 1, top,
              (button == Rect{} ? cell.right - 1 : button.left) - 1, top + height};
    }
    if (EqualRect(&at, &place_)) return;
    if (!IsRectEmpty(&place_)) list_.Close();
    place_ = at;
    SetWindowPos(field_, nullptr, at.left, at.top, std::max<LONG>(at.right - at.left, 1), at.bottom - at.top,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

void GridEditor::SetFont() {
    if (!Active()) return;
    const auto margin = static_cast<WORD>(std::max(Scale(kGridCellPadding, grid_.state_->dpi) - 1, 0));
    SendMessageW(field_, WM_SETFONT, reinterpret_cast<WPARAM>(grid_.state_->font), TRUE);
    SendMessageW(field_, EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELPARAM(margin, margin));
}

bool GridEditor::PressButton(int x, int y) {
    if (!Button().Contains(x, y)) return false;
    ToggleList();
    return true;
}

// A refused text keeps the editor: the keyboard comes back to it once the message that took it away is done.
void GridEditor::Refocus() {
    const auto window = static_cast<HWND>(grid_.Window());
    if (Active() && !closing_ && GetActiveWindow() == GetAncestor(window, GA_ROOT)) SetFocus(field_);
}

bool GridEditor::Notify(int id, int code, HWND field) {
    if (field_ == nullptr || field != field_ || id != kGridEditorID) return false;
    if (code == EN_CHANGE && !writing_) Changed();
    return true;
}

// False: the field that they are for went while the owner was asked.
bool GridEditor::FetchChoices() {
    if (fetched_ || !HasButton()) return true;
    const HWND field = field_;
    std::vector<std::string> choices;
    grid_.OnEditChoices(grid_.CurrentRow(), grid_.CurrentColumn(), typed_, choices);
    if (!IsWindow(field) || field_ != field) return false;
    list_.Choices().Set(std::move(choices));
    return fetched_ = true;
}

// The user changed the text: the choices are asked for anew, and the first that begins with what was typed
// completes it.
void GridEditor::Changed() {
    if (!HasButton()) return;
    const std::wstring text = Text();
    typed_ = Narrow(text);
    fetched_ = false;
    if (!FetchChoices()) return;
    GridChoices& choices = list_.Choices();
    choices.Choose(choices.Find(typed_));
    // Only where the user types on at the end.
    DWORD from = 0, to = 0;
    SendMessageW(field_, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    if (!erasing_ && from == text.size() && choices.Chosen() != GridChoices::kNone)
        SetText(Widen(choices[choices.Chosen()]), static_cast<int>(text.size()));
    erasing_ = false;
    list_.Changed();
}

void GridEditor::SetText(const std::wstring& text, int selectFrom) {
    writing_ = true;
    SetWindowTextW(field_, text.c_str());
    writing_ = false;
    // The caret goes to the front of what is selected, so that typing on replaces it and nothing scrolls
    // away.
    SendMessageW(field_, EM_SETSEL, static_cast<WPARAM>(text.size()), selectFrom);
}

void GridEditor::TakeChosen() {
    const GridChoices& choices = list_.Choices();
    if (choices.Chosen() != GridChoices::kNone) SetText(Widen(choices[choices.Chosen()]), 0);
    list_.Close();
}

void GridEditor::OpenList() {
    if (!FetchChoices()) return;
    GridChoices& choices = list_.Choices();
    if (choices.Chosen() == GridChoices::kNone) choices.Choose(choices.Find(Narrow(Text())));
    const Rect cell = grid_.CellRect(grid_.CurrentRow(), grid_.CurrentColumn());
    RECT at{cell.left, cell.top, cell.right, cell.bottom};
    MapWindowPoints(static_cast<HWND>(grid_.Window()), field_, reinterpret_cast<POINT*>(&at), 2);
    if (list_.Open(field_, at, grid_.state_->font, grid_.state_->dpi)) choices.Choose(choices.Chosen());
    list_.Changed();
}

void GridEditor::ToggleList() {
    if (list_.IsOpen()) {
        list_.Close();
    } else if (HasButton()) {
        OpenList();
    }
}

LRESULT CALLBACK GridEditor::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR,
                                       DWORD_PTR editor) noexcept {
    auto& self = *reinterpret_cast<GridEditor*>(editor);
    return Guarded("cell editor", LRESULT{0}, [&] { return self.Message(window, message, wparam, lparam); });
}

LRESULT GridEditor::Message(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_NCDESTROY:
            RemoveWindowSubclass(window, &GridEditor::Procedure, 0);
            field_ = nullptr;
            list_.Close();
            break;
        case WM_GETDLGCODE:
            return DefSubclassProc(window, message, wparam, lparam) | DLGC_WANTALLKEYS;
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            if (GridInput(grid_).FieldKey(message, wparam, lparam, EditsText(wparam, HeldModifiers())))
                return 0;
            if (KeyDown(wparam, message == WM_SYSKEYDOWN)) return 0;
            erasing_ = wparam == VK_BACK || wparam == VK_DELETE;
            break;
        case WM_CHAR:
            if (IsStrayCharacter(wparam)) return 0;
            break;
        case WM_MOUSEWHEEL:
            if (list_.IsOpen()) {
                list_.Wheel(GET_WHEEL_DELTA_WPARAM(wparam));
                return 0;
            }
            return SendMessageW(static_cast<HWND>(grid_.Window()), message, wparam, lparam);
        case WM_KILLFOCUS: {
            const LRESULT result = DefSubclassProc(window, message, wparam, lparam);
            if (closing_) return result;
            const HWND owner = static_cast<HWND>(grid_.Window());
            // Leaving ends the edit as Enter does, without going on to another cell.
            if (!Close(true) && IsWindow(owner)) PostMessageW(owner, kGridRefocus, 0, 0);
            return result;
        }
        case WM_SETFOCUS:
            if (auto* bar = CKRVPDockingControlBar::FromWindow(window)) bar->FocusMoved();
            break;
        default:
            break;
    }
    return DefSubclassProc(window, message, wparam, lparam);
}

bool GridEditor::KeyDown(WPARAM key, bool system) {
    const GridModifierKeys held = HeldModifiers();
    if (OpensList(static_cast<std::uint32_t>(key), held)) {
        ToggleList();
        return true;
    }
    if (system || held.alt) return false;
    if (held == GridModifierKeys{.ctrl = true} && key == 'A') {
        SendMessageW(field_, EM_SETSEL, 0, -1);
        return true;
    }
    if (list_.IsOpen() && ListKey(key)) return true;
    switch (key) {
        case VK_ESCAPE:
            Close(false);
            return true;
        case VK_RETURN:
            return Leave(held.shift ? GridEditMove::Up : GridEditMove::Down);
        case VK_TAB:
            return Leave(held.shift ? GridEditMove::Left : GridEditMove::Right);
        case VK_UP:
        case VK_DOWN:
            // With Ctrl they move the row, which is not meant while a cell of it is typed.
            return held.ctrl || Leave(key == VK_UP ? GridEditMove::Up : GridEditMove::Down);
        default:
            return false;
    }
}

bool GridEditor::ListKey(WPARAM key) {
    if (key == VK_ESCAPE) {
        list_.Close();
        return true;
    }
    if (key == VK_RETURN || key == VK_TAB) {
        list_.Close();
        return false;  // goes on to leave the cell
    }
    for (const ChoicePair& pair : kChoiceKeys) {
        if (pair.system != key) continue;
        GridChoices& choices = list_.Choices();
        choices.Key(pair.key);
        if (choices.Chosen() != GridChoices::kNone) SetText(Widen(choices[choices.Chosen()]), 0);
        list_.Changed();
        return true;
    }
    return false;
}

// Commits and goes on to the cell that the owner names, else to the neighbour. True in any case: the key is
// done with. The current cell stays on its row when rows come while the text is taken, a number would not.
bool GridEditor::Leave(GridEditMove move) {
    const HWND window = static_cast<HWND>(grid_.Window());
    if (!Close(true, true) || !IsWindow(window)) return true;
    std::uint32_t row = grid_.CurrentRow();
    int column = grid_.CurrentColumn();
    const GridNext next = grid_.OnNextCell(move, row, column);
    if (next == GridNext::Cell) grid_.EditCell(row, column);
    if (next != GridNext::Neighbour) return true;
    const bool side = move == GridEditMove::Left || move == GridEditMove::Right;
    const bool back = move == GridEditMove::Left || move == GridEditMove::Up;
    grid_.MutableModel().Key(side ? GridKey::Tab : GridKey::Enter, {.shift = back, .ctrl = false});
    grid_.ModelChanged();
    return true;
}
