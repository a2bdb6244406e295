// Reads the cells of one column from many records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "records/TradeRecord.h"

namespace Dravel {

// The display text of a column in lower case, as CellText and LowerCase would make it, without the two copies
// and the wait for each record. Not for two threads at once.
class CellReader {
 public:
    // Where a text lies as it is shown: in the record, or in the terminal's entry when there is one and the
    // column is one of the contract's. A capacity of 0: not there; of 1: a code that stands for a word.
    struct Place {
        std::uint16_t offset = 0, capacity = 0;
        std::uint16_t entryOffset = 0, entryCapacity = 0;
    };
    static constexpr std::size_t kLongest = 64;  // no cell is longer

    explicit CellReader(int column);

    // A multiple of 8; no text is longer.
    std::size_t Width() const { return width_; }
    // Valid until the next call. Behind the text stand zeros up to the width.
    std::string_view Read(const TradeRecord& record);
    // To be called for the next records (some ten of them) before they are read. Records lie far apart, so
    // each costs a wait for the memory; reads that do not depend on one another wait together.
    void Fetch(const TradeRecord& record) {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&record);
        fetched_ = static_cast<std::uint8_t>(fetched_ + bytes[place_.offset] + bytes[end_] + bytes[entry_]);
    }

 private:
    struct Cell {
        char bytes[kLongest] = {};
        std::size_t length = 0;
        bool known = false;
    };
    std::string_view ReadFormatted(const TradeRecord& record);
    std::string_view Keep(Cell& cell, const TradeRecord& record);

    int column_;
    Place place_;
    std::size_t width_ = kLongest;
    std::size_t end_;           // how far most texts reach
    std::size_t entry_;         // where the entry's address lies when it matters
    std::uint8_t fetched_ = 0;  // of no use but to keep the reads
    Cell cell_;
    std::vector<Cell> words_;  // by code
    std::string text_;
    // Formatting a date asks the system for its zone; contracts are few.
    std::unordered_map<const SecurityMasterEntry*, Cell> expiries_;
};

}  // namespace Dravel
