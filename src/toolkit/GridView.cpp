#include "toolkit/GridView.h"

#include <algorithm>

namespace Dravel {
namespace {

// How near the pointer must be to a header's edge to drag it, at 96 dpi.
constexpr int kDividerReach = 4;
constexpr int kMinFieldWidth = 6;
// Of a group's head: the box, the room left and right of it, and the step from level to level.
constexpr int kGroupBox = 9, kGroupGap = 5, kGroupIndent = 16;

}  // namespace

void GridView::SetMetrics(const GridMetrics& metrics) {
    metrics_ = metrics;
    metrics_.rowHeight = std::max(metrics_.rowHeight, 1);
    Clamp();
}

void GridView::SetClient(int width, int height) {
    width_ = std::max(width, 0);
    height_ = std::max(height, 0);
    Clamp();
}

void GridView::SetRowCount(std::uint32_t rows) {
    rows_ = rows;
    Clamp();
}

std::uint32_t GridView::MaxTopRow() const {
    return rows_ > PageRows() ? rows_ - PageRows() : 0;
}

void GridView::SetTopRow(std::int64_t row) {
    top_ = static_cast<std::uint32_t>(std::clamp<std::int64_t>(row, 0, MaxTopRow()));
}

int GridView::MaxScrollX() const {
    return std::max(columns_.TotalWidth() - columns_.FrozenWidth() - ScrollWidth(), 0);
}

void GridView::SetScrollX(std::int64_t x) {
    scrollX_ = static_cast<int>(std::clamp<std::int64_t>(x, 0, MaxScrollX()));
}

void GridView::Clamp() {
    SetTopRow(top_);
    SetScrollX(scrollX_);
}

std::uint32_t GridView::PageRows() const {
    return static_cast<std::uint32_t>(std::max((height_ - RowsTop()) / metrics_.rowHeight, 1));
}

std::uint32_t GridView::VisibleEnd() const {
    const int room = std::max(height_ - RowsTop(), 0);
    const auto shown = static_cast<std::uint32_t>((room + metrics_.rowHeight - 1) / metrics_.rowHeight);
    return top_ + std::min(shown, rows_ - top_);
}

int GridView::ScrollWidth() const {
    return std::max(width_ - metrics_.rowHeaderWidth - columns_.FrozenWidth(), 1);
}

bool GridView::EnsureRow(std::uint32_t row) {
    if (row >= rows_) return false;
    const std::uint32_t before = top_;
    if (row < top_) {
        SetTopRow(row);
    } else if (row - top_ >= PageRows()) {
        SetTopRow(static_cast<std::int64_t>(row) - PageRows() + 1);
    }
    return top_ != before;
}

bool GridView::EnsureColumn(int column) {
    const int position = columns_.Position(column);
    if (position < columns_.Frozen()) return false;  // hidden or always in view
    const int before = scrollX_;
    const int left = columns_.Left(position) - columns_.FrozenWidth();
    const int right = left + columns_.PixelWidth(position);
    if (right > scrollX_ + ScrollWidth()) SetScrollX(right - ScrollWidth());
    if (left < scrollX_) SetScrollX(left);
    return scrollX_ != before;
}

int GridView::RowTop(std::uint32_t row) const {
    return RowsTop() + static_cast<int>(static_cast<std::int64_t>(row) - top_) * metrics_.rowHeight;
}

int GridView::ColumnLeft(int position) const {
    return metrics_.rowHeaderWidth + columns_.Left(position) - (position < columns_.Frozen() ? 0 : scrollX_);
}

int GridView::ClipLeft(int position) const {
    return metrics_.rowHeaderWidth + (position < columns_.Frozen() ? 0 : columns_.FrozenWidth());
}

Rect GridView::CellRect(std::uint32_t row, int column) const {
    const int position = columns_.Position(column);
    if (position < 0 || row < top_ || row >= VisibleEnd()) return {};
    const int left = ColumnLeft(position);
    const Rect cell{left, RowTop(row), left + columns_.PixelWidth(position),
                    RowTop(row) + metrics_.rowHeight};
    return cell.right <= ClipLeft(position) || cell.left >= width_ ? Rect{} : cell;
}

Rect GridView::FieldRect(int column) const {
    const int position = columns_.Position(column);
    if (position < 0 || metrics_.bandHeight == 0) return {};
    const int left = ColumnLeft(position);
    const Rect field{std::max(left, ClipLeft(position)), metrics_.headerHeight,
                     std::min(left + columns_.PixelWidth(position), width_), RowsTop()};
    return field.Width() < Scale(kMinFieldWidth, columns_.Dpi()) ? Rect{} : field;
}

Rect GridView::GroupBox(std::uint32_t row, int level) const {
    const int dpi = columns_.Dpi(), side = Scale(kGroupBox, dpi);
    const int left = metrics_.rowHeaderWidth + Scale(kGroupGap + level * kGroupIndent, dpi);
    const int top = RowTop(row) + (metrics_.rowHeight - 1 - side) / 2;
    return {left, top, left + side, top + side};
}

int GridView::GroupTextLeft(int level) const {
    return metrics_.rowHeaderWidth + Scale(2 * kGroupGap + kGroupBox + level * kGroupIndent, columns_.Dpi());
}

GridHit GridView::OnGroupHead(const GridHit& hit, int x, int level) const {
    if (hit.row == kNoRow || hit.part == GridPart::RowHeader) return hit;
    // The whole height of the row, and a gap on both sides: nine pixels are hard to hit.
    const int gap = Scale(kGroupGap, columns_.Dpi());
    const Rect box = GroupBox(hit.row, level);
    const bool inBox = x >= box.left - gap && x < box.right + gap;
    return {inBox ? GridPart::GroupBox : GridPart::GroupHead, hit.row, -1};
}

int GridView::PositionAt(int x) const {
    const int inside = x - metrics_.rowHeaderWidth;
    if (inside < 0) return -1;
    return columns_.PositionAt(inside < columns_.FrozenWidth() ? inside : inside + scrollX_);
}

// The position whose right edge is under `x`. A wide reach would leave a narrow column no header to click.
int GridView::DividerAt(int x) const {
    const int reach = Scale(kDividerReach, columns_.Dpi());
    const auto near = [&](int position) {
        if (position < 0 || position >= columns_.ShownCount()) return false;
        const int right = ColumnLeft(position) + columns_.PixelWidth(position);
        const int own = std::min(reach, columns_.PixelWidth(position) / 3);
        return right >= ClipLeft(position) && x >= right - own && x < right + reach;
    };
    const int under = PositionAt(x);
    if (under < 0) return near(columns_.ShownCount() - 1) ? columns_.ShownCount() - 1 : -1;
    if (near(under)) return under;
    const int left = ColumnLeft(under);
    const bool pastEdge = under > 0 && x < left + std::min(reach, columns_.PixelWidth(under) / 3);
    return pastEdge && near(under - 1) ? under - 1 : -1;
}

GridHit GridView::HitTest(int x, int y) const {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return {};
    const int position = PositionAt(x);
    const int column = columns_.AtPosition(position);
    if (y < metrics_.headerHeight) {
        if (x < metrics_.rowHeaderWidth) return {GridPart::Corner, kNoRow, -1};
        if (const int divider = DividerAt(x); divider >= 0) {
            return {GridPart::Divider, kNoRow, columns_.AtPosition(divider)};
        }
        return column < 0 ? GridHit{} : GridHit{GridPart::Header, kNoRow, column};
    }
    if (y < RowsTop()) return {GridPart::Band, kNoRow, column};
    const std::uint32_t row = top_ + static_cast<std::uint32_t>((y - RowsTop()) / metrics_.rowHeight);
    if (row >= rows_) return {};
    if (x < metrics_.rowHeaderWidth) return {GridPart::RowHeader, row, -1};
    return column < 0 ? GridHit{} : GridHit{GridPart::Cell, row, column};
}

GridHit GridView::Nearest(int x, int y) const {
    if (rows_ == 0) return {};
    std::int64_t row = top_;
    if (y < RowsTop()) {
        row -= 1 + (RowsTop() - 1 - y) / metrics_.rowHeight;
    } else {
        row += (y - RowsTop()) / metrics_.rowHeight;
    }
    const int last = columns_.ShownCount() - 1;
    int position = PositionAt(std::clamp(x, 0, std::max(width_ - 1, 0)));
    if (position < 0) position = x < metrics_.rowHeaderWidth ? 0 : last;
    return {GridPart::Cell, static_cast<std::uint32_t>(std::clamp<std::int64_t>(row, 0, rows_ - 1)),
            columns_.AtPosition(position)};
}

int GridView::DropMark(int column, int x) const {
    const int from = columns_.Position(column), before = DropPosition(x);
    if (from < 0) return -1;
    // It leaves its own place first, so what lies behind moves up by one.
    const int to = columns_.DragTarget(column, before > from ? before - 1 : before);
    if (to == from) return -1;
    return to > from ? to + 1 : to;
}

int GridView::DropPosition(int x) const {
    const int position = PositionAt(x);
    if (position < 0) return x < metrics_.rowHeaderWidth ? 0 : columns_.ShownCount();
    return x < ColumnLeft(position) + columns_.PixelWidth(position) / 2 ? position : position + 1;
}

}  // namespace Dravel
