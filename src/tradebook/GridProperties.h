// The user's properties of the trade grid: font, colours and their switches, frozen columns, options.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "records/TradeRecord.h"
#include "toolkit/GridSource.h"

class CKRVPRegistry;

namespace Dravel {

// The buy and sell colours as they are before anybody chose others, Windows colour values.
inline constexpr std::uint32_t kBuyColour = 0xFF875F;
inline constexpr std::uint32_t kSellColour = 0x9B82FF;

inline constexpr std::int32_t kMaxFrozenColumns = 10;

struct GridProperties {
    std::vector<std::uint8_t>
        font;  // the system's font description (92 bytes) as stored; empty: the default font
    std::uint32_t buyColor = kBuyColour;
    std::uint32_t sellColor = kSellColour;
    std::uint32_t fontBuyColor = kBuyColour;
    std::uint32_t fontSellColor = kSellColour;
    bool enableBuy = false;
    bool enableSell = false;
    bool enableFontBuy = false;
    bool enableFontSell = false;
    std::int32_t columnFreeze = 0;  // 0 to kMaxFrozenColumns; a saved number beyond is ignored
    bool showGridRow = true;
    bool carryForwardTrade = false;
    bool removeExpireTrade = true;
    bool tradeForGreekAnalysisOnly = false;

    // The font under the key that is open, when it is one that can be drawn with: of the right size, upright,
    // and no taller or wider than a screen's text. False: `font` stays.
    static bool LoadFont(const CKRVPRegistry& settings, std::vector<std::uint8_t>& font);

    // Reads what stands under `key`; a missing value keeps the current one, but for the analysis-only switch,
    // which a missing value clears. False when the key does not exist.
    bool Load(CKRVPRegistry& settings, std::string_view key);
    // Writes them all under `key`, the font when there is one. False: the store takes no writing.
    bool Save(CKRVPRegistry& settings, std::string_view key) const;

    // Colours of a trade's row: the buy pair for a buy, the sell pair for everything else.
    GridRowStyle StyleOf(const TradeRecord& record) const;
};

}  // namespace Dravel
