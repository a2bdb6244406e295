// Commands of the grid's window (WM_COMMAND); context menu and keys send the same ones.
#pragma once

#include <cstdint>

namespace Dravel::command {

inline constexpr std::uint16_t AddTrade = 40001, DeleteTrades = 40002, Save = 40003, Import = 40004,
                               ExportCsv = 40005, CopyHtml = 40006, FilterBar = 40007, FieldChooser = 40008,
                               Properties = 40009, ClearSelection = 40010, SaveLayout = 40011,
                               MultipleSort = 40012, Copy = 40013, ImportReport = 40014;
// All that there ever will be lie between these.
inline constexpr std::uint16_t First = 40001, Last = 40099;

}  // namespace Dravel::command
