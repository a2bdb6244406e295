#include "formatset/FormatSet.h"

#include <algorithm>
#include <vector>

#include "formatset/CsvLine.h"
#include "formatset/LetterCase.h"

namespace Dravel {
namespace {

constexpr std::size_t kRowTexts = 4;  // title, field, format, default value
constexpr std::size_t kClientID = 16;

// The value behind the first "=" of a piece whose text in front or behind holds `key`, letter case aside.
bool ValueOf(const std::vector<std::string_view>& pieces, std::size_t piece, std::string_view key,
             std::string_view& value) {
    if (piece >= pieces.size()) return false;
    std::string lower(pieces[piece]);
    LowerCase(lower);
    if (lower.find(key) == std::string::npos) return false;
    const std::size_t equals = lower.find('=');
    value = equals == std::string::npos ? std::string_view() : Trimmed(pieces[piece].substr(equals + 1));
    return true;
}

// False: the set ends with its first line.
bool ReadFirstLine(const std::vector<std::string_view>& pieces, FormatSet& set) {
    std::string_view value;
    if (ValueOf(pieces, 0, "header", value)) set.header = SameLetters(value, "true");
    if (!ValueOf(pieces, 1, "filenameformat", value)) return false;
    set.fileNameFormat = value;
    if (ValueOf(pieces, 2, "filepath", value)) set.filePath = value;
    return true;
}

std::string_view TakeLine(std::string_view& rest) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

bool Breaks(const std::string& value) {
    return value.find_first_of(",\r\n") != std::string::npos;
}

// How many of the line's cells the set names; 0: it is not made for this line.
std::size_t NamesFound(const FormatSet& set, const std::vector<std::string_view>& cells) {
    if (!set.header || set.rows[kClientID].field.empty()) return 0;
    std::size_t found = 0;
    for (const FormatSetRow& row : set.rows) {
        if (row.field.empty()) continue;
        if (std::find(cells.begin(), cells.end(), row.field) == cells.end()) return 0;
        ++found;
    }
    return found;
}

std::vector<std::string_view> TrimmedCells(std::string_view line) {
    std::vector<std::string_view> cells;
    SplitCells(line, cells);
    std::transform(cells.begin(), cells.end(), cells.begin(), &Trimmed);
    return cells;
}

}  // namespace

const std::array<std::string_view, 15> kExpiryPatterns = {
    "ddMMMyyyy",    "dd MMM yyyy", "ddMMMyy",    "dd-MMM-yyyy",         "dd-MMM-yy",
    "dd MMMM yyyy", "dd/MM/yyyy",  "dd-MM-yyyy", "yyyy/MM/dd",          "yyyy-MM-dd",
    "MM/dd/yyyy",   "MM-dd-yyyy",  "yyyyMMdd",   "dd/MM/yyyy HH:mm:ss", "yyyyMMdd-HH:mm:ss",
};

FormatSet ReadFormatSet(std::string_view text) {
    FormatSet set;
    std::string_view rest = WithoutByteOrderMark(text);
    std::vector<std::string_view> cells;
    SplitCells(TakeLine(rest), cells, 3);
    if (!ReadFirstLine(cells, set)) return set;
    for (FormatSetRow& row : set.rows) {
        if (rest.empty()) break;
        SplitCells(TakeLine(rest), cells, kRowTexts);
        if (cells.size() > 1) row.field = cells[1];
        if (cells.size() > 2) row.format = cells[2];
        if (cells.size() > 3) row.defaultValue = cells[3];
    }
    return set;
}

std::string FormatSetText(const FormatSet& set, ColumnTexts titles) {
    std::string text = set.header ? "Header=true" : "Header=false";
    text.append(",FileNameFormat=").append(set.fileNameFormat);
    text.append(",FilePath=").append(set.filePath) += '\n';
    for (std::size_t index = 0; index < set.rows.size(); ++index) {
        const FormatSetRow& row = set.rows[index];
        text.append(titles[index]) += ',';
        text.append(row.field) += ',';
        text.append(row.format) += ',';
        text.append(row.defaultValue) += '\n';
    }
    return text;
}

const std::string* UnwritableValue(const FormatSet& set) {
    for (const std::string* value : {&set.fileNameFormat, &set.filePath}) {
        if (Breaks(*value)) return value;
    }
    for (const FormatSetRow& row : set.rows) {
        for (const std::string* value : {&row.field, &row.format, &row.defaultValue}) {
            if (Breaks(*value)) return value;
        }
    }
    return nullptr;
}

bool TakesFiles(const FormatSet& set) {
    return !set.header || !set.rows[kClientID].field.empty() || !MappingOf(set).NamesFields();
}

ImportMapping MappingOf(const FormatSet& set) {
    ImportMapping mapping;
    mapping.header = set.header;
    mapping.fileNameFormat = set.fileNameFormat;
    mapping.filePath = set.filePath;
    mapping.expiryPattern = set.rows[kMappedExpiryDate].format;
    for (std::size_t index = 0; index < set.rows.size(); ++index) {
        const FormatSetRow& row = set.rows[index];
        MappedColumn& column = mapping.columns[index];
        column.field = row.field;
        if (row.defaultValue.find('*') == std::string::npos) {
            column.plainDefault = row.defaultValue;
        } else {
            column.starred = row.defaultValue.substr(1);
        }
    }
    return mapping;
}

std::bitset<kMappedColumns> ColumnsNamedIn(std::string_view firstLine, ColumnTexts keys) {
    const auto cells = TrimmedCells(firstLine);
    std::bitset<kMappedColumns> named;
    for (std::size_t index = 0; index < keys.size(); ++index)
        named[index] = std::find(cells.begin(), cells.end(), keys[index]) != cells.end();
    return named;
}

std::size_t SetForHeader(std::span<const FormatSet> sets, std::string_view firstLine) {
    const auto cells = TrimmedCells(firstLine);
    std::size_t best = sets.size(), most = 0;
    for (std::size_t index = 0; index < sets.size(); ++index) {
        const std::size_t found = NamesFound(sets[index], cells);
        if (found <= most) continue;
        most = found;
        best = index;
    }
    return best;
}

}  // namespace Dravel
