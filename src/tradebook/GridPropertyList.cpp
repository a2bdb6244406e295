#include "tradebook/GridPropertyList.h"

#include <span>
#include <string_view>

namespace Dravel {

namespace {

using P = GridProperties;

struct Entry {
    GridProperty id;
    PropertyKind kind;
    const wchar_t* name;
    const wchar_t* description;
    std::uint32_t P::*colour = nullptr;
    bool P::*flag = nullptr;
};

// The same text on all four colours: deliberate.
constexpr const wchar_t* kColourText = L"Specifies the default dialog border color";
// Nothing follows from these two yet.
constexpr const wchar_t* kKeptText = L"Kept; all stored trades are always shown";

constexpr Entry kFont[] = {
    {GridProperty::Font, PropertyKind::Font, L"Change Font", L"The font of all cells"}};
constexpr Entry kColours[] = {
    {GridProperty::BuyColor, PropertyKind::Colour, L"Buy Color", kColourText, &P::buyColor},
    {GridProperty::SellColor, PropertyKind::Colour, L"Sell Color", kColourText, &P::sellColor},
    {GridProperty::FontBuyColor, PropertyKind::Colour, L"Font Buy Color", kColourText, &P::fontBuyColor},
    {GridProperty::FontSellColor, PropertyKind::Colour, L"Font Sell Color", kColourText, &P::fontSellColor},
};
constexpr Entry kSwitches[] = {
    {GridProperty::EnableBuy, PropertyKind::Check, L"Buy", L"Shows buy trades on the buy color", nullptr,
     &P::enableBuy},
    {GridProperty::EnableSell, PropertyKind::Check, L"Sell", L"Shows all other trades on the sell color",
     nullptr, &P::enableSell},
    {GridProperty::EnableFontBuy, PropertyKind::Check, L"Font Buy",
     L"Writes buy trades in the font buy color", nullptr, &P::enableFontBuy},
    {GridProperty::EnableFontSell, PropertyKind::Check, L"Font Sell",
     L"Writes all other trades in the font sell color", nullptr, &P::enableFontSell},
};
constexpr Entry kFreeze[] = {{GridProperty::ColumnFreeze, PropertyKind::Number, L"No. of Frozen Columns",
                              L"So many columns stay while the others scroll, 0 to 10"}};
constexpr Entry kOptions[] = {
    {GridProperty::ShowGridRow, PropertyKind::Check, L"Show Grid Row", L"Draws lines between the rows",
     nullptr, &P::showGridRow},
    {GridProperty::CarryForwardTrade, PropertyKind::Check, L"Carry Forward Trade", kKeptText, nullptr,
     &P::carryForwardTrade},
    {GridProperty::RemoveExpireTrade, PropertyKind::Check, L"Remove Expire Trade", kKeptText, nullptr,
     &P::removeExpireTrade},
    {GridProperty::TradeForGreekAnalysisOnly, PropertyKind::Check, L"Trade For Greek Analysis Only",
     L"Keeps the trades in the book and reports them for analysis only", nullptr,
     &P::tradeForGreekAnalysisOnly},
};

struct Group {
    const wchar_t* name;
    std::span<const Entry> entries;
};
constexpr Group kGroups[] = {{L"Font", kFont},
                             {L"Color", kColours},
                             {L"Enable Color", kSwitches},
                             {L"No. of Frozen Columns", kFreeze},
                             {L"Property", kOptions}};

const Entry* Find(GridProperty property) {
    for (const Group& group : kGroups) {
        for (const Entry& entry : group.entries) {
            if (entry.id == property) return &entry;
        }
    }
    return nullptr;
}

}  // namespace

PropertyList MakePropertyList() {
    PropertyList list;
    for (const Group& group : kGroups) {
        PropertyGroup made{group.name, {}};
        for (const Entry& entry : group.entries)
            made.items.push_back(
                {static_cast<int>(entry.id), entry.kind, entry.name, entry.description, 0, {}});
        list.Add(std::move(made));
    }
    return list;
}

void ShowProperties(const GridProperties& properties, PropertyList& list) {
    for (const Group& group : kGroups) {
        for (const Entry& entry : group.entries) {
            PropertyItem* item = list.Find(static_cast<int>(entry.id));
            if (item == nullptr) continue;
            if (entry.colour != nullptr) item->value = properties.*entry.colour;
            if (entry.flag != nullptr) item->value = properties.*entry.flag ? 1 : 0;
            if (entry.id == GridProperty::ColumnFreeze)
                item->value = static_cast<std::uint32_t>(properties.columnFreeze);
        }
    }
}

bool ChangeProperty(GridProperties& properties, GridProperty property, std::optional<std::uint32_t> value) {
    const Entry* entry = Find(property);
    if (entry == nullptr || (!value && entry->colour == nullptr)) return false;
    if (entry->colour != nullptr) {
        const std::uint32_t fallback = property == GridProperty::BuyColor ? kBuyColour : kSellColour;
        properties.*entry->colour = value.value_or(fallback) & 0xFFFFFF;
    } else if (entry->flag != nullptr) {
        properties.*entry->flag = *value != 0;
    } else if (property != GridProperty::ColumnFreeze || *value > std::uint32_t{kMaxFrozenColumns}) {
        return false;
    } else {
        properties.columnFreeze = static_cast<std::int32_t>(*value);
    }
    return true;
}

}  // namespace Dravel
