// The grid's rows: how the trades stand in them, and moving them by the keyboard.
#include <algorithm>

#include "formatset/NumberText.h"
#include "tradebook/DravelGrid.h"
#include "tradebook/TradeColumns.h"

using namespace Dravel;

namespace {

constexpr std::uint32_t kUpKey = 0x26, kDownKey = 0x28;  // virtual key codes

// A row that is being typed.
constexpr GridRowStyle kDraftStyle{.background = 0xD8FFFF, .text = 0x000000};

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

// The filter bar's own texts are read once, when they change.
bool CDravelGrid::IsItemFilteredByFilterBar(std::uint32_t item, int column, std::string_view text) const {
    const auto& filters = rows_.Arrangement().filters;
    const auto known = std::ranges::find_if(filters, [&](const ColumnFilter& filter) {
        return filter.Column() == column && filter.Text() == text;
    });
    const TradeRecord& record = book_.Record(item);
    return !(known == filters.end() ? ColumnFilter(column, text).Passes(record) : known->Passes(record));
}

TradeItem CDravelGrid::ItemAt(std::uint32_t row) const {
    const std::uint32_t drafts = drafts_.NewCount();
    return row < drafts || row >= RowCount() ? kNoItem : rows_.ItemAt(row - drafts);
}

bool CDravelGrid::HasCells(std::uint32_t row) const {
    return row < drafts_.NewCount() || ItemAt(row) != kNoItem;
}

const TradeRecord* CDravelGrid::TradeAt(std::uint32_t row) const {
    const TradeItem item = ItemAt(row);
    return item == kNoItem ? nullptr : &book_.Record(item);
}

std::uint32_t CDravelGrid::RowOf(TradeItem item) const {
    const std::uint32_t row = rows_.RowOf(item);
    return row == kNoRow ? kNoRow : drafts_.NewCount() + row;
}

void CDravelGrid::CellText(std::uint32_t row, int column, std::string& text) const {
    text.clear();
    if (!drafts_.Empty()) {
        if (const TradeDraft* const draft = DraftAt(row)) return DraftCell(*draft, book_, column, text);
    }
    if (const TradeRecord* const trade = TradeAt(row)) Dravel::CellText(*trade, column, text);
}

GridRowStyle CDravelGrid::RowStyle(std::uint32_t row) const {
    if (!drafts_.Empty() && DraftAt(row)) return kDraftStyle;
    const TradeRecord* const trade = TradeAt(row);
    return trade ? properties_.StyleOf(*trade) : GridRowStyle{};
}

void CDravelGrid::Reordered(std::uint32_t count, const std::function<std::uint32_t(std::uint32_t)>& newRow) {
    const std::uint32_t drafts = drafts_.NewCount();
    RowsReordered(drafts + count, [&](std::uint32_t row) {
        if (row < drafts) return row;
        const std::uint32_t moved = newRow(row - drafts);
        return moved == kNoRow ? kNoRow : drafts + moved;
    });
}

// "Exchange: NSE (123)"
void CDravelGrid::GroupText(std::uint32_t row, std::string& text) const {
    text.clear();
    if (row < drafts_.NewCount()) return;
    const TradeRows::GroupFacts facts = rows_.Facts(row - drafts_.NewCount());
    if (facts.column < 0) return;
    std::string cell;
    Dravel::CellText(book_.Record(facts.sample), facts.column, cell);
    text.append(Columns()[facts.column].header).append(": ").append(cell).append(cell.empty() ? "(" : " (");
    AppendUnsigned(text, facts.trades);
    text += ')';
}

std::uint32_t CDravelGrid::SelectedRow() const {
    if (Selection().Contains(CurrentRow()) && HasCells(CurrentRow())) return CurrentRow();
    for (const GridRange& range : Selection().Ranges()) {
        for (std::uint32_t row = range.first; row <= range.last; ++row) {
            if (HasCells(row)) return row;
        }
    }
    return kNoRow;
}

std::string CDravelGrid::Cell(std::uint32_t row, int column) const {
    std::string text;
    CellText(row, column, text);
    return text;
}

std::vector<TradeItem> CDravelGrid::SelectedItems() const {
    std::vector<TradeItem> items;
    for (const GridRange& range : Selection().Ranges()) {
        for (std::uint32_t row = range.first; row <= range.last && row < RowCount(); ++row) {
            if (const TradeItem item = ItemAt(row); item != kNoItem) items.push_back(item);
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
        if (Selection().Contains(row) && TradeAt(row)) selectedAtFirst_ = ItemAt(row);
    }
    rows_.RowAddedOnTop();
    StatusStale();
    if (first && selectedAtFirst_ != kNoItem) {
        if (const std::uint32_t row = RowOf(selectedAtFirst_); row != kNoRow) AddSelection({row, row});
    }
    PaintWhenLate();
}

bool CDravelGrid::MoveKey(std::uint32_t key, GridModifierKeys modifiers) {
    if (key != kUpKey && key != kDownKey) return false;
    if (!modifiers.ctrl || modifiers.shift) return false;
    return MoveCurrentRow(key == kUpKey);
}

// Past rows that the filter hides. The two refusals differ in their blanks: deliberate.
bool CDravelGrid::MoveCurrentRow(bool up) {
    const std::uint32_t row = CurrentRow();
    const std::uint32_t top = drafts_.NewCount();
    if (row < top || row >= RowCount() || Refused(BookNeed::Change)) return true;
    if (IsSorted() || Model().Groups().Grouped()) {
        user_.Box(up ? "Please Remove Sorting Mode" : " Please Remove Sorting Mode ", "Market Watch",
                  Buttons::Ok, Icon::Warning);
        return true;
    }
    if (up ? row == top : row + 1 >= RowCount()) return true;
    const std::uint32_t to = up ? row - 1 : row + 1;
    book_.MoveRow(book_.RowOf(ItemAt(row)), book_.RowOf(ItemAt(to)));
    ScrollRows(up ? -1 : 1);
    SetCurrent(to, CurrentColumn());
    return true;
}
