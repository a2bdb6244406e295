// The duplicate key of a trade as one text, for the plain models that tests compare with.
#pragma once

#include <string>
#include <string_view>

#include "records/RecordText.h"
#include "records/TradeRecord.h"

namespace Dravel {

inline std::string PlainKey(const TradeRecord& trade) {
    std::string key(TextOf(trade.symbol));
    for (const std::string_view text :
         {TextOf(trade.exchangeTradeID), TextOf(trade.exchangeOrderNo), TextOf(trade.exchangeTradeTime)})
        key.append("|").append(text);
    return key;
}

}  // namespace Dravel
