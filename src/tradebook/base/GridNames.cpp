#include "tradebook/base/GridNames.h"

#include <cstddef>
#include <iterator>

namespace Dravel {

// By code; 10 and 43 have none.
constexpr std::string_view kNames[] = {
    "Alert",
    "AlgoRuleGrid",
    "AllIndices",
    "ArrangeSpin",
    "AskPriceGrid",
    "BidPriceGrid",
    "BroadcastRulegrid",
    "BroadcastFiltergrid",
    "BroadcastAllRulegrid",
    "Brokerage",
    "",
    "Depth",
    "Dynamic",
    "ExchangeStopTime",
    "Index",
    "InsertRule",
    "LegSpin",
    "MultiLegGrid",
    "ManualOrder",
    "Dravel",
    "AlgoNetPosition",
    "NetPosition",
    "NetPostionHistory",
    "OptionCalculatorgrid",
    "OrderCount",
    "OrderMultiLegGrid",
    "Order",
    "OrderHistory",
    "PendingOrder",
    "SecurityInformation",
    "Spread",
    "Scale",
    "SpinDepth",
    "Scalebook",
    "SpinDepthPendingOrder",
    "SpinnerGrid",
    "SpinnerLegDetailGrid",
    "SpinnerOrderBook",
    "SpinnerPendingOrder",
    "SpinPropertyGrid",
    "SpinnerSpreadBookGrid",
    "Trade",
    "TradeHistory",
    "",
    "Watch",
    "VolHedge",
    "VolHedgeSum",
    "AutoDelta",
    "AuctionWatch",
    "NetPosExpiry",
};
static_assert(std::size(kNames) == 50 && kNames[kTradeBookGrid] == "Dravel");

std::string_view GridNameOf(int code) {
    const auto index = static_cast<std::size_t>(code);
    return code >= 0 && index < std::size(kNames) ? kNames[index] : std::string_view();
}

}  // namespace Dravel
