// Any bytes as the file of a format set: a set comes of them that is applied, and, unless a value cannot be
// written, is written and read again to the same.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "formatset/FormatSet.h"
#include "fuzz/FuzzCheck.h"

namespace Dravel::Fuzz {

inline void FuzzFormatSet(const std::uint8_t* data, std::size_t size) {
    static const std::array<std::string_view, kMappedColumns> titles{};
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const FormatSet set = ReadFormatSet(text);
    const ImportMapping mapping = MappingOf(set);
    std::size_t bytes = set.fileNameFormat.size() + set.filePath.size();
    for (std::size_t index = 0; index < kMappedColumns; ++index) {
        const FormatSetRow& row = set.rows[index];
        bytes += row.field.size() + row.format.size() + row.defaultValue.size();
        Require(mapping.columns[index].starred.empty() || mapping.columns[index].plainDefault.empty(),
                "a default is starred or plain");
    }
    Require(bytes <= size, "what was read is no more than the file held");
    if (!UnwritableValue(set)) Require(ReadFormatSet(FormatSetText(set, titles)) == set, "a set reads back");
    ColumnsNamedIn(text, titles);
    Require(SetForHeader({&set, 1}, text) <= 1, "a fitting set is one of those there are");
}

}  // namespace Dravel::Fuzz
