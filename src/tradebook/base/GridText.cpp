#include "tradebook/base/GridText.h"

#include <algorithm>

namespace Dravel {

static void AppendCell(std::string& text, std::string_view cell) {
    const std::size_t start = text.size();
    text += cell;
    const auto parts = [](char c) { return c == '\t' || c == '\r' || c == '\n' || c == '\0'; };
    std::replace_if(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), parts, ' ');
}

std::string RowsAsText(const IGridSource& source, const GridSelection& rows, std::span<const int> columns) {
    std::string text, cell;
    for (const GridRange& range : rows.Ranges()) {
        for (std::uint32_t row = range.first; row <= range.last && row < source.RowCount(); ++row) {
            if (source.GroupHead(row).level >= 0) continue;
            for (std::size_t i = 0; i < columns.size(); ++i) {
                if (i != 0) text += '\t';
                cell.clear();
                source.CellText(row, columns[i], cell);
                AppendCell(text, cell);
            }
            text += "\r\n";
        }
    }
    return text;
}

}  // namespace Dravel
