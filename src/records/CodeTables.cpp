#include "records/CodeTables.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace Dravel {

namespace {

struct CodeWord {
    std::uint8_t code;
    std::string_view word;
};

// Each table stands in the order in which its words are compared.
constexpr CodeWord kOrderTypes[] = {
    {1, "Market"},
    {2, "Limit"},
    {4, "StopLimit"},  // codes 3 and 4 are not in the order of the words: deliberate
    {3, "StopMarket"},
    {74, "MIT"},
    {82, "MITLimit"},
    {87, "AuctionBuyIn"},
    {88, "AuctionSellOut"},
    {89, "AuctionTradingBuyIn"},
    {90, "AuctionTradingSellOut"},
    {78, "NegotiatedDealOrder"},
    {80, "PreOpenOrder"},
    {11, "OCO"},
    {101, "MultiLeg"},
    {102, "Spread"},
};
constexpr CodeWord kSides[] = {{side::Buy, "Buy"}, {side::Sell, "Sell"}};
constexpr CodeWord kOpenCloses[] = {
    {1, "Open"},           {2, "Close"},    {3, "ForceClose"},      {4, "CloseToday"},
    {5, "CloseYesterday"}, {6, "ForceOff"}, {7, "LocalForceClose"},
};
constexpr CodeWord kProductTypes[] = {
    {product::Normal, "NORMAL"}, {product::Delivery, "DELIVERY"}, {product::Intraday, "INTRADAY"}};

std::uint8_t CodeOf(std::span<const CodeWord> table, std::string_view text) {
    const auto found = std::ranges::find(table, text, &CodeWord::word);
    return found == table.end() ? std::uint8_t{0} : found->code;
}

std::string_view WordOf(std::span<const CodeWord> table, std::uint32_t code, std::string_view otherwise) {
    const auto found = std::ranges::find(table, code, &CodeWord::code);
    return found == table.end() ? otherwise : found->word;
}

}  // namespace

std::uint8_t OrderTypeFromText(std::string_view text) {
    return CodeOf(kOrderTypes, text);
}
std::uint8_t SideFromText(std::string_view text) {
    return CodeOf(kSides, text);
}
std::uint8_t OpenCloseFromText(std::string_view text) {
    return CodeOf(kOpenCloses, text);
}
std::uint32_t ProductTypeFromText(std::string_view text) {
    return CodeOf(kProductTypes, text);
}

std::string_view OrderTypeText(std::uint8_t code) {
    return WordOf(kOrderTypes, code, "");
}
std::string_view SideText(std::uint8_t code) {
    return WordOf(kSides, code, "Both");
}
std::string_view OpenCloseText(std::uint8_t code) {
    return WordOf(kOpenCloses, code, "NONE");
}
std::string_view ProductTypeText(std::uint32_t code) {
    return WordOf(kProductTypes, code, "*");
}

}  // namespace Dravel
