// The grid's properties as the list shows them, and what changing one of them means.
#pragma once

#include <optional>

#include "toolkit/PropertyList.h"
#include "tradebook/GridProperties.h"

namespace Dravel {

// Identifiers of the list's items.
enum class GridProperty : int {
    Font,
    BuyColor,
    SellColor,
    FontBuyColor,
    FontSellColor,
    EnableBuy,
    EnableSell,
    EnableFontBuy,
    EnableFontSell,
    ColumnFreeze,
    ShowGridRow,
    CarryForwardTrade,
    RemoveExpireTrade,
    TradeForGreekAnalysisOnly,
};

// The groups and items in their order, without values.
PropertyList MakePropertyList();
// Puts the values into the list; the font's text is the caller's.
void ShowProperties(const GridProperties& properties, PropertyList& list);

// Sets a colour, switch or number; nothing for a colour means its default. False: refused, nothing changed.
// The default of all colours but BuyColor is the sell colour, FontBuyColor's too: deliberate, although it
// starts with another.
bool ChangeProperty(GridProperties& properties, GridProperty property, std::optional<std::uint32_t> value);

}  // namespace Dravel
