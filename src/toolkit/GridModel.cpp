#include "toolkit/GridModel.h"

#include <algorithm>

namespace Dravel {

void GridModel::MoveCurrent(std::uint32_t row, int column) {
    row_ = row < RowCount() ? row : kNoRow;
    column_ = column >= 0 && column < columns_.Count() ? column : -1;
}

void GridModel::SetCurrent(std::uint32_t row, int column) {
    MoveCurrent(row, column);
    anchor_ = row_;
    span_ = kNothing;
    if (row_ == kNoRow) return selection_.Clear();
    selection_.Set({row_, row_});
    span_ = {row_, row_};
    view_.EnsureRow(row_);
    view_.EnsureColumn(column_);
}

void GridModel::Select(GridRange range) {
    selection_.Clear();
    span_ = kNothing;
    AddSelection(range);
}

void GridModel::AddSelection(GridRange range) {
    if (range.first > range.last || range.first >= RowCount()) return;
    selection_.Add({range.first, std::min(range.last, RowCount() - 1)});
}

void GridModel::SelectAll() {
    if (RowCount() == 0) return;
    Select({0, RowCount() - 1});
    if (row_ == kNoRow) row_ = view_.TopRow();
}

void GridModel::ClearSelection() {
    selection_.Clear();
    span_ = kNothing;
}

// Selects from the anchor to `row` in place of what the last extension selected.
void GridModel::Extend(std::uint32_t row, bool keepOthers) {
    if (anchor_ >= RowCount()) anchor_ = row;
    if (!keepOthers) {
        selection_.Clear();
    } else if (span_.first <= span_.last) {
        selection_.Remove(span_);
    }
    span_ = {std::min(anchor_, row), std::max(anchor_, row)};
    selection_.Add(span_);
}

void GridModel::GoTo(std::uint32_t row, bool extend) {
    if (extend) {
        Extend(row, false);
        row_ = row;
        view_.EnsureRow(row);
    } else {
        SetCurrent(row, column_ >= 0 ? column_ : columns_.AtPosition(0));
    }
}

bool GridModel::Key(GridKey key, GridModifiers modifiers) {
    switch (key) {
        case GridKey::Left:
        case GridKey::Right:
            return MoveColumn(key, modifiers);
        case GridKey::Tab:
            return !modifiers.ctrl && MoveColumn(modifiers.shift ? GridKey::Left : GridKey::Right, {});
        case GridKey::Enter:
            return !modifiers.ctrl && MoveRow(modifiers.shift ? GridKey::Up : GridKey::Down, {});
        case GridKey::Home:
        case GridKey::End:
            return modifiers.ctrl ? MoveRow(key, modifiers) : MoveColumn(key, modifiers);
        case GridKey::A:
            if (modifiers.ctrl && !modifiers.shift) SelectAll();
            return modifiers.ctrl && !modifiers.shift;
        case GridKey::Space:
            if (row_ == kNoRow || (!modifiers.ctrl && !modifiers.shift)) return false;
            if (modifiers.shift) {
                selection_.Add({row_, row_});
            } else {
                selection_.Toggle(row_);
            }
            anchor_ = row_;
            span_ = kNothing;
            return true;
        default:
            return MoveRow(key, modifiers);
    }
}

bool GridModel::MoveRow(GridKey key, GridModifiers modifiers) {
    const bool step = key == GridKey::Up || key == GridKey::Down;
    if (step && modifiers.ctrl) return false;
    if (RowCount() == 0) return true;
    const std::int64_t page = std::max<std::int64_t>(view_.PageRows() - 1, 1);
    const std::int64_t last = static_cast<std::int64_t>(RowCount()) - 1;
    // Without a current row the first key only makes one.
    std::int64_t row = row_ == kNoRow ? static_cast<std::int64_t>(view_.TopRow()) : row_;
    const bool made = row_ == kNoRow && step;
    switch (key) {
        case GridKey::Up:
            row -= made ? 0 : 1;
            break;
        case GridKey::Down:
            row += made ? 0 : 1;
            break;
        case GridKey::PageUp:
            row -= page;
            break;
        case GridKey::PageDown:
            row += page;
            break;
        case GridKey::Home:
            row = 0;
            break;
        default:
            row = last;
            break;
    }
    if (key == GridKey::PageUp || key == GridKey::PageDown) {
        // The current row keeps its place on the screen.
        view_.SetTopRow(view_.TopRow() + (key == GridKey::PageUp ? -page : page));
    }
    if (modifiers.ctrl && (key == GridKey::Home || key == GridKey::End)) {
        column_ = columns_.AtPosition(key == GridKey::Home ? 0 : columns_.ShownCount() - 1);
        view_.EnsureColumn(column_);
    }
    GoTo(static_cast<std::uint32_t>(std::clamp<std::int64_t>(row, 0, last)), modifiers.shift);
    return true;
}

bool GridModel::MoveColumn(GridKey key, GridModifiers modifiers) {
    const int last = columns_.ShownCount() - 1;
    if (last < 0) return true;
    const int from = columns_.Position(column_);
    int position = 0;
    if (key == GridKey::End || (modifiers.ctrl && key == GridKey::Right)) {
        position = last;
    } else if (key == GridKey::Right) {
        position = std::min(from + 1, last);
    } else if (key == GridKey::Left && !modifiers.ctrl) {
        position = std::max(from - 1, 0);
    }
    column_ = columns_.AtPosition(position);
    if (row_ == kNoRow && RowCount() > 0) SetCurrent(view_.TopRow(), column_);
    view_.EnsureColumn(column_);
    if (row_ != kNoRow) view_.EnsureRow(row_);
    return true;
}

void GridModel::Press(const GridHit& hit, GridModifiers modifiers) {
    if (hit.row >= RowCount()) return;
    const int column = hit.column >= 0 ? hit.column : column_;
    if (modifiers.shift) {
        if (anchor_ >= RowCount()) anchor_ = row_ != kNoRow ? row_ : hit.row;
        Extend(hit.row, modifiers.ctrl);
    } else if (modifiers.ctrl) {
        selection_.Toggle(hit.row);
        anchor_ = hit.row;
        span_ = selection_.Contains(hit.row) ? GridRange{hit.row, hit.row} : kNothing;
    } else {
        return SetCurrent(hit.row, column);
    }
    MoveCurrent(hit.row, column);
    view_.EnsureRow(row_);
}

void GridModel::DragTo(const GridHit& hit) {
    if (hit.row >= RowCount()) return;
    Extend(hit.row, true);
    row_ = hit.row;
    view_.EnsureRow(row_);
}

void GridModel::RowsInserted(std::uint32_t at, std::uint32_t count) {
    if (count == 0) return;
    at = std::min(at, RowCount());
    const std::uint32_t top = view_.TopRow();
    const auto shift = [&](std::uint32_t& row) {
        if (row != kNoRow && row >= at) row += count;
    };
    selection_.RowsInserted(at, count);
    shift(row_);
    shift(anchor_);
    MoveSpan();
    view_.SetRowCount(RowCount() + count);
    if (top > 0 && at <= top) view_.SetTopRow(static_cast<std::int64_t>(top) + count);
}

void GridModel::RowsRemoved(std::uint32_t at, std::uint32_t count) {
    if (at >= RowCount() || count == 0) return;
    count = std::min(count, RowCount() - at);
    const std::uint32_t top = view_.TopRow(), left = RowCount() - count;
    selection_.RowsRemoved(at, count);
    if (anchor_ != kNoRow && anchor_ >= at) anchor_ = anchor_ < at + count ? kNoRow : anchor_ - count;
    // The row that takes the removed current one's place becomes current, as in a spreadsheet.
    if (row_ != kNoRow && row_ >= at) row_ = row_ < at + count ? at : row_ - count;
    if (row_ != kNoRow && row_ >= left) row_ = left == 0 ? kNoRow : left - 1;
    MoveSpan();
    view_.SetRowCount(left);
    if (at < top) view_.SetTopRow(static_cast<std::int64_t>(top) - std::min(count, top - at));
}

void GridModel::RowsSwapped(std::uint32_t a, std::uint32_t b) {
    if (a >= RowCount() || b >= RowCount()) return;
    selection_.RowsSwapped(a, b);
    for (std::uint32_t* row : {&row_, &anchor_}) {
        if (*row == a) {
            *row = b;
        } else if (*row == b) {
            *row = a;
        }
    }
    MoveSpan();
}

// The new place of the row or, when it went, of the first below it that stayed, else of the last above it.
std::uint32_t GridModel::Nearest(std::uint32_t row, std::uint32_t count,
                                 const std::function<std::uint32_t(std::uint32_t)>& moved) const {
    for (std::uint32_t below = row; below < RowCount(); ++below) {
        if (const std::uint32_t to = moved(below); to != kNoRow) return to;
    }
    for (std::uint32_t above = row; above-- > 0;) {
        if (const std::uint32_t to = moved(above); to != kNoRow) return to;
    }
    return count == 0 ? kNoRow : std::min(row, count - 1);
}

void GridModel::RowsReordered(std::uint32_t count,
                              const std::function<std::uint32_t(std::uint32_t)>& newRow) {
    const auto moved = [&](std::uint32_t row) {
        const std::uint32_t to = row == kNoRow ? kNoRow : newRow(row);
        return to < count ? to : kNoRow;
    };
    const std::uint32_t onScreen = row_ == kNoRow ? kNoRow : row_ - view_.TopRow();
    const bool wasShown = row_ != kNoRow && row_ >= view_.TopRow() && row_ < view_.VisibleEnd();
    selection_.RowsReordered(moved);
    if (row_ != kNoRow) row_ = Nearest(row_, count, moved);
    anchor_ = moved(anchor_);
    MoveSpan();
    view_.SetRowCount(count);
    // A current row that was in view stays where it was on the screen.
    if (wasShown && row_ != kNoRow) {
        view_.SetTopRow(static_cast<std::int64_t>(row_) - onScreen);
        view_.EnsureRow(row_);
    }
}

void GridModel::RowsReset(std::uint32_t count) {
    selection_.Clear();
    row_ = anchor_ = kNoRow;
    span_ = kNothing;
    view_.SetRowCount(count);
    view_.SetTopRow(0);
}

// After the rows moved, an extension starts anew from the anchor: what it selected before stays.
void GridModel::MoveSpan() {
    span_ = anchor_ != kNoRow && selection_.Contains(anchor_) ? GridRange{anchor_, anchor_} : kNothing;
}

}  // namespace Dravel
