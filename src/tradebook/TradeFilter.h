// Which trades the texts of the filter bar hide.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "records/TradeRecord.h"

namespace Dravel {

// The entry of the filter bar that stands for "no filter".
inline constexpr std::string_view kNoFilter = "<all>";

// What the text of one column asks for. Letter case is set aside (LowerCase.h).
//
// Words (most text columns): the text is cut at every "or", also inside a word, and a trade passes when its
// cell contains one of the trimmed pieces. An empty piece after the last "or" lets nothing more pass; a text
// without "or" that is empty lets all pass.
// Number: "<n" passes values below n, ">n" above n, otherwise equal to n. A column that is numeric to the
// filter but holds no 32-bit integer (exchange order number, exchange trade identifier, strike, price) counts
// as 0: deliberate.
// Part (all other columns): a trade passes when its cell contains the whole text.
class ColumnFilter {
 public:
    enum class Rule : std::uint8_t { All, Words, Below, Above, Equal };

    ColumnFilter(int column, std::string_view text);

    int Column() const { return column_; }
    const std::string& Text() const { return text_; }  // as it was given
    Rule Kind() const { return rule_; }
    // For Words: in lower case, none empty; without any nothing passes.
    const std::vector<std::string>& Needles() const { return needles_; }
    bool Passes(const TradeRecord& record) const;
    // For the other rules.
    bool PassesNumber(std::int64_t value) const;
    // Whether every trade has the same value for a number's rule, 0.
    bool CountsAsZero() const;

    bool operator==(const ColumnFilter&) const = default;

 private:
    void ReadWords(std::string text);
    void ReadNumber(std::string_view text);

    int column_;
    std::string text_;
    Rule rule_ = Rule::All;
    std::int64_t number_ = 0;
    std::vector<std::string> needles_;
};

// The 32-bit integer of a record that an integer column shows.
std::uint32_t CellInteger(const TradeRecord& record, int column);

}  // namespace Dravel
