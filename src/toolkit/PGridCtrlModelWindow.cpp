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

void CKRVPGridCtrl::SetColumnAlign(int column, GridAlign align) {
    model_.Columns().SetAlign(column, align);
    ModelChanged();
}

void CKRVPGridCtrl::SetColumnVisible(int column, bool visible) {
    model_.Columns().SetVisible(column, visible);
    ModelChanged();
    ClearHiddenFilters();
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
    ClearHiddenFilters();
}

void CKRVPGridCtrl::FreezeColumns(int count) {
    model_.Columns().SetFrozen(std::min(count, kMaxGridFrozen));
    ModelChanged();
}

void CKRVPGridCtrl::FitColumns() {
    BeginUpdate();
    for (int column = 0; column < Columns().Count(); ++column)
        if (!Columns()[column].locked) FitColumn(column);
    EndUpdate();
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

void CKRVPGridCtrl::SetSortColumn(int column, bool ascending, bool multiple) {
    if (column < 0 || column >= Columns().Count()) return;
    model_.Sort().Set(column, ascending, multiple);
    Redraw();
}

void CKRVPGridCtrl::ClearSort() {
    model_.Sort().Clear();
    Redraw();
}

void CKRVPGridCtrl::SwitchMultipleSort() {
    multipleSort_ = !multipleSort_;
    const auto& keys = model_.Sort().Keys();
    if (multipleSort_ || keys.size() < 2) return;
    const GridSortKey first = keys.front();
    model_.Sort().Set(first.column, first.ascending, false);
    Redraw();
    OnSortChanged();
}

void CKRVPGridCtrl::GroupBy(int column, bool group) {
    if (column < 0 || column >= Columns().Count()) return;
    if (group == (model_.Groups().Position(column) >= 0)) return;
    if (group) {
        model_.Groups().Add(column);
    } else {
        model_.Groups().Remove(column);
    }
    ModelChanged();
    OnGroupsChanged();
}

void CKRVPGridCtrl::EnableFilterBar(std::string_view hint, std::string_view gridName) {
    model_.Filter().SetHint(hint);
    filterName_ = gridName;
    ShowFilterBar(true);
}

void CKRVPGridCtrl::DisableFilterBar() {
    ShowFilterBar(false);
}

void CKRVPGridCtrl::ShowFilterBar(bool show) {
    if (show == FilterBarShown()) return;
    model_.Filter().Show(true);  // a text counts only while the bar is shown
    bool filters = false;
    for (int column = 0; column < Columns().Count(); ++column)
        filters = filters || model_.Filter().Active(column);
    model_.Filter().Show(show);
    UpdateMetrics();
    if (filters) OnFilterChanged(-1);
}

void CKRVPGridCtrl::SetFilterText(int column, std::string_view text) {
    if (column >= Columns().Count() || !model_.Filter().Set(column, text)) return;
    state_->filter.ShowText(column);
    OnFilterChanged(column);
}

void CKRVPGridCtrl::FocusFilter(int column) {
    state_->filter.Focus(column);
}

// A filter whose field cannot be seen would hide rows without a visible reason.
void CKRVPGridCtrl::ClearHiddenFilters() {
    for (int column = 0; column < Columns().Count(); ++column)
        if (!Columns()[column].visible) SetFilterText(column, {});
}

void CKRVPGridCtrl::ShowRowLines(bool show) {
    rowLines_ = show;
    Redraw();
}

bool CKRVPGridCtrl::EditCell(std::uint32_t row, int column) {
    if (!EndEdit(true) || window_ == nullptr) return false;
    SetCurrent(row, column);
    return state_->editor.Open(0);
}

bool CKRVPGridCtrl::EndEdit(bool commit) {
    return state_->editor.Close(commit);
}

bool CKRVPGridCtrl::EditEndsByKey() const {
    return state_->editor.EndsByKey();
}

bool CKRVPGridCtrl::Editing() const {
    return state_->editor.Active();
}

void CKRVPGridCtrl::SetCurrent(std::uint32_t row, int column) {
    // The editor stands over the current cell.
    if ((row != CurrentRow() || column != CurrentColumn()) && !EndEdit(true)) return;
    model_.SetCurrent(row, column);
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
    const bool edited = CurrentRow() >= at && CurrentRow() - at < count;
    model_.RowsRemoved(at, count);
    if (edited) state_->editor.Drop();  // gives up the focus: who hears of it must find the rows in step
    ModelChanged();
}

void CKRVPGridCtrl::RowsSwapped(std::uint32_t a, std::uint32_t b) {
    model_.RowsSwapped(a, b);
    ModelChanged();
}

void CKRVPGridCtrl::RowsReordered(std::uint32_t count,
                                  const std::function<std::uint32_t(std::uint32_t)>& newRow) {
    const bool lost = CurrentRow() == kNoRow || newRow(CurrentRow()) >= count;
    model_.RowsReordered(count, newRow);
    if (lost) state_->editor.Drop();
    ModelChanged();
}

void CKRVPGridCtrl::RowsReset() {
    model_.RowsReset(source_ == nullptr ? 0 : source_->RowCount());
    state_->editor.Drop();
    ModelChanged();
}

void CKRVPGridCtrl::SetAccelerators(std::span<const GridAccelerator> table) {
    accelerators_.assign(table.begin(), table.end());
}
