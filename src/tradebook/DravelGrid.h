// The grid of the trade book: one row a trade, the newest on top.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "records/BookJournal.h"
#include "toolkit/PropertyListCtrl.h"
#include "tradebook/BarContext.h"
#include "tradebook/BookGate.h"
#include "tradebook/GridCommands.h"
#include "tradebook/GridProperties.h"
#include "tradebook/PriceDivisors.h"
#include "tradebook/TradeBook.h"
#include "tradebook/TradeRows.h"
#include "tradebook/base/VELTSGridCtrl.h"

namespace Dravel {

// The settings key of the grid's properties and font.
inline constexpr char kGridKey[] = "TradeGrid";
// The name of its column profile.
inline constexpr char kGridProfile[] = "Dravel";

}  // namespace Dravel

// User-interface thread. Shows the book given, which outlives it; nothing of a trade is stored here.
class CDravelGrid final : public CVELTSGridCtrl,
                          private Dravel::IGridSource,
                          private Dravel::IBookObserver,
                          private Dravel::IRowDisplay,
                          private Dravel::IDraftView {
 public:
    // `gate` outlives the grid too.
    CDravelGrid(const Dravel::BarContext& context, Dravel::TradeBook& book, const Dravel::IBookGate& gate);
    ~CDravelGrid() override;

    // Takes the properties out of the settings and applies them. When trades are reported at all ("Trade For
    // Greek Analysis Only" off or missing), the whole book is reported.
    void LoadProperties(std::string_view key);
    // The look alone: nothing is reported, and nothing is changed about what will be.
    void LoadLook(std::string_view key);
    // Puts them, with the grid's font, into the settings; the file is the caller's.
    void SaveProperties(std::string_view key);
    // Writes the layout of the columns; a failure is logged.
    void SaveLayout();
    const Dravel::GridProperties& Properties() const { return properties_; }
    // The current row when it is selected, else the first selected one; heads of groups are none. kNoRow
    // without a selection.
    std::uint32_t SelectedRow() const;
    // What a cell shows: also what was typed there and is not in the book yet.
    std::string Cell(std::uint32_t row, int column) const;
    // Called after rows, selection or the changed flag may have changed; empty: nobody listens.
    void SetStatusListener(std::function<void()> listener) { statusListener_ = std::move(listener); }
    // The trades of the selected rows, from the top one down; heads of groups are none.
    std::vector<Dravel::TradeItem> SelectedItems() const override;
    // Ends an open edit as Enter would. False: validation has spoken, and the grid is not to be left.
    bool LeaveCheck();
    // What the user is to be told of the row that is being typed; empty: nothing.
    std::string EntryHint() const;
    // Rows that are being typed, also over trades of the book.
    std::uint32_t RowsBeingTyped() const { return drafts_.Count(); }

    // The rows being typed of an earlier run; those that stand there go.
    void RestoreDrafts(const std::map<std::uint32_t, Dravel::DraftTexts>& drafts, std::uint32_t lastID);
    // Who is told of rows being typed; nullptr: nobody.
    void SetJournal(Dravel::BookJournal* journal) { journal_ = journal; }
    // Tells it all of them.
    void DraftsToJournal() const;

    // What the gate says is another thing now.
    void GateChanged();

    // Trades that the filter lets pass.
    std::uint32_t ShownTrades() const { return rows_.ShownTrades(); }
    // Puts the rows into the order and selection of rows that the model's sort marks, groups and filter texts
    // say. The grid calls it when the user changed them; whoever else does calls it afterwards.
    void ArrangeRows();

 private:
    bool OnCreate() override;
    bool OnCommand(std::uint32_t id) override;
    void OnHeaderMenu(int column, Dravel::GridMenu& menu) override;
    void OnContextMenu(int x, int y, const Dravel::GridHit& hit) override;
    void OnFocus(bool gained) override;
    bool OnMessage(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam,
                   std::intptr_t& result) override;
    void AcceptFiles();
    void Import(const std::filesystem::path& file);
    void OnFrozenChanged(int count) override { properties_.columnFreeze = count; }
    Dravel::IUser* User() override { return &user_; }
    const char* GridName() const override { return Dravel::kGridKey; }

    // The rows (DravelGridRows.cpp)
    std::uint32_t RowCount() const override { return drafts_.NewCount() + rows_.RowCount(); }
    void CellText(std::uint32_t row, int column, std::string& text) const override;
    Dravel::GridRowStyle RowStyle(std::uint32_t row) const override;
    Dravel::GridGroupHead GroupHead(std::uint32_t row) const override {
        return row < drafts_.NewCount() ? Dravel::GridGroupHead{} : rows_.Head(row - drafts_.NewCount());
    }
    void GroupText(std::uint32_t row, std::string& text) const override;
    bool IsItemFilteredByFilterBar(std::uint32_t item, int column, std::string_view text) const override;
    void OnSortChanged() override { ArrangeRows(); }
    void OnFilterChanged(int) override { ArrangeRows(); }
    void OnGroupsChanged() override { ArrangeRows(); }
    void OnGroupToggled(std::uint32_t row) override { rows_.Toggle(row - drafts_.NewCount()); }
    bool MoveKey(std::uint32_t key, Dravel::GridModifierKeys modifiers);
    bool MoveCurrentRow(bool up);
    // The trade in a row of the grid; kNoItem, nullptr: no trade stands there.
    Dravel::TradeItem ItemAt(std::uint32_t row) const;
    const TradeRecord* TradeAt(std::uint32_t row) const;
    bool HasCells(std::uint32_t row) const;  // a trade or a row that is being typed, and no group's head
    std::uint32_t RowOf(Dravel::TradeItem item) const;  // kNoRow: not shown

    // Typing (DravelGridEntry.cpp)
    bool OnKeyDown(std::uint32_t key, Dravel::GridModifierKeys modifiers, bool repeated) override;
    bool OnKeyUp(std::uint32_t key, bool pressed) override;
    bool OnBeginEdit(std::uint32_t row, int column, std::string& text, Dravel::GridEditKind& kind) override;
    void OnEditChoices(std::uint32_t row, int column, std::string_view typed,
                       std::vector<std::string>& choices) override;
    bool OnEndEdit(std::uint32_t row, int column, const std::string& text) override;
    void OnCancelEdit(std::uint32_t, int) override { Say({}); }
    Dravel::GridNext OnNextCell(Dravel::GridEditMove move, std::uint32_t& row, int& column) override;
    const Dravel::TradeDraft* DraftAt(std::uint32_t row) const;  // nullptr: nobody types there
    std::uint32_t RowOf(const Dravel::TradeDraft& draft) const;
    void AddDraft();
    void RemoveDraft(const Dravel::TradeDraft& draft);
    void EndOpenEdit();
    // True: the book is not to be had for that now, and the status line says why.
    bool Refused(Dravel::BookNeed need);

    void ShowColumn(int column) override;
    void DraftChanged(const Dravel::TradeDraft& draft) override;
    void Say(std::string sentence) override;
    void DraftEntered(Dravel::TradeDraft& draft, Dravel::TradeItem item) override;
    void GoTo(std::uint32_t draftID, int column) override;
    bool Holds(std::uint32_t draftID) const override;
    bool HasCurrentCell() const override { return Window() && CurrentRow() != Dravel::kNoRow; }
    bool RemoveCurrentDraft() override;
    void TakeKeyboard() override;

    void RowAddedOnTop() override;
    void RowsReset() override {
        rows_.RowsReset();
        StatusStale();
    }
    void RowEdited(Dravel::TradeItem item) override {
        rows_.RowEdited(item);
        StatusStale();
    }
    void RowsRemoved(std::span<const std::uint32_t> rows, std::span<const Dravel::TradeItem> items) override;
    void RowMoved(std::uint32_t from, std::uint32_t to) override { rows_.RowMoved(from, to); }
    void ChangedFlagSet(bool) override { StatusStale(); }
    void OnSelectionChanged() override;
    void StatusStale() const {
        if (statusListener_ && batches_ == 0) statusListener_();
    }
    void BatchBegins() override {
        BeginUpdate();
        ++batches_;
    }
    void BatchEnds() override {
        EndUpdate();
        if (--batches_ == 0) StatusStale();
    }

    // The rows of the book stand below those that are being typed.
    void Inserted(std::uint32_t at, std::uint32_t count) override {
        RowsInserted(drafts_.NewCount() + at, count);
    }
    void Removed(std::uint32_t at, std::uint32_t count) override {
        CVELTSGridCtrl::RowsRemoved(drafts_.NewCount() + at, count);
    }
    void Swapped(std::uint32_t a, std::uint32_t b) override {
        RowsSwapped(drafts_.NewCount() + a, drafts_.NewCount() + b);
    }
    void Reordered(std::uint32_t count, const std::function<std::uint32_t(std::uint32_t)>& newRow) override;
    void Reset() override { CVELTSGridCtrl::RowsReset(); }
    void Changed(std::uint32_t row) override { RedrawRow(drafts_.NewCount() + row); }
    bool Hides(const Dravel::ColumnFilter& filter, Dravel::TradeItem item) const override {
        return IsItemFilteredByFilterBar(item, filter.Column(), filter.Text());
    }
    // The commands about the look of the grid and its export. False: none of them.
    bool LayoutCommand(std::uint32_t id);
    void ExportCsv();
    bool KnowDivisors();
    void WriteExport(const std::filesystem::path& path);
    void ChooseFields();
    void EditProperties();
    void PropertyChanged(const Dravel::PropertyChange& change);
    void SetAnalysisOnly(bool on);

    void InsertColumns();
    void ApplyFont();
    void ApplyProperties();
    void AnnounceGrid();

    Dravel::BarContext context_;
    Dravel::IHost& host_;
    Dravel::IUser& user_;
    Dravel::TradeBook& book_;
    const Dravel::IBookGate& gate_;
    Dravel::IEntry& entry_;
    CVELTPXMLSettings& settings_;
    Dravel::GridProperties properties_;
    Dravel::DraftSheet drafts_;
    Dravel::BookJournal* journal_ = nullptr;
    Dravel::TradeRows rows_{book_, *this};
    int batches_ = 0;  // that run: the status line waits for their end
    bool firstRowAdded_ = false;
    Dravel::TradeItem selectedAtFirst_ = Dravel::kNoItem;  // when the first row was added
    std::function<void()> statusListener_;
    Dravel::PriceDivisors divisors_;
    std::string said_;                 // about the text that was typed last
    bool saidStays_ = false;           // also when another cell opens: nobody looked at the status line yet
    std::string askedAbout_;           // the text of the open cell that would be taken only in part
    bool committed_ = false;           // the last edit brought its row into the book
    bool spoken_ = false;              // validation spoke at the end of the last edit
    bool gateRefused_ = false;         // what was said is the refusal of the gate
    Dravel::FileStatus divisorFault_;  // why they are not known
};
