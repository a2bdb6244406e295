// How the columns of a CSV file become the columns of a trade: what an import format set comes to when it is
// applied.
#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace Dravel {

// Columns of a trade, and the one among them whose text is a date.
inline constexpr std::size_t kMappedColumns = 32;
inline constexpr std::size_t kMappedExpiryDate = 13;

struct MappedColumn {
    std::string field;         // header name, or 0-based number, of the CSV column; empty: not in the file
    std::string plainDefault;  // used where the file's cell is missing or empty
    std::string starred;       // always used, whatever the file says; empty: none
};

// A mapping without any field is that of no format set: the import key table then maps the columns.
struct ImportMapping {
    bool header = true;  // the file's first line names its columns
    std::string fileNameFormat;
    std::string filePath;
    std::string
        expiryPattern;  // display pattern of the file's expiry dates; empty: they are taken as they stand
    std::array<MappedColumn, kMappedColumns> columns;

    bool NamesFields() const {
        for (const MappedColumn& column : columns) {
            if (!column.field.empty()) return true;
        }
        return false;
    }
};

}  // namespace Dravel
