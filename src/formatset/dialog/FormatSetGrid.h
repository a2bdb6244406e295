// The grid in which a format set's rows are edited: one row for each column of a trade.
#pragma once

#include <array>
#include <bitset>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "formatset/FormatSet.h"
#include "tradebook/base/VELTSGridCtrl.h"

// User-interface thread. The rows stand in the order of a trade's columns, always; they are neither sorted
// nor filtered.
class CFormatSetGrid final : public CVELTSGridCtrl, private Dravel::IGridSource {
 public:
    using Rows = std::array<Dravel::FormatSetRow, Dravel::kMappedColumns>;

    // `titles` outlive the grid. Its columns are kept as the profile "FormatSet" under `dataFolder`.
    CFormatSetGrid(Dravel::IFiles& files, std::filesystem::path dataFolder, Dravel::ColumnTexts titles);
    ~CFormatSetGrid() override;

    const Rows& Content() const { return rows_; }
    // The highlights of a sample go.
    void SetContent(const Rows& rows);
    // Writes the names that the first line of a sample holds into the rows of their columns, and highlights
    // them.
    void TakeSample(std::string_view firstLine, Dravel::ColumnTexts keys);
    // Ends an open edit as Enter would; a text that is refused is let go.
    void EndOpenEdit();

    // Called with a text that a cell does not take; empty: it took one.
    std::function<void(const std::string& refused)> onEdit;

 private:
    bool OnCreate() override;
    bool OnCommand(std::uint32_t id) override;
    bool OnKeyDown(std::uint32_t key, Dravel::GridModifierKeys modifiers, bool repeated) override;
    bool OnBeginEdit(std::uint32_t row, int column, std::string& text, Dravel::GridEditKind& kind) override;
    void OnEditChoices(std::uint32_t row, int column, std::string_view typed,
                       std::vector<std::string>& choices) override;
    bool OnEndEdit(std::uint32_t row, int column, const std::string& text) override;
    void OnHeaderMenu(int column, Dravel::GridMenu& menu) override;
    void OnSortChanged() override { ClearSort(); }
    const char* GridName() const override;

    std::uint32_t RowCount() const override { return static_cast<std::uint32_t>(rows_.size()); }
    void CellText(std::uint32_t row, int column, std::string& text) const override;
    Dravel::GridRowStyle RowStyle(std::uint32_t) const override { return {}; }
    Dravel::GridRowStyle CellStyle(std::uint32_t row, int column) const override;

    Dravel::IFiles& files_;
    std::filesystem::path dataFolder_;
    Dravel::ColumnTexts titles_;
    Rows rows_;
    std::bitset<Dravel::kMappedColumns> sampled_;  // rows whose field name came from the last sample
};
