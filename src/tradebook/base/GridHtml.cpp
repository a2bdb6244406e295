#include "tradebook/base/GridHtml.h"

#include <charconv>

namespace Dravel {
namespace {

constexpr std::size_t kOffsetDigits = 10;
constexpr std::uint32_t kMaxRowsApart = 10000;  // first and last row of a selection
constexpr std::size_t kExactDigits = 15;        // that a spreadsheet's number keeps

void AppendEscaped(std::string& html, std::string_view text) {
    for (const char c : text) {
        switch (c) {
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '&':
                html += "&amp;";
                break;
            case '"':
                html += "&quot;";
                break;
            default:
                // A control character is not allowed in HTML at all.
                html += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
        }
    }
}

const char* AlignOf(GridAlign align) {
    constexpr const char* kAligns[] = {"left", "right", "center"};
    return kAligns[static_cast<std::size_t>(align)];
}

bool IsPlainNumber(std::string_view text) {
    if (text.starts_with('-')) text.remove_prefix(1);
    const std::size_t digits = text.find_first_not_of("0123456789");
    const std::string_view rest = digits == text.npos ? std::string_view() : text.substr(digits + 1);
    if (digits != text.npos && (text[digits] != '.' || rest.empty())) return false;
    if (rest.find_first_not_of("0123456789") != rest.npos || digits == 0) return false;
    if (text.size() > 1 && text[0] == '0' && text[1] != '.') return false;  // an identifier
    return !text.empty() && text.size() <= kExactDigits;
}

void AppendCell(std::string& html, const char* element, GridAlign align, std::string_view text) {
    html += '<';
    html += element;
    html += " align=\"";
    html += AlignOf(align);
    html += IsPlainNumber(text) ? "\">" : "\" style=\"mso-number-format:'\\@'\">";
    AppendEscaped(html, text);
    html += "</";
    html += element;
    html += '>';
}

void PutOffset(std::string& html, std::size_t at, std::size_t offset) {
    char digits[24];
    const char* end = std::to_chars(digits, digits + sizeof digits, offset).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    html.replace(at + kOffsetDigits - length, length, digits, length);
}

}  // namespace

const char* RefusalToCopy(const GridSelection& rows) {
    const auto& ranges = rows.Ranges();
    if (ranges.size() > 1) return "This command can't be used on multiple selection.";
    if (ranges.empty()) return "Content of the grid is too large, please make selection and repeat command.";
    if (ranges.front().last - ranges.front().first > kMaxRowsApart)
        return "Selection is too large, please make smaller selection and repeat command.";
    return nullptr;
}

std::string RowsAsHtml(const IGridSource& source, const GridSelection& rows, const GridColumns& columns,
                       std::span<const int> shown) {
    std::string html = "<table border=\"1\" cellspacing=\"0\" cellpadding=\"2\">\r\n<tr>", cell;
    for (const int column : shown)
        AppendCell(html, "th", columns[column].align, columns[column].header);
    html += "</tr>\r\n";
    for (const GridRange& range : rows.Ranges()) {
        for (std::uint32_t row = range.first; row <= range.last && row < source.RowCount(); ++row) {
            if (source.GroupHead(row).level >= 0) continue;
            html += "<tr>";
            for (const int column : shown) {
                cell.clear();
                source.CellText(row, column, cell);
                AppendCell(html, "td", columns[column].align, cell);
            }
            html += "</tr>\r\n";
        }
    }
    return html += "</table>";
}

std::string ClipboardHtml(std::string_view fragment) {
    constexpr std::string_view kNames[] = {"StartHTML:", "EndHTML:", "StartFragment:", "EndFragment:"};
    constexpr std::string_view kBefore =
        "<html>\r\n<head><meta charset=\"utf-8\"></head>\r\n"
        "<body>\r\n<!--StartFragment-->";
    constexpr std::string_view kAfter = "<!--EndFragment-->\r\n</body>\r\n</html>";
    std::string html = "Version:0.9\r\n";
    std::size_t places[std::size(kNames)];
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
        html += kNames[i];
        places[i] = html.size();
        html.append(kOffsetDigits, '0');
        html += "\r\n";
    }
    const std::size_t start = html.size();
    html += kBefore;
    const std::size_t startFragment = html.size();
    html += fragment;
    const std::size_t endFragment = html.size();
    html += kAfter;
    const std::size_t offsets[] = {start, html.size(), startFragment, endFragment};
    for (std::size_t i = 0; i < std::size(kNames); ++i)
        PutOffset(html, places[i], offsets[i]);
    return html;
}

}  // namespace Dravel
