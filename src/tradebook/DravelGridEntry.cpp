// Typing trades in the grid: the drafts among its rows, and what the ends of edits do to them.
#include "tradebook/DravelGrid.h"
#include "tradebook/TradeColumns.h"

using namespace Dravel;

namespace {

constexpr std::uint32_t kDeleteKey = 0x2E, kEscapeKey = 0x1B;  // virtual key codes

// Contract cells, the side and the product are chosen from lists.
constexpr bool HasChoices(int column) {
    return (column >= column::Exchange && column <= column::StrikePrice) || column == column::Side ||
           column == column::ProductType;
}

}  // namespace

const TradeDraft* CDravelGrid::DraftAt(std::uint32_t row) const {
    if (row < drafts_.NewCount()) return &drafts_.NewAt(row);
    const TradeItem item = ItemAt(row);
    return item == kNoItem ? nullptr : drafts_.Over(item);
}

std::uint32_t CDravelGrid::RowOf(const TradeDraft& draft) const {
    return draft.New() ? drafts_.RowOf(draft) : RowOf(draft.item);
}

void CDravelGrid::AddDraft() {
    const std::uint32_t id = drafts_.AddOnTop().id;
    RowsInserted(0, 1);
    GoTo(id, column::Exchange);
    if (Holds(id)) EditCell(RowOf(*drafts_.Find(id)), column::Exchange);
}

bool CDravelGrid::RemoveCurrentDraft() {
    const TradeDraft* const draft = DraftAt(CurrentRow());
    if (draft) RemoveDraft(*draft);
    return draft != nullptr;
}

void CDravelGrid::RemoveDraft(const TradeDraft& draft) {
    const std::uint32_t row = RowOf(draft);
    const bool fresh = draft.New();
    if (journal_) journal_->DraftGone(draft.id);
    drafts_.Remove(draft);
    if (fresh) {
        CVELTSGridCtrl::RowsRemoved(row, 1);
    } else if (row != kNoRow) {
        RedrawRow(row);
    }
    StatusStale();
}

// Drafts over trades that went go with them.
void CDravelGrid::RowsRemoved(std::span<const std::uint32_t> rows, std::span<const TradeItem> items) {
    for (const TradeItem item : items) {
        if (drafts_.Empty()) break;
        const TradeDraft* const draft = drafts_.Over(item);
        if (!draft) continue;
        if (journal_) journal_->DraftGone(draft->id);
        drafts_.Remove(*draft);
    }
    rows_.RowsRemoved(rows, items);
    StatusStale();
}

// As Enter would; a text that is refused is let go.
void CDravelGrid::EndOpenEdit() {
    if (!EndEdit(true)) EndEdit(false);
}

bool CDravelGrid::LeaveCheck() {
    spoken_ = false;
    EndOpenEdit();
    return !spoken_;
}

bool CDravelGrid::OnBeginEdit(std::uint32_t row, int column, std::string&, GridEditKind& kind) {
    if (!HasCells(row)) return false;
    if (!kTradeColumns[static_cast<std::size_t>(column)].editable || Refused(BookNeed::Change)) return false;
    kind = HasChoices(column) ? GridEditKind::Choice : GridEditKind::Text;
    askedAbout_.clear();
    if (!saidStays_) Say({});
    return true;
}

void CDravelGrid::OnEditChoices(std::uint32_t row, int column, std::string_view typed,
                                std::vector<std::string>& choices) {
    TradeDraft bare;
    bare.item = ItemAt(row);
    const TradeDraft* const draft = DraftAt(row);
    entry_.Choices(draft ? *draft : bare, column, typed, choices);
}

bool CDravelGrid::OnEndEdit(std::uint32_t row, int column, const std::string& text) {
    if (!HasCells(row)) return true;
    const bool fresh = row < drafts_.NewCount();
    const TradeItem item = ItemAt(row);
    TradeDraft& draft = fresh ? drafts_.NewAt(row) : drafts_.LayOver(item);
    const std::uint32_t id = draft.id;
    const EditEnding ending = !EditEndsByKey()      ? EditEnding::Left
                              : text == askedAbout_ ? EditEnding::KeyAgain
                                                    : EditEnding::Key;
    askedAbout_.clear();
    Say({});
    const EditEnd end = entry_.EndEdit(draft, column, text, ending, *this);
    committed_ = end == EditEnd::Committed;
    spoken_ = end == EditEnd::Spoken;
    // A draft in which nothing was set is none.
    if (const TradeDraft* const left = drafts_.Find(id); left && !left->New() && left->set.none())
        RemoveDraft(*left);
    if (end == EditEnd::Refused && said_.empty()) Say('"' + text + "\" is not one of the choices");
    if (end == EditEnd::Asked) askedAbout_ = text;
    saidStays_ = end == EditEnd::GivenBack;
    return end != EditEnd::Refused && end != EditEnd::Asked;
}

void CDravelGrid::Say(std::string sentence) {
    said_ = std::move(sentence);
    saidStays_ = false;
    gateRefused_ = false;
    StatusStale();
}

// Enter goes to what is to be filled next; every other way out of a cell is the spreadsheet's.
GridNext CDravelGrid::OnNextCell(GridEditMove move, std::uint32_t& row, int& column) {
    if (committed_ || spoken_) return GridNext::Stay;
    const TradeDraft* const draft = DraftAt(row);
    if (move != GridEditMove::Down || !draft) return GridNext::Neighbour;
    const int next = entry_.NextColumn(*draft, column);
    if (next < 0) return GridNext::Neighbour;
    ShowColumn(next);
    column = next;
    return GridNext::Cell;
}

bool CDravelGrid::OnKeyDown(std::uint32_t key, GridModifierKeys modifiers, bool) {
    if (key == kEscapeKey && modifiers == GridModifierKeys{}) return RemoveCurrentDraft();
    return MoveKey(key, modifiers);
}

bool CDravelGrid::OnKeyUp(std::uint32_t key, bool pressed) {
    if (key != kDeleteKey) return false;
    if (pressed) OnCommand(command::DeleteTrades);
    return true;
}

std::string CDravelGrid::EntryHint() const {
    if (!said_.empty()) return said_;
    const TradeDraft* const draft = DraftAt(CurrentRow());
    return draft ? entry_.Missing(*draft) : std::string();
}

void CDravelGrid::ShowColumn(int column) {
    if (Columns().Position(column) < 0) SetColumnVisible(column, true);
}

void CDravelGrid::RestoreDrafts(const std::map<std::uint32_t, DraftTexts>& drafts, std::uint32_t lastID) {
    drafts_.Clear();
    for (const auto& [id, texts] : drafts)
        drafts_.Restore(texts, book_);
    drafts_.GoOnBehind(lastID);
    CVELTSGridCtrl::RowsReset();
    StatusStale();
}

void CDravelGrid::DraftsToJournal() const {
    if (journal_)
        drafts_.ForEach([this](const TradeDraft& draft) { journal_->DraftChanged(TextsOf(draft, book_)); });
}

void CDravelGrid::DraftChanged(const TradeDraft& draft) {
    if (journal_) journal_->DraftChanged(TextsOf(draft, book_));
    if (const std::uint32_t row = RowOf(draft); row != kNoRow) RedrawRow(row);
}

// The current cell goes with the trade, wherever sorting puts it.
void CDravelGrid::DraftEntered(TradeDraft& draft, TradeItem item) {
    const int column = CurrentColumn();
    const bool current = DraftAt(CurrentRow()) == &draft;
    RemoveDraft(draft);
    const std::uint32_t row = RowOf(item);
    if (current && row != kNoRow) SetCurrent(row, column);
}

bool CDravelGrid::Holds(std::uint32_t draftID) const {
    return Window() && drafts_.Find(draftID);
}

// The terminal hears of the keyboard and may send trades at once: the row is looked for afterwards.
void CDravelGrid::GoTo(std::uint32_t draftID, int column) {
    if (!Holds(draftID)) return;
    ShowColumn(column);
    TakeKeyboard();
    const std::uint32_t row = Holds(draftID) ? RowOf(*drafts_.Find(draftID)) : kNoRow;
    if (row != kNoRow) SetCurrent(row, column);
}
