// The texts of one column of the book, packed to be filtered, sorted and grouped by.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tradebook/CellReader.h"
#include "tradebook/OrderKeys.h"
#include "tradebook/TextPages.h"
#include "tradebook/TradeBook.h"
#include "tradebook/WordCodes.h"

namespace Dravel {

// Display texts in lower case, one an item of the book (deleted ones too). A column with few different texts
// keeps two bytes an item, any other the texts themselves. User-interface thread.
class TradeTexts {
 public:
    // Borrows the book; takes in its items.
    TradeTexts(const TradeBook& book, int column);

    void Extend();                // takes in the items that came since
    void Update(TradeItem item);  // the record has changed
    std::string_view Text(TradeItem item) const { return packed_ ? pages_[item] : words_[codes_[item]]; }

    // Clears passes[item] of each item whose text contains none of the needles (lower case, none empty).
    void KeepMatches(std::span<const std::string> needles, std::vector<std::uint8_t>& passes) const;

    // Below 0: a's text comes first; 0: the same text. Empty ones first; expiry dates by the calendar, before
    // other texts.
    int Compare(TradeItem a, TradeItem b) const;
    // Keys under which Compare orders.
    OrderKeys Keys() const;

    std::size_t Bytes() const;

 private:
    bool TooManyWords() const;
    void Pack();
    int CompareTexts(std::string_view a, std::string_view b) const;

    const TradeBook& book_;
    int column_;
    CellReader cells_;
    bool packed_ = false;  // in pages_, else in codes_
    std::vector<std::uint16_t> codes_;
    WordCodes words_;
    TextPages pages_;
    std::uint32_t size_ = 0;
};

}  // namespace Dravel
