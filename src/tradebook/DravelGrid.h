// The grid of the trade book: one row a trade, the newest on top.
#pragma once

#include <functional>
#include <string>

#include "host/Host.h"
#include "tradebook/EntryPort.h"
#include "tradebook/GridProperties.h"
#include "tradebook/TradeBook.h"
#include "tradebook/base/VELTSGridCtrl.h"

namespace Dravel {

// Commands of the grid's window (WM_COMMAND); context menu and keys send the same ones.
namespace command {
inline constexpr std::uint16_t AddTrade = 40001, DeleteTrades = 40002, Save = 40003, Import = 40004,
                               ExportCsv = 40005, CopyHtml = 40006, FilterBar = 40007, FieldChooser = 40008,
                               Properties = 40009, ClearSelection = 40010, SaveLayout = 40011,
                               MultipleSort = 40012, Copy = 40013;
}  // namespace command

// The settings key of the grid's properties and font.
inline constexpr char kGridKey[] = "TradeGrid";

}  // namespace Dravel

// User-interface thread. Shows the book given, which outlives it; nothing of a trade is stored here.
class CDravelGrid final : public CVELTSGridCtrl, private Dravel::IGridSource, private Dravel::IBookObserver {
 public:
    CDravelGrid(Dravel::IHost& host, Dravel::TradeBook& book, Dravel::IEntry& entry, CKRVPRegistry& settings);
    ~CDravelGrid() override;

    // Takes the properties out of the settings and applies them. When trades are reported at all ("Trade For
    // Greek Analysis Only" off or missing), the whole book is reported.
    void LoadProperties(std::string_view key);
    const Dravel::GridProperties& Properties() const { return properties_; }
    // The trade of the current row when that is selected, else of the first selected row; nullptr without a
    // selection.
    const TradeRecord* SelectedTrade() const;
    // Called after rows, selection or the changed flag may have changed; empty: nobody listens.
    void SetStatusListener(std::function<void()> listener) { statusListener_ = std::move(listener); }

 private:
    bool OnCreate() override;
    bool OnCommand(std::uint32_t id) override;
    void OnContextMenu(int x, int y, const Dravel::GridHit& hit) override;
    void OnFocus(bool gained) override;

    std::uint32_t RowCount() const override { return book_.RowCount(); }
    void CellText(std::uint32_t row, int column, std::string& text) const override;
    Dravel::GridRowStyle RowStyle(std::uint32_t row) const override;

    void RowAddedOnTop() override {
        RowsInserted(0, 1);
        StatusStale();
    }
    void RowsReset() override {
        CVELTSGridCtrl::RowsReset();
        StatusStale();
    }
    void ChangedFlagSet(bool) override { StatusStale(); }
    void OnSelectionChanged() override { StatusStale(); }
    void StatusStale() const {
        if (statusListener_) statusListener_();
    }
    void BatchBegins() override { BeginUpdate(); }
    void BatchEnds() override { EndUpdate(); }

    void InsertColumns();
    void ApplyFont();
    void ApplyProperties();
    void AnnounceGrid();

    Dravel::IHost& host_;
    Dravel::TradeBook& book_;
    Dravel::IEntry& entry_;
    CKRVPRegistry& settings_;
    Dravel::GridProperties properties_;
    std::function<void()> statusListener_;
};
