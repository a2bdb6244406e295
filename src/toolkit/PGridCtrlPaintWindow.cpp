// Draws the visible cells of a grid into a back buffer, then copies what is dirty to the screen.
#include <algorithm>
#include <charconv>
#include <string_view>

#include "toolkit/AnsiText.h"
#include "toolkit/win32/GridColours.h"
#include "toolkit/win32/GridState.h"

namespace {

using namespace Dravel;

constexpr std::size_t kMaxShownBytes = 512;     // of one cell's text
constexpr int kSortMark = 7, kCurrentMark = 7;  // size of the triangles, at 96 dpi

struct CellLook {
    COLORREF back = 0, text = 0;
};

// The rows between two heights of the window, and everything needed to draw them.
class Painter {
 public:
    Painter(const GridModel& model, const IGridSource* source, HDC device, int width, int height, int dpi,
            int textHeight)
        : model_(model),
          view_(model.View()),
          columns_(model.Columns()),
          source_(source),
          device_(device),
          width_(width),
          height_(height),
          dpi_(dpi),
          textHeight_(textHeight),
          padding_(Scale(kGridCellPadding, dpi)) {}

    void Rows(const RECT& dirty, std::string& ansi, std::wstring& wide);
    void Header(bool markSort, int dragged, int dropMark, std::wstring& wide);
    void Band(std::wstring& wide);
    void EditButton();
    void RightOfColumns(const RECT& dirty);

    const GridFilterBar* filterBar = nullptr;
    Rect editButton;  // of the cell that is edited, empty: none
    bool focused = false, rowLines = true;

 private:
    void Fill(const RECT& area, COLORREF colour) const;
    // `clip` is filled; the text stands in `cell` with the usual room on both sides.
    void Text(const RECT& clip, const RECT& cell, std::wstring& text, GridAlign align, CellLook look) const;
    bool Shorten(std::wstring& text, int room, int& width) const;
    void Row(std::uint32_t row, std::string& ansi, std::wstring& wide);
    void RowHeader(std::uint32_t row) const;
    void Cell(std::uint32_t row, int position, CellLook look, std::string& ansi, std::wstring& wide);
    CellLook LookOf(std::uint32_t row) const;
    void FilterText(int column, const RECT& area, std::wstring& wide) const;
    void GroupHead(std::uint32_t row, const GridGroupHead& head, std::string& ansi, std::wstring& wide) const;
    void GroupBox(const Rect& box, bool open, COLORREF back) const;
    void HeaderCell(int position, bool markSort, bool dragged, std::wstring& wide) const;
    int SortMark(int column, const RECT& cell, COLORREF face) const;
    void Triangle(const POINT (&corners)[3], COLORREF colour) const;
    // Where a column shows; false when nothing of it does.
    bool Shown(int position, RECT& cell, RECT& clip) const;

    const GridModel& model_;
    const GridView& view_;
    const GridColumns& columns_;
    const IGridSource* source_;
    HDC device_;
    int width_, height_, dpi_, textHeight_, padding_;
    GridColours palette_;
};

void Painter::Fill(const RECT& area, COLORREF colour) const {
    SetBkColor(device_, colour);
    ExtTextOutW(device_, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
}

// A number that lost its last digits would read as another number, so what does not fit always ends in dots.
bool Painter::Shorten(std::wstring& text, int room, int& width) const {
    SIZE size{};
    INT fits = 0;
    GetTextExtentExPointW(device_, text.data(), static_cast<int>(text.size()), std::max(room, 0), &fits,
                          nullptr, &size);
    width = size.cx;
    if (width <= room) return false;
    SIZE dots{};
    GetTextExtentPoint32W(device_, L"...", 3, &dots);
    GetTextExtentExPointW(device_, text.data(), static_cast<int>(text.size()),
                          std::max<int>(room - dots.cx, 0), &fits, nullptr, &size);
    text.resize(static_cast<std::size_t>(std::clamp(fits, 0, static_cast<INT>(text.size()))));
    text += L"...";
    return true;
}

void Painter::Text(const RECT& clip, const RECT& cell, std::wstring& text, GridAlign align,
                   CellLook look) const {
    SetBkColor(device_, look.back);
    SetTextColor(device_, look.text);
    const int room = cell.right - cell.left - 2 * padding_;
    int width = 0, x = cell.left + padding_;
    if (!text.empty() && !Shorten(text, room, width)) {
        if (align == GridAlign::Right) x = cell.right - padding_ - width;
        if (align == GridAlign::Centre) x += (room - width) / 2;
    }
    const int y = cell.top + (cell.bottom - cell.top - textHeight_) / 2;
    ExtTextOutW(device_, x, y, ETO_OPAQUE | ETO_CLIPPED, &clip, text.data(), static_cast<UINT>(text.size()),
                nullptr);
}

bool Painter::Shown(int position, RECT& cell, RECT& clip) const {
    cell.left = view_.ColumnLeft(position);
    cell.right = cell.left + columns_.PixelWidth(position);
    clip = cell;
    clip.left = std::max<LONG>(cell.left, view_.ClipLeft(position));
    return clip.left < clip.right && clip.left < width_;
}

CellLook Painter::LookOf(std::uint32_t row) const {
    const GridRowStyle style = source_->RowStyle(row);
    const bool plain = style.background == kDefaultColour;
    if (!model_.Selection().Contains(row)) {
        return {plain ? palette_.window : style.background,
                style.text == kDefaultColour ? palette_.text : style.text};
    }
    if (!focused) return {palette_.idle, palette_.text};
    return {plain ? palette_.highlight : palette_.strong, palette_.highlightText};
}

void Painter::Cell(std::uint32_t row, int position, CellLook look, std::string& ansi, std::wstring& wide) {
    const int column = columns_.AtPosition(position);
    RECT cell{}, clip{};
    if (!Shown(position, cell, clip)) return;
    cell.top = clip.top = view_.RowTop(row);
    cell.bottom = clip.bottom = cell.top + view_.Metrics().rowHeight - 1;
    cell.right -= 1;
    clip.right -= 1;
    ansi.clear();
    source_->CellText(row, column, ansi);
    Widen(std::string_view(ansi).substr(0, kMaxShownBytes), wide);
    if (!model_.Selection().Contains(row)) {
        const GridRowStyle own = source_->CellStyle(row, column);
        if (own.background != kDefaultColour) look.back = own.background;
        if (own.text != kDefaultColour) look.text = own.text;
    }
    Text(clip, cell, wide, columns_[column].align, look);
    if (focused && row == model_.CurrentRow() && column == model_.CurrentColumn()) {
        const bool selected = model_.Selection().Contains(row);
        const HBRUSH brush = CreateSolidBrush(selected ? palette_.frame : palette_.highlight);
        FrameRect(device_, &clip, brush);
        DeleteObject(brush);
    }
    Fill({cell.right, cell.top, cell.right + 1, cell.bottom}, Mix(palette_.text, look.back, 28));
}

void Painter::RowHeader(std::uint32_t row) const {
    const int right = view_.Metrics().rowHeaderWidth;
    if (right == 0) return;
    const LONG top = view_.RowTop(row), bottom = top + view_.Metrics().rowHeight;
    Fill({0, top, right - 1, bottom - 1}, palette_.face);
    Fill({right - 1, top, right, bottom}, palette_.headerLine);
    Fill({0, bottom - 1, right - 1, bottom}, palette_.line);
    if (row != model_.CurrentRow()) return;
    const LONG half = Scale(kCurrentMark, dpi_) / 2, middle = (top + bottom - 1) / 2,
               left = (right - half) / 2;
    Triangle({{left, middle - half}, {left, middle + half}, {left + half, middle}}, palette_.mark);
}

void Painter::GroupBox(const Rect& box, bool open, COLORREF back) const {
    const LONG middleX = (box.left + box.right - 1) / 2, middleY = (box.top + box.bottom - 1) / 2;
    const LONG thick = std::max(Scale(1, dpi_), 1), inset = 2 * thick;
    Fill({box.left, box.top, box.right, box.bottom}, palette_.mark);
    Fill({box.left + 1, box.top + 1, box.right - 1, box.bottom - 1}, back);
    Fill({box.left + inset, middleY, box.right - inset, middleY + thick}, palette_.text);
    if (!open) Fill({middleX, box.top + inset, middleX + thick, box.bottom - inset}, palette_.text);
}

// Stands still while the columns scroll: it belongs to all of them.
void Painter::GroupHead(std::uint32_t row, const GridGroupHead& head, std::string& ansi,
                        std::wstring& wide) const {
    CellLook look{palette_.group, palette_.text};
    if (model_.Selection().Contains(row))
        look = focused ? CellLook{palette_.highlight, palette_.highlightText}
                       : CellLook{palette_.idle, palette_.text};
    const LONG top = view_.RowTop(row), bottom = top + view_.Metrics().rowHeight;
    const RECT clip{view_.Metrics().rowHeaderWidth, top, width_, bottom - 1};
    RECT cell = clip;
    cell.left = view_.GroupTextLeft(head.level) - padding_ + Scale(2, dpi_);
    source_->GroupText(row, ansi);
    Widen(std::string_view(ansi).substr(0, kMaxShownBytes), wide);
    Text(clip, cell, wide, GridAlign::Left, look);
    GroupBox(view_.GroupBox(row, head.level), head.open, palette_.window);
    Fill({clip.left, bottom - 1, width_, bottom}, palette_.headerLine);
    RowHeader(row);
}

void Painter::Row(std::uint32_t row, std::string& ansi, std::wstring& wide) {
    const GridGroupHead head = source_->GroupHead(row);
    if (head.level >= 0) return GroupHead(row, head, ansi, wide);
    const CellLook look = LookOf(row);
    // Right to left, so that the frozen columns end up above those that scroll.
    for (int position = columns_.ShownCount() - 1; position >= 0; --position)
        Cell(row, position, look, ansi, wide);
    const LONG bottom = view_.RowTop(row) + view_.Metrics().rowHeight;
    const LONG right = std::min(view_.ColumnLeft(columns_.ShownCount()), width_);
    Fill({view_.Metrics().rowHeaderWidth, bottom - 1, right, bottom}, rowLines ? palette_.line : look.back);
    const LONG frozen = view_.ClipLeft(columns_.ShownCount());
    if (columns_.Frozen() > 0) Fill({frozen - 1, view_.RowTop(row), frozen, bottom}, palette_.mark);
    RowHeader(row);
}

void Painter::Rows(const RECT& dirty, std::string& ansi, std::wstring& wide) {
    const int rowHeight = view_.Metrics().rowHeight;
    // The source may have lost rows that the model is about to be told of.
    const std::uint32_t end = std::min(view_.VisibleEnd(), source_ == nullptr ? 0 : source_->RowCount());
    for (std::uint32_t row = view_.TopRow(); row < end; ++row) {
        const int top = view_.RowTop(row);
        if (top < dirty.bottom && top + rowHeight > dirty.top) Row(row, ansi, wide);
    }
    const LONG below = end <= view_.TopRow() ? view_.RowsTop() : view_.RowTop(end);
    if (below < height_) Fill({0, below, width_, height_}, palette_.window);
}

void Painter::RightOfColumns(const RECT& dirty) {
    const LONG right =
        std::max(view_.ColumnLeft(columns_.ShownCount()), view_.ClipLeft(columns_.ShownCount()));
    if (right < dirty.right) Fill({right, view_.RowsTop(), width_, height_}, palette_.window);
}

void Painter::Triangle(const POINT (&corners)[3], COLORREF colour) const {
    SetDCPenColor(device_, colour);
    SetDCBrushColor(device_, colour);
    const HGDIOBJ pen = SelectObject(device_, GetStockObject(DC_PEN));
    const HGDIOBJ brush = SelectObject(device_, GetStockObject(DC_BRUSH));
    Polygon(device_, corners, 3);
    SelectObject(device_, brush);
    SelectObject(device_, pen);
}

// The arrow, and with several keys the key's place among them. Returns the width taken.
int Painter::SortMark(int column, const RECT& cell, COLORREF face) const {
    const int direction = model_.Sort().Direction(column);
    if (direction == 0) return 0;
    const LONG half = Scale(kSortMark, dpi_) / 2;
    LONG right = cell.right - padding_;
    const LONG middle = (cell.top + cell.bottom) / 2;
    if (model_.Sort().Keys().size() > 1) {
        char digits[8];
        const char* end = std::to_chars(digits, digits + sizeof digits, model_.Sort().Ordinal(column)).ptr;
        const std::wstring ordinal(static_cast<const char*>(digits), end);
        SIZE size{};
        GetTextExtentPoint32W(device_, ordinal.data(), static_cast<int>(ordinal.size()), &size);
        right -= size.cx;
        SetBkColor(device_, face);
        SetTextColor(device_, palette_.mark);
        ExtTextOutW(device_, right, cell.top + (cell.bottom - cell.top - textHeight_) / 2, 0, nullptr,
                    ordinal.data(), static_cast<UINT>(ordinal.size()), nullptr);
        right -= 2;
    }
    const LONG left = right - 2 * half, base = middle + (direction > 0 ? half / 2 : -half / 2);
    Triangle({{left, base}, {right, base}, {left + half, base - direction * half}}, palette_.mark);
    return cell.right - left;
}

void Painter::HeaderCell(int position, bool markSort, bool dragged, std::wstring& wide) const {
    const int column = columns_.AtPosition(position);
    RECT cell{}, clip{};
    if (!Shown(position, cell, clip)) return;
    cell.top = clip.top = 0;
    cell.bottom = clip.bottom = view_.Metrics().headerHeight - 1;
    cell.right -= 1;
    clip.right -= 1;
    const bool sorted = markSort && model_.Sort().Direction(column) != 0;
    const COLORREF face = dragged ? palette_.idle : sorted ? palette_.headerMark : palette_.face;
    Fill(clip, face);
    RECT textCell = cell;
    textCell.right -= SortMark(column, cell, face);
    RECT textClip = textCell;
    textClip.left = clip.left;
    Widen(columns_[column].header, wide);
    if (textClip.left < textClip.right)
        Text(textClip, textCell, wide, columns_[column].align, {face, palette_.faceText});
    Fill({cell.right, 3, cell.right + 1, cell.bottom - 3}, palette_.headerLine);
    Fill({cell.right, 0, cell.right + 1, 3}, face);
    Fill({cell.right, cell.bottom - 3, cell.right + 1, cell.bottom}, face);
}

void Painter::EditButton() {
    const Rect& at = editButton;
    if (at == Rect{}) return;
    Fill({at.left, at.top + 1, at.right - 1, at.bottom - 1}, palette_.face);
    const LONG half = Scale(kSortMark, dpi_) / 2, x = (at.left + at.right - 1) / 2,
               y = (at.top + at.bottom) / 2;
    Triangle({{x - half, y - half / 2}, {x + half, y - half / 2}, {x, y + half - half / 2}}, palette_.mark);
}

// What a field says that is not on the screen itself, else only its colour round it.
void Painter::FilterText(int column, const RECT& area, std::wstring& wide) const {
    const GridFilter& filter = model_.Filter();
    const bool active = filter.Active(column), empty = filter.Text(column).empty();
    const COLORREF back = active ? palette_.filter : palette_.window;
    if (filterBar->Shows(column)) return Fill(area, back);
    Widen(empty ? filter.Hint() : filter.Text(column), wide);
    SetBkColor(device_, back);
    SetTextColor(device_, empty ? palette_.hint : palette_.text);
    ExtTextOutW(device_, area.left + padding_ - 1, area.top + (area.bottom - area.top - textHeight_) / 2,
                ETO_OPAQUE | ETO_CLIPPED, &area, wide.data(), static_cast<UINT>(wide.size()), nullptr);
}

// The fields are windows of their own; this is what stands round them.
void Painter::Band(std::wstring& wide) {
    const LONG top = view_.Metrics().headerHeight, bottom = view_.RowsTop();
    if (bottom == top) return;
    Fill({0, top, width_, bottom - 1}, palette_.window);
    for (int position = columns_.ShownCount() - 1; position >= 0; --position) {
        RECT cell{}, clip{};
        if (!Shown(position, cell, clip)) continue;
        FilterText(columns_.AtPosition(position), {clip.left, top, clip.right - 1, bottom - 1}, wide);
        Fill({clip.right - 1, top, clip.right, bottom - 1}, palette_.line);
    }
    const LONG left = view_.Metrics().rowHeaderWidth, frozen = view_.ClipLeft(columns_.ShownCount());
    if (left > 0) Fill({0, top, left - 1, bottom - 1}, palette_.face);
    if (left > 0) Fill({left - 1, top, left, bottom - 1}, palette_.headerLine);
    if (columns_.Frozen() > 0) Fill({frozen - 1, top, frozen, bottom - 1}, palette_.mark);
    Fill({0, bottom - 1, width_, bottom}, palette_.headerLine);
}

void Painter::Header(bool markSort, int dragged, int dropMark, std::wstring& wide) {
    const LONG height = view_.Metrics().headerHeight;
    if (height == 0) return;
    Fill({0, 0, width_, height - 1}, palette_.face);
    for (int position = columns_.ShownCount() - 1; position >= 0; --position)
        HeaderCell(position, markSort, columns_.AtPosition(position) == dragged, wide);
    Fill({0, 0, view_.Metrics().rowHeaderWidth, height - 1}, palette_.face);
    Fill({0, height - 1, width_, height}, palette_.headerLine);
    if (dropMark < 0) return;
    const LONG at = dropMark > 0 && dropMark == columns_.Frozen() ? view_.ClipLeft(columns_.ShownCount())
                                                                  : view_.ColumnLeft(dropMark);
    const LONG x = std::clamp<LONG>(at, 2, std::max<LONG>(width_ - 2, 2)), tip = Scale(5, dpi_);
    Fill({x - 1, 0, x + 1, height_}, palette_.highlight);
    Triangle({{x - tip, 0}, {x + tip, 0}, {x, tip}}, palette_.highlight);
    Triangle({{x - tip, height - 1}, {x + tip, height - 1}, {x, height - 1 - tip}}, palette_.highlight);
}

bool EnsureBuffer(HBITMAP& buffer, SIZE& size, HDC screen, const RECT& client) {
    if (buffer != nullptr && size.cx >= client.right && size.cy >= client.bottom) return true;
    if (buffer != nullptr) DeleteObject(buffer);
    size = {std::max<LONG>(client.right, 1), std::max<LONG>(client.bottom, 1)};
    buffer = CreateCompatibleBitmap(screen, size.cx, size.cy);
    return buffer != nullptr;
}

}  // namespace

void GridPaint::Paint(CKRVPGridCtrl& grid, HDC screen, const RECT& dirty) {
    CKRVPGridCtrl::State& state = *grid.state_;
    RECT client;
    GetClientRect(static_cast<HWND>(grid.window_), &client);
    if (!EnsureBuffer(state.buffer, state.bufferSize, screen, client)) return;
    const HDC device = CreateCompatibleDC(screen);
    if (device == nullptr) return;
    const HGDIOBJ bitmap = SelectObject(device, state.buffer);
    const HGDIOBJ font = SelectObject(device, state.font);
    Painter painter(grid.model_, grid.source_, device, client.right, client.bottom, state.dpi,
                    state.textHeight);
    painter.focused = state.focused || state.editor.Active();
    painter.filterBar = &state.filter;
    painter.editButton = state.editor.Button();
    painter.rowLines = grid.rowLines_;
    painter.RightOfColumns(dirty);
    painter.Rows(dirty, state.ansi, state.wide);
    Instead(state, device, {0, grid.model_.View().RowsTop(), client.right, client.bottom});
    painter.EditButton();
    painter.Band(state.wide);
    painter.Header(grid.markSort_, state.dragMoved ? state.dragColumn : -1,
                   state.dragMoved ? state.dropMark : -1, state.wide);
    BitBlt(screen, dirty.left, dirty.top, dirty.right - dirty.left, dirty.bottom - dirty.top, device,
           dirty.left, dirty.top, SRCCOPY);
    SelectObject(device, font);
    SelectObject(device, bitmap);
    DeleteDC(device);
}
