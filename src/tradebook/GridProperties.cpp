#include "tradebook/GridProperties.h"

#include <cstring>
#include <utility>

#include "records/CodeTables.h"
#include "toolkit/Registry.h"

namespace Dravel {

namespace {

template <typename T>
struct Setting {
    const char* name;
    T GridProperties::*field;
};
constexpr Setting<std::uint32_t> kColours[] = {
    {"BuyColor", &GridProperties::buyColor},
    {"SellColor", &GridProperties::sellColor},
    {"FontBuyColor", &GridProperties::fontBuyColor},
    {"FontSellColor", &GridProperties::fontSellColor},
};
constexpr Setting<bool> kSwitches[] = {
    {"EnableBuy", &GridProperties::enableBuy},
    {"EnableSell", &GridProperties::enableSell},
    {"EnableFontBuy", &GridProperties::enableFontBuy},
    {"EnableFontSell", &GridProperties::enableFontSell},
    {"Show Grid Row", &GridProperties::showGridRow},
    {"Carry Forward Trade", &GridProperties::carryForwardTrade},
    {"Remove Expire Trade", &GridProperties::removeExpireTrade},
    {"Trade For Greek Analysis Only", &GridProperties::tradeForGreekAnalysisOnly},
};
constexpr char kFreeze[] = "ColumnFreeze", kFont[] = "Font";
constexpr std::size_t kFontBytes = 92;
constexpr std::int32_t kTallestFont = 200;  // pixels

}  // namespace

bool GridProperties::LoadFont(const CKRVPRegistry& settings, std::vector<std::uint8_t>& font) {
    std::vector<std::uint8_t> read;
    // Height, width, and two angles begin the system's font description.
    std::int32_t shape[4];
    if (!settings.ReadBinary(kFont, read) || read.size() != kFontBytes) return false;
    std::memcpy(shape, read.data(), sizeof shape);
    const auto plausible = [](std::int32_t length) {
        return length >= -kTallestFont && length <= kTallestFont;
    };
    if (!plausible(shape[0]) || !plausible(shape[1]) || shape[2] != 0 || shape[3] != 0) return false;
    font = std::move(read);
    return true;
}

bool GridProperties::Load(CKRVPRegistry& settings, std::string_view key) {
    tradeForGreekAnalysisOnly = false;
    if (!settings.Open(key)) return false;
    LoadFont(settings, font);
    for (const auto& [name, field] : kColours) {
        std::uint32_t colour = this->*field;
        if (settings.ReadColour(name, colour)) this->*field = colour & 0xFFFFFF;
    }
    for (const auto& [name, field] : kSwitches) {
        std::int32_t value = 0;
        if (settings.ReadInteger(name, value)) this->*field = value != 0;
    }
    std::int32_t freeze = 0;
    if (settings.ReadInteger(kFreeze, freeze) && freeze >= 0 && freeze <= kMaxFrozenColumns)
        columnFreeze = freeze;
    return true;
}

bool GridProperties::Save(CKRVPRegistry& settings, std::string_view key) const {
    if (!settings.CreateKey(key)) return false;
    bool written = font.empty() || settings.WriteBinary(kFont, font);
    for (const auto& [name, field] : kColours)
        written &= settings.WriteColour(name, this->*field);
    for (const auto& [name, field] : kSwitches)
        written &= settings.WriteInteger(name, this->*field);
    return written && settings.WriteInteger(kFreeze, columnFreeze);
}

GridRowStyle GridProperties::StyleOf(const TradeRecord& record) const {
    const bool buy = record.side == side::Buy;
    GridRowStyle style;
    if (buy ? enableBuy : enableSell) style.background = buy ? buyColor : sellColor;
    if (buy ? enableFontBuy : enableFontSell) style.text = buy ? fontBuyColor : fontSellColor;
    return style;
}

}  // namespace Dravel
