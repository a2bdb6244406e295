#include "toolkit/GridColumns.h"

#include <algorithm>
#include <utility>

#include "toolkit/Geometry.h"

namespace Dravel {

int GridColumns::Add(GridColumn column) {
    column.width = std::clamp(column.width, kMinColumnWidth, kMaxColumnWidth);
    const int number = Count();
    if (column.visible) shown_.push_back(number);
    columns_.push_back(std::move(column));
    Layout();
    return number;
}

void GridColumns::Clear() {
    columns_.clear();
    shown_.clear();
    Layout();
}

int GridColumns::Find(std::string_view key) const {
    const auto found = std::find_if(columns_.begin(), columns_.end(),
                                    [&](const GridColumn& column) { return column.key == key; });
    return found == columns_.end() ? -1 : static_cast<int>(found - columns_.begin());
}

GridColumn* GridColumns::At(int column) {
    return column >= 0 && column < Count() ? &columns_[static_cast<std::size_t>(column)] : nullptr;
}

void GridColumns::SetHeader(int column, std::string_view header) {
    if (GridColumn* at = At(column)) at->header = header;
}

void GridColumns::SetWidth(int column, int width) {
    if (GridColumn* at = At(column)) at->width = std::clamp(width, kMinColumnWidth, kMaxColumnWidth);
    Layout();
}

void GridColumns::SetAlign(int column, GridAlign align) {
    if (GridColumn* at = At(column)) at->align = align;
}

void GridColumns::SetLocked(int column, bool locked) {
    if (GridColumn* at = At(column)) at->locked = locked;
}

void GridColumns::SetVisible(int column, bool visible) {
    GridColumn* at = At(column);
    if (at == nullptr || at->visible == visible) return;
    at->visible = visible;
    if (visible) {
        shown_.push_back(column);
    } else {
        std::erase(shown_, column);
    }
    Layout();
}

int GridColumns::AtPosition(int position) const {
    return position >= 0 && position < ShownCount() ? shown_[static_cast<std::size_t>(position)] : -1;
}

int GridColumns::Position(int column) const {
    const auto found = std::find(shown_.begin(), shown_.end(), column);
    return found == shown_.end() ? -1 : static_cast<int>(found - shown_.begin());
}

void GridColumns::Move(int column, int position) {
    const int from = Position(column);
    if (from < 0) return;
    shown_.erase(shown_.begin() + from);
    shown_.insert(shown_.begin() + std::clamp(position, 0, ShownCount()), column);
    Layout();
}

int GridColumns::DragTarget(int column, int position) const {
    const int from = Position(column);
    if (from < 0 || (*this)[column].locked) return from;
    const int to = std::clamp(position, 0, ShownCount() - 1), step = to < from ? -1 : 1;
    int at = from;
    while (at != to && !(*this)[AtPosition(at + step)].locked)
        at += step;
    return at;
}

std::vector<std::int32_t> GridColumns::OrderArray() const {
    std::vector<std::int32_t> order(columns_.size(), -1);
    for (int position = 0; position < ShownCount(); ++position) {
        order[static_cast<std::size_t>(AtPosition(position))] = position;
    }
    return order;
}

void GridColumns::SetOrderArray(std::span<const std::int32_t> order) {
    shown_.clear();
    for (int column = 0; column < Count(); ++column) {
        const bool visible =
            static_cast<std::size_t>(column) < order.size() && order[static_cast<std::size_t>(column)] >= 0;
        columns_[static_cast<std::size_t>(column)].visible = visible;
        if (visible) shown_.push_back(column);
    }
    std::stable_sort(shown_.begin(), shown_.end(), [&](int a, int b) {
        return order[static_cast<std::size_t>(a)] < order[static_cast<std::size_t>(b)];
    });
    Layout();
}

void GridColumns::SetDpi(int dpi) {
    dpi_ = std::max(dpi, 1);
    Layout();
}

void GridColumns::SetFrozen(int count) {
    frozen_ = std::max(count, 0);
    Layout();
}

void GridColumns::SetFrozenRoom(int pixels) {
    if (pixels == frozenRoom_) return;
    frozenRoom_ = pixels;
    Layout();
}

int GridColumns::Left(int position) const {
    return lefts_[static_cast<std::size_t>(std::clamp(position, 0, ShownCount()))];
}

void GridColumns::SetPixelWidth(int position, int pixels) {
    SetWidth(AtPosition(position), std::max(Unscale(pixels, dpi_), kMinDraggedWidth));
}

int GridColumns::PositionAt(int x) const {
    if (x < 0 || x >= TotalWidth()) return -1;
    return static_cast<int>(std::upper_bound(lefts_.begin(), lefts_.end(), x) - lefts_.begin()) - 1;
}

void GridColumns::Layout() {
    lefts_.assign(1, 0);
    for (const int column : shown_) {
        lefts_.push_back(lefts_.back() + Scale(columns_[static_cast<std::size_t>(column)].width, dpi_));
    }
    frozenFits_ = std::min(frozen_, ShownCount());
    while (frozenFits_ > 0 && lefts_[static_cast<std::size_t>(frozenFits_)] > frozenRoom_)
        --frozenFits_;
}

}  // namespace Dravel
