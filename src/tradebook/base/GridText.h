// A grid's rows as text for the clipboard.
#pragma once

#include <span>
#include <string>

#include "toolkit/GridSelection.h"
#include "toolkit/GridSource.h"

namespace Dravel {

// Cells of the columns given, parted by tabs, each row ended by CR LF; heads of groups are left out. A tab or
// line end inside a cell becomes a blank: nobody who pastes could tell it from the end of the cell. ANSI code
// page.
std::string RowsAsText(const IGridSource& source, const GridSelection& rows, std::span<const int> columns);

}  // namespace Dravel
