// What the line below the grid says of the book.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Dravel {

struct BookStatus {
    std::uint64_t shown = 0, all = 0, selected = 0;  // trades
    std::uint64_t bought = 0, sold = 0;              // quantities of all trades
    std::uint64_t beingTyped = 0;                    // rows that are not in the book yet
    bool changed = false;                            // since the last save
    std::string_view state = {};                     // in the place of what `changed` says; empty: that
    bool known = true;                               // the counts are those of the book
    std::string import;                              // what the last one came to
    std::string notice;                              // the last one
    bool operator==(const BookStatus&) const = default;
};

namespace statuspart {
enum Index : std::size_t { Trades, Selected, Bought, Sold, Changed, Import, Notice, Count };
}

// "1 row is still being typed"; empty for none.
std::string RowsBeingTyped(std::uint64_t rows);

std::array<std::string, statuspart::Count> StatusTexts(const BookStatus& status);

}  // namespace Dravel
