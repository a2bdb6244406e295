// A grid's rows as HTML, and the clipboard's wrapping for it.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "toolkit/GridColumns.h"
#include "toolkit/GridSelection.h"
#include "toolkit/GridSource.h"

namespace Dravel {

// Why a selection may not be copied as HTML, in words for the user; null when it may. A page is built as a
// whole, so its size has a limit.
const char* RefusalToCopy(const GridSelection& rows);

// A table of the columns given: a row of headers, then the rows; heads of groups are left out. Everything is
// escaped, and what is not a plain number is marked as text, so that a spreadsheet takes neither a long
// identifier for a number nor a cell for a formula. ANSI code page, like the source.
std::string RowsAsHtml(const IGridSource& source, const GridSelection& rows, const GridColumns& columns,
                       std::span<const int> shown);

// What "HTML Format" of the clipboard holds: a description with byte offsets, then a page round the fragment.
// UTF-8. The offsets are ten digits wide, so that they do not change their own places.
std::string ClipboardHtml(std::string_view fragment);

}  // namespace Dravel
