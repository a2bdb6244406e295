// An import format set: how one broker's CSV file becomes trades. Its text form and what it comes to when it
// is applied.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "formatset/ImportMapping.h"

namespace Dravel {

// What the user says of one column of a trade. Narrow texts, as they stand in the file.
struct FormatSetRow {
    std::string field;         // header name, or 0-based number, of the CSV column; empty: not in the file
    std::string format;        // display pattern; counts in the row of the expiry date alone
    std::string defaultValue;  // a "*" in it makes it the value whatever the file says
    bool operator==(const FormatSetRow&) const = default;
};

struct FormatSet {
    bool header = true;  // the file's first line names its columns
    std::string fileNameFormat;
    std::string filePath;
    std::array<FormatSetRow, kMappedColumns> rows;  // in the order of a trade's columns
    bool operator==(const FormatSet&) const = default;
};

// The texts by which a program speaks of a trade's columns: the titles that it shows, the header names that
// it knows by itself.
using ColumnTexts = std::span<const std::string_view, kMappedColumns>;

// The date patterns offered for the expiry date, in the order in which they are listed. "ddMMMyy" is offered
// although it does not parse: deliberate.
extern const std::array<std::string_view, 15> kExpiryPatterns;

// Reads the text of a set's file; any text gives a set. Without a file name format in the first line the rows
// are not read. Lines behind those of the 32 columns have no meaning, cells behind the fourth neither.
FormatSet ReadFormatSet(std::string_view text);
// The text of a set's file, with LF. The values must be such that UnwritableValue finds none.
std::string FormatSetText(const FormatSet& set, ColumnTexts titles);

// The first value that would break the file, because it holds a comma or a line end; nullptr: none.
const std::string* UnwritableValue(const FormatSet& set);

// False: every file is refused, because the set matches header names and gives the client's none.
bool TakesFiles(const FormatSet& set);

// A default value with a "*" anywhere loses its first character, whatever that is: deliberate.
ImportMapping MappingOf(const FormatSet& set);

// The columns of a trade that the first line of a sample names, as an import without a format set finds them:
// trimmed, byte for byte.
std::bitset<kMappedColumns> ColumnsNamedIn(std::string_view firstLine, ColumnTexts keys);

// The set made for files with this first line: it has a header, names the client's column, and every field
// name stands there. Of several the one that names most, then the earliest; sets.size(): none.
std::size_t SetForHeader(std::span<const FormatSet> sets, std::string_view firstLine);

}  // namespace Dravel
