// Where a grid takes its rows from. The grid stores nothing per cell: it asks when it draws.
#pragma once

#include <cstdint>
#include <string>

namespace Dravel {

// Windows colour values (red in the low byte); kDefaultColour leaves the system's.
inline constexpr std::uint32_t kDefaultColour = 0xFFFFFFFF;
struct GridRowStyle {
    std::uint32_t background = kDefaultColour;
    std::uint32_t text = kDefaultColour;
};

// What a row is when the rows are grouped: a head stands above the rows of its group.
struct GridGroupHead {
    int level = -1;  // 0 outermost; -1: an ordinary row
    bool open = true;
};

// Asked on the user-interface thread only. Row 0 is the top row.
class IGridSource {
 public:
    virtual ~IGridSource() = default;
    virtual std::uint32_t RowCount() const = 0;
    // Display text of a cell in the ANSI code page, into `text` (emptied first). `row` below RowCount().
    virtual void CellText(std::uint32_t row, int column, std::string& text) const = 0;
    virtual GridRowStyle RowStyle(std::uint32_t row) const = 0;
    // What a cell has of its own, above the row's; a selected row shows the selection's colours.
    virtual GridRowStyle CellStyle(std::uint32_t /*row*/, int /*column*/) const { return {}; }
    virtual GridGroupHead GroupHead(std::uint32_t /*row*/) const { return {}; }
    // What a group's head says, across all columns. Into `text` (emptied first).
    virtual void GroupText(std::uint32_t /*row*/, std::string& text) const { text.clear(); }
};

}  // namespace Dravel
