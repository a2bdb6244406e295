// Any bytes as a CSV file: no byte of a line is lost or invented, and any cell can be put into any field of a
// trade.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "formatset/CsvLine.h"
#include "fuzz/FuzzCheck.h"
#include "tradebook/TradeColumns.h"

namespace Dravel::Fuzz {

// The input as a file that hands out a few bytes at a time.
class FuzzFile final : public IFile {
 public:
    FuzzFile(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
    FileStatus Read(void* into, std::size_t capacity, std::size_t& got) override {
        got = std::min(capacity, size_ - at_);
        if (got > 0) std::memcpy(into, data_ + at_, got);
        at_ += got;
        return {};
    }
    FileStatus Write(const void*, std::size_t) override { return {FileFault::Other, 0}; }
    FileStatus Flush() override { return {}; }
    FileStatus Seek(std::uint64_t) override { return {FileFault::Other, 0}; }
    FileStatus Cut(std::uint64_t) override { return {FileFault::Other, 0}; }
    FileStatus Size(std::uint64_t& bytes) override {
        bytes = size_;
        return {};
    }
    FileStatus Close() override { return {}; }

 private:
    const std::uint8_t* data_;
    std::size_t size_, at_ = 0;
};

inline void FuzzCsvLine(const std::uint8_t* data, std::size_t size) {
    FuzzFile file(data, size);
    CsvLines lines(file, 16, size % 2 == 0 ? kLongestLine : 24);
    std::vector<std::string_view> cells;
    TradeRecord record{};
    std::string text;
    std::uint64_t count = 0;
    for (std::string_view line; lines.Next(line); ++count) {
        SplitCells(line, cells);
        std::size_t bytes = cells.empty() ? 0 : cells.size() - 1;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            bytes += cells[i].size();
            const std::size_t column = i % column::Count;
            kTradeColumns[column].put(record, Trimmed(cells[i]));
            CellText(record, static_cast<int>(column), text);
            Require(text.size() <= 352, "a cell's text is bounded");
        }
        Require(bytes == line.size(), "cells and commas make the line");
    }
    Require(!lines.Failed() && lines.Position() == size, "every byte belongs to a line");
    Require(count >= static_cast<std::uint64_t>(std::count(data, data + size, std::uint8_t{'\n'})),
            "every line is read");
}

}  // namespace Dravel::Fuzz
