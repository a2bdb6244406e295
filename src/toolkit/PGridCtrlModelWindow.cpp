// The grid's operations: each changes the model, then brings the window after it.
#include "toolkit/win32/GridState.h"

using namespace Dravel;

void CKRVPGridCtrl::SetSource(const IGridSource* source) {
    source_ = source;
    RowsReset();
}

int CKRVPGridCtrl::InsertColumn(GridColumn column) {
    const int number = model_.Columns().Add(std::move(column));
    ModelChanged();
    return number;
}

void CKRVPGridCtrl::SetColumnHeader(int column, std::string_view header) {
    model_.Columns().SetHeader(column, header);
    ModelChanged();
}

void CKRVPGridCtrl::SetColumnWidth(int column, int width) {
    model_.Columns().SetWidth(column, width);
    ModelChanged();
}

void CKRVPGridCtrl::SetColumnAlign(int column, GridAlign align) {
    model_.Columns().SetAlign(column, align);
    ModelChanged();
}

void CKRVPGridCtrl::SetColumnVisible(int column, bool visible) {
    model_.Columns().SetVisible(column, visible);
    ModelChanged();
}

void CKRVPGridCtrl::SetColumnLocked(int column, bool locked) {
    model_.Columns().SetLocked(column, locked);
}

void CKRVPGridCtrl::MoveColumn(int column, int position) {
    model_.Columns().Move(column, position);
    ModelChanged();
}

void CKRVPGridCtrl::SetColumnOrder(std::span<const std::int32_t> order) {
    model_.Columns().SetOrderArray(order);
    ModelChanged();
}

void CKRVPGridCtrl::FreezeColumns(int count) {
    model_.Columns().SetFrozen(count);
    ModelChanged();
}

void CKRVPGridCtrl::EnableHeader(bool enable) {
    header_ = enable;
    UpdateMetrics();
}

void CKRVPGridCtrl::EnableRowHeader(bool enable, int width) {
    rowHeader_ = enable;
    rowHeaderWidth_ = width;
    UpdateMetrics();
}

void CKRVPGridCtrl::SetBandHeight(int pixels) {
    bandHeight_ = std::max(pixels, 0);
    UpdateMetrics();
}

void CKRVPGridCtrl::SetSortColumn(int column, bool ascending, bool multiple) {
    if (column < 0 || column >= Columns().Count()) return;
    model_.Sort().Set(column, ascending, multiple);
    Redraw();
}

void CKRVPGridCtrl::ClearSort() {
    model_.Sort().Clear();
    Redraw();
}

void CKRVPGridCtrl::ShowRowLines(bool show) {
    rowLines_ = show;
    Redraw();
}

void CKRVPGridCtrl::ShowColumnLines(bool show) {
    columnLines_ = show;
    Redraw();
}

void CKRVPGridCtrl::SetCurrent(std::uint32_t row, int column) {
    model_.SetCurrent(row, column);
    ModelChanged();
}

void CKRVPGridCtrl::SelectRows(GridRange range) {
    model_.Select(range);
    ModelChanged();
}

void CKRVPGridCtrl::AddSelection(GridRange range) {
    model_.AddSelection(range);
    ModelChanged();
}

void CKRVPGridCtrl::SelectAll() {
    model_.SelectAll();
    ModelChanged();
}

void CKRVPGridCtrl::ClearSelection() {
    model_.ClearSelection();
    ModelChanged();
}

void CKRVPGridCtrl::ScrollRows(std::int64_t rows) {
    model_.View().SetTopRow(model_.View().TopRow() + rows);
    ModelChanged();
}

void CKRVPGridCtrl::ScrollToRow(std::uint32_t row) {
    model_.View().SetTopRow(row);
    ModelChanged();
}

void CKRVPGridCtrl::EnsureVisible(std::uint32_t row, int column) {
    model_.View().EnsureRow(row);
    if (column >= 0) model_.View().EnsureColumn(column);
    ModelChanged();
}

void CKRVPGridCtrl::RowsInserted(std::uint32_t at, std::uint32_t count) {
    model_.RowsInserted(at, count);
    ModelChanged();
}

void CKRVPGridCtrl::RowsRemoved(std::uint32_t at, std::uint32_t count) {
    model_.RowsRemoved(at, count);
    ModelChanged();
}

void CKRVPGridCtrl::RowsSwapped(std::uint32_t a, std::uint32_t b) {
    model_.RowsSwapped(a, b);
    ModelChanged();
}

void CKRVPGridCtrl::RowsReordered(std::uint32_t count,
                                  const std::function<std::uint32_t(std::uint32_t)>& newRow) {
    model_.RowsReordered(count, newRow);
    ModelChanged();
}

void CKRVPGridCtrl::RowsReset() {
    model_.RowsReset(source_ == nullptr ? 0 : source_->RowCount());
    ModelChanged();
}

void CKRVPGridCtrl::SetAccelerators(std::span<const GridAccelerator> table) {
    accelerators_.assign(table.begin(), table.end());
}
