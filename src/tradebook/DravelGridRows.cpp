// The grid's rows: how the trades stand in them, and moving them by the keyboard.
#include "formatset/NumberText.h"
#include "tradebook/DravelGrid.h"
#include "tradebook/TradeColumns.h"

using namespace Dravel;

namespace {

constexpr std::uint32_t kUpKey = 0x26, kDownKey = 0x28;  // virtual key codes

}  // namespace

void CDravelGrid::ArrangeRows() {
    RowArrangement arrangement{Model().Sort().Keys(), Model().Groups().Columns(), {}};
    const GridFilter& filter = Model().Filter();
    for (int column = 0; column < column::Count; ++column) {
        if (filter.Active(column)) arrangement.filters.emplace_back(column, filter.Text(column));
    }
    rows_.Arrange(std::move(arrangement));
    StatusStale();
}

bool CDravelGrid::IsItemFilteredByFilterBar(std::uint32_t item, int column, std::string_view text) const {
    return !ColumnFilter(column, text).Passes(book_.Record(item));
}

const TradeRecord* CDravelGrid::TradeAt(std::uint32_t row) const {
    if (row >= rows_.RowCount()) return nullptr;
    const TradeItem item = rows_.ItemAt(row);
    return item == kNoItem ? nullptr : &book_.Record(item);
}

void CDravelGrid::CellText(std::uint32_t row, int column, std::string& text) const {
    text.clear();
    if (const TradeRecord* trade = TradeAt(row)) Dravel::CellText(*trade, column, text);
}

GridRowStyle CDravelGrid::RowStyle(std::uint32_t row) const {
    const TradeRecord* const trade = TradeAt(row);
    return trade ? properties_.StyleOf(*trade) : GridRowStyle{};
}

// "Exchange: NSE (123)"
void CDravelGrid::GroupText(std::uint32_t row, std::string& text) const {
    text.clear();
    const TradeRows::GroupFacts facts = rows_.Facts(row);
    if (facts.column < 0) return;
    std::string cell;
    Dravel::CellText(book_.Record(facts.sample), facts.column, cell);
    text.append(Columns()[facts.column].header).append(": ").append(cell).append(cell.empty() ? "(" : " (");
    AppendUnsigned(text, facts.trades);
    text += ')';
}

const TradeRecord* CDravelGrid::SelectedTrade() const {
    if (Selection().Contains(CurrentRow())) {
        if (const TradeRecord* current = TradeAt(CurrentRow())) return current;
    }
    for (const GridRange& range : Selection().Ranges()) {
        for (std::uint32_t row = range.first; row <= range.last; ++row) {
            if (const TradeRecord* trade = TradeAt(row)) return trade;
        }
    }
    return nullptr;
}

std::vector<TradeItem> CDravelGrid::SelectedItems() const {
    std::vector<TradeItem> items;
    for (const GridRange& range : Selection().Ranges()) {
        for (std::uint32_t row = range.first; row <= range.last && row < rows_.RowCount(); ++row) {
            if (const TradeItem item = rows_.ItemAt(row); item != kNoItem) items.push_back(item);
        }
    }
    return items;
}

// The first row that is ever added leaves the trade selected that was.
void CDravelGrid::RowAddedOnTop() {
    const bool first = !firstRowAdded_;
    if (first) {
        firstRowAdded_ = true;
        const std::uint32_t row = CurrentRow();
        if (Selection().Contains(row) && TradeAt(row)) selectedAtFirst_ = rows_.ItemAt(row);
    }
    rows_.RowAddedOnTop();
    StatusStale();
    if (!first || selectedAtFirst_ == kNoItem) return;
    const std::uint32_t row = rows_.RowOf(selectedAtFirst_);
    if (row != kNoRow) AddSelection({row, row});
}

bool CDravelGrid::OnKeyDown(std::uint32_t key, GridModifierKeys modifiers, bool) {
    if (key != kUpKey && key != kDownKey) return false;
    if (!modifiers.ctrl || modifiers.shift) return false;
    return MoveCurrentRow(key == kUpKey);
}

// Past rows that the filter hides. The two refusals differ in their blanks: deliberate.
bool CDravelGrid::MoveCurrentRow(bool up) {
    const std::uint32_t row = CurrentRow();
    if (row >= rows_.RowCount()) return true;
    if (IsSorted() || Model().Groups().Grouped()) {
        user_.Box(up ? "Please Remove Sorting Mode" : " Please Remove Sorting Mode ", "Market Watch",
                  Buttons::Ok, Icon::Warning);
        return true;
    }
    if (up ? row == 0 : row + 1 >= rows_.RowCount()) return true;
    const std::uint32_t to = up ? row - 1 : row + 1;
    book_.MoveRow(book_.RowOf(rows_.ItemAt(row)), book_.RowOf(rows_.ItemAt(to)));
    ScrollRows(up ? -1 : 1);
    SetCurrent(to, CurrentColumn());
    return true;
}
