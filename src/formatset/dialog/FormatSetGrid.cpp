#include "formatset/dialog/FormatSetGrid.h"

#include <algorithm>
#include <utility>

#include "formatset/CsvLine.h"

using namespace Dravel;

namespace {

constexpr char kName[] = "FormatSet";
constexpr std::uint32_t kClearSelection = 40010, kCopy = 40013;  // as in the book's grid
constexpr std::uint32_t kDeleteKey = 0x2E;                       // virtual key code
constexpr GridRowStyle kSampled{.background = 0xCEEFC6 /* RGB(198, 239, 206) */, .text = 0x000000};

enum : int { kVelts, kCustom, kDateFormat, kDefaultValue };

// The columns, with the text of a row that each shows; the first one's is the program's own.
struct SetColumn {
    const char *key, *title;
    int width;
    std::string FormatSetRow::*text;
};
constexpr SetColumn kColumns[] = {
    {"colVelts", "VELTS Field", 140, nullptr},
    {"colCustom", "Field Name/No", 180, &FormatSetRow::field},
    {"colDateFormat", "Format", 100, &FormatSetRow::format},
    {"colDefaultValue", "Default Value", 100, &FormatSetRow::defaultValue},
};

bool HasPatterns(std::uint32_t row, int column) {
    return row == kMappedExpiryDate && column == kDateFormat;
}

// What an edit of the cell may end with. A pattern that is in a file stays, wherever it came from.
bool Takes(std::uint32_t row, int column, std::string_view text, std::string_view before) {
    return !HasPatterns(row, column) || text.empty() || text == before ||
           std::find(kExpiryPatterns.begin(), kExpiryPatterns.end(), text) != kExpiryPatterns.end();
}

}  // namespace

CFormatSetGrid::CFormatSetGrid(IFiles& files, std::filesystem::path dataFolder, ColumnTexts titles)
    : files_(files), dataFolder_(std::move(dataFolder)), titles_(titles) {}

CFormatSetGrid::~CFormatSetGrid() {
    Destroy();
}

const char* CFormatSetGrid::GridName() const {
    return kName;
}

bool CFormatSetGrid::OnCreate() {
    EnableMarkSortColumn(false);
    LoadProfile(files_, dataFolder_, kName);
    for (const SetColumn& column : kColumns)
        AddColumn({.key = column.key, .header = column.title, .width = column.width});
    constexpr GridAccelerator kKeys[] = {{'C', {.ctrl = true}, kCopy}};
    SetAccelerators(kKeys);
    SetSource(this);
    RestoreColumnOrder();
    SetCurrent(0, kCustom);
    return true;
}

bool CFormatSetGrid::OnCommand(std::uint32_t id) {
    if (id == kCopy) CopySelection();
    if (id == kClearSelection) ClearSelection();
    return id == kCopy || id == kClearSelection;
}

// Delete empties the current cell.
bool CFormatSetGrid::OnKeyDown(std::uint32_t key, GridModifierKeys modifiers, bool) {
    if (key != kDeleteKey || !(modifiers == GridModifierKeys{})) return false;
    if (CurrentRow() < rows_.size() && CurrentColumn() > kVelts) OnEndEdit(CurrentRow(), CurrentColumn(), {});
    return true;
}

// What sorts, groups or hides would take the rows out of their order, or a column out of reach.
void CFormatSetGrid::OnHeaderMenu(int, GridMenu& menu) {
    std::erase_if(menu, [](const GridMenuEntry& entry) {
        return entry.command != static_cast<std::uint16_t>(GridHeaderCommand::BestFit) &&
               entry.command != static_cast<std::uint16_t>(GridHeaderCommand::FitAll);
    });
}

bool CFormatSetGrid::OnBeginEdit(std::uint32_t row, int column, std::string&, GridEditKind& kind) {
    if (column == kVelts) return false;
    kind = HasPatterns(row, column) ? GridEditKind::Choice : GridEditKind::Text;
    return true;
}

void CFormatSetGrid::OnEditChoices(std::uint32_t, int, std::string_view, std::vector<std::string>& choices) {
    choices.assign(kExpiryPatterns.begin(), kExpiryPatterns.end());
}

// A name with a blank at its end would match no header.
bool CFormatSetGrid::OnEndEdit(std::uint32_t row, int column, const std::string& text) {
    std::string& cell = rows_[row].*kColumns[column].text;
    const std::string_view entered = Trimmed(text);
    const bool taken = Takes(row, column, entered, cell);
    if (taken && cell != entered) {
        cell = entered;
        if (column == kCustom) sampled_.reset(row);
        RedrawRow(row);
    }
    if (onEdit) onEdit(taken ? std::string() : text);
    return taken;
}

void CFormatSetGrid::EndOpenEdit() {
    if (!EndEdit(true)) EndEdit(false);
}

void CFormatSetGrid::SetContent(const Rows& rows) {
    EndEdit(false);
    rows_ = rows;
    sampled_.reset();
    Redraw();
}

void CFormatSetGrid::TakeSample(std::string_view firstLine, ColumnTexts keys) {
    EndOpenEdit();
    sampled_ = ColumnsNamedIn(firstLine, keys);
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        if (sampled_[row]) rows_[row].field = keys[row];
    }
    ClearSelection();
    Redraw();
}

void CFormatSetGrid::CellText(std::uint32_t row, int column, std::string& text) const {
    text = column == kVelts ? std::string(titles_[row]) : rows_[row].*kColumns[column].text;
}

GridRowStyle CFormatSetGrid::CellStyle(std::uint32_t row, int column) const {
    return column == kCustom && sampled_[row] ? kSampled : GridRowStyle{};
}
