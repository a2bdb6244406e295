// The table of the 32 columns and how each reads and writes its field of the record.
#include "tradebook/TradeColumns.h"

#include <cstddef>
#include <cstring>

#include "formatset/DateFormat.h"
#include "formatset/LetterCase.h"
#include "formatset/NumberText.h"
#include "records/CodeTables.h"
#include "records/RecordText.h"

namespace Dravel {
namespace {

// Text fields

template <auto Field>
void AppendText(const TradeRecord& record, std::string& text) {
    text += TextOf(record.*Field);
}

template <auto Field>
void PutText(TradeRecord& record, std::string_view text) {
    SetText(record.*Field, text);
}

// Only whether the text is there: a tax number is not put on a screen.
template <auto Field>
void AppendPresence(const TradeRecord& record, std::string& text) {
    text += TextOf(record.*Field).empty() ? '0' : '1';
}

// Fields of the contract, which the terminal's entry replaces while it is known

template <auto Own, auto Entry>
void AppendContractText(const TradeRecord& record, std::string& text) {
    text += record.security != nullptr ? TextOf(record.security->*Entry) : TextOf(record.*Own);
}

template <auto Field>
void PutContractText(TradeRecord& record, std::string_view text) {
    SetText(record.*Field, text);
    record.security = nullptr;
}

void AppendExpiryCell(const TradeRecord& record, std::string& text) {
    if (record.security != nullptr) return AppendExpiry(*record.security, text);
    text += TextOf(record.expiryDate);
}

void AppendStrike(const TradeRecord& record, std::string& text) {
    AppendShortest(text, record.security != nullptr ? record.security->strikePrice : record.strikePrice);
}

void PutStrike(TradeRecord& record, std::string_view text) {
    record.strikePrice = ReadDouble(text);
    record.security = nullptr;
}

// 32-bit numbers. The record is packed: they lie at any offset and are copied.

template <std::size_t Offset>
void AppendCount(const TradeRecord& record, std::string& text) {
    std::uint32_t value = 0;
    std::memcpy(&value, reinterpret_cast<const char*>(&record) + Offset, sizeof(value));
    AppendUnsigned(text, value);
}

template <std::size_t Offset>
void PutCount(TradeRecord& record, std::string_view text) {
    const std::uint32_t value = ReadUnsigned(text);
    std::memcpy(reinterpret_cast<char*>(&record) + Offset, &value, sizeof(value));
}

void AppendPrice(const TradeRecord& record, std::string& text) {
    AppendShortest(text, record.price);
}
void PutPrice(TradeRecord& record, std::string_view text) {
    record.price = ReadDouble(text);
}

// Words that stand for codes

void AppendSide(const TradeRecord& record, std::string& text) {
    text += SideText(record.side);
}
void PutSide(TradeRecord& record, std::string_view text) {
    record.side = SideFromText(text);
}
void AppendOrderType(const TradeRecord& record, std::string& text) {
    text += OrderTypeText(record.orderType);
}
void PutOrderType(TradeRecord& record, std::string_view text) {
    record.orderType = OrderTypeFromText(text);
}
void AppendOpenClose(const TradeRecord& record, std::string& text) {
    text += OpenCloseText(record.openClose);
}
void PutOpenClose(TradeRecord& record, std::string_view text) {
    record.openClose = OpenCloseFromText(text);
}
void AppendProductType(const TradeRecord& record, std::string& text) {
    text += ProductTypeText(record.productType);
}
// "CCE" and "MME", which the grid offers, are no product types and give 0: deliberate.
void PutProductType(TradeRecord& record, std::string_view text) {
    record.productType = ProductTypeFromText(text);
}

void AppendServer(const TradeRecord&, std::string& text) {
    text += kServerName;
}
void AppendNothing(const TradeRecord&, std::string&) {}
void PutNothing(TradeRecord&, std::string_view) {}

using R = TradeRecord;
using E = SecurityMasterEntry;
constexpr auto kText = CellType::Text;
constexpr auto kInteger = CellType::Integer;
constexpr auto kDouble = CellType::Double;
constexpr auto kByte = CellType::Byte;

}  // namespace

// The headers as they stand: "Expiry Date" is the only one with a blank.
// clang-format off
const std::array<TradeColumn, column::Count> kTradeColumns = {{
    // key                    header               import key           width al visible edit   type      append                                             put
    {"colServer",            "Server",            "server",             60, 0, false, false, kText,    AppendServer,                                      PutNothing},
    {"colUserID",            "UserID",            "userid",             60, 0, false, true,  kText,    AppendText<&R::userID>,                            PutText<&R::userID>},
    {"colVELTTradeID",       "VELTTradeID",       "velttradeid",        53, 1, true,  false, kInteger, AppendCount<offsetof(R, veltTradeID)>,                      PutCount<offsetof(R, veltTradeID)>},
    {"colVELTOrderID",       "VELTOrderID",       "veltorderid",        53, 1, true,  false, kInteger, AppendCount<offsetof(R, veltOrderID)>,                      PutCount<offsetof(R, veltOrderID)>},
    {"colOrderID",           "OrderID",           "orderid",            70, 1, false, true,  kInteger, AppendCount<offsetof(R, orderID)>,                          PutCount<offsetof(R, orderID)>},
    {"colExchangeOrderNo",   "ExchangeOrderNo",   "exchangeorderno",    60, 1, false, true,  kText,    AppendText<&R::exchangeOrderNo>,                   PutText<&R::exchangeOrderNo>},
    {"colExchangeTradeID",   "ExchangeTradeID",   "exchangetradeid",    60, 1, false, true,  kText,    AppendText<&R::exchangeTradeID>,                   PutText<&R::exchangeTradeID>},
    {"colOrderTime",         "OrderTime",         "ordertime",          60, 0, false, true,  kText,    AppendText<&R::orderTime>,                         PutText<&R::orderTime>},
    {"colExchangeOrderTime", "ExchangeOrderTime", "exchangeordertime",  60, 1, false, true,  kText,    AppendText<&R::exchangeOrderTime>,                 PutText<&R::exchangeOrderTime>},
    {"colExchangeTradeTime", "ExchangeTradeTime", "exchangetradetime", 150, 1, false, true,  kText,    AppendText<&R::exchangeTradeTime>,                 PutText<&R::exchangeTradeTime>},
    {"colExchange",          "Exchange",          "exchange",           48, 0, true,  true,  kText,    AppendContractText<&R::exchange, &E::exchange>,         PutContractText<&R::exchange>},
    {"colSecurityType",      "SecurityType",      "securitytype",       80, 0, false, true,  kText,    AppendContractText<&R::securityType, &E::securityType>, PutContractText<&R::securityType>},
    {"colSymbol",            "Symbol",            "symbol",             47, 0, true,  true,  kText,    AppendContractText<&R::symbol, &E::symbol>,             PutContractText<&R::symbol>},
    {"colExpiryDate",        "Expiry Date",       "expiry date",        69, 2, true,  true,  kText,    AppendExpiryCell,                                  PutContractText<&R::expiryDate>},
    {"colOptionType",        "OptionType",        "optiontype",         80, 0, false, true,  kText,    AppendContractText<&R::optionType, &E::optionType>,     PutContractText<&R::optionType>},
    {"colStrikePrice",       "StrikePrice",       "strikeprice",        80, 1, false, true,  kDouble,  AppendStrike,                                      PutStrike},
    {"colClientID",          "ClientID",          "clientid",           80, 0, false, true,  kText,    AppendText<&R::clientID>,                          PutText<&R::clientID>},
    {"colSide",              "Side",              "side",               40, 0, true,  true,  kText,    AppendSide,                                        PutSide},
    {"colQuantity",          "Quantity",          "quantity",           47, 1, true,  true,  kInteger, AppendCount<offsetof(R, quantity)>,                         PutCount<offsetof(R, quantity)>},
    {"colPrice",             "Price",             "price",              65, 1, true,  true,  kDouble,  AppendPrice,                                       PutPrice},
    {"colSecurityID",        "SecurityID",        "securityid",        100, 1, false, true,  kText,    AppendContractText<&R::securityID, &E::securityID>,     PutContractText<&R::securityID>},
    {"colOrderType",         "OrderType",         "ordertype",          55, 0, true,  true,  kText,    AppendOrderType,                                   PutOrderType},
    {"colPendingQuantity",   "PendingQuantity",   "pendingquantity",    45, 1, true,  true,  kInteger, AppendCount<offsetof(R, pendingQuantity)>,                  PutCount<offsetof(R, pendingQuantity)>},
    {"colReferenceText",     "ReferenceText",     "referencetext",     150, 0, false, true,  kText,    AppendText<&R::referenceText>,                     PutText<&R::referenceText>},
    {"colManagerID",         "ManagerID",         "managerid",         150, 0, false, true,  kText,    AppendText<&R::managerID>,                         PutText<&R::managerID>},
    {"colMemberID",          "MemberID",          "memberid",          150, 0, false, true,  kText,    AppendText<&R::memberID>,                          PutText<&R::memberID>},
    {"colCTCLID",            "CTCLID",            "ctclid",            150, 0, false, true,  kText,    AppendText<&R::ctclID>,                            PutText<&R::ctclID>},
    {"colProductType",       "ProductType",       "producttype",       150, 0, false, true,  kText,    AppendProductType,                                 PutProductType},
    {"colOpenClose",         "OpenClose",         "openclose",         150, 0, false, true,  kText,    AppendOpenClose,                                   PutOpenClose},
    {"colMultiplier",        "Multiplier",        "multiplier",        150, 0, false, false, kText,    AppendNothing,                                     PutNothing},
    {"colTerminalInfo",      "TerminalInfo",      "terminalinfo",      150, 0, false, false, kByte,    AppendPresence<&R::terminalInfo>,                  PutText<&R::terminalInfo>},
    {"colPancard",           "Pancard",           "pancard",           150, 0, false, false, kByte,    AppendPresence<&R::pan>,                           PutText<&R::pan>},
}};
// clang-format on

void AppendExpiry(const SecurityMasterEntry& entry, std::string& text) {
    if (entry.expiryTime < 1) {
        text += TextOf(entry.expiryText);
    } else {
        text += FormatDate(entry.expiryTime, "ddMMMyyyy");
    }
}

void TakeContract(TradeRecord& record, const SecurityMasterEntry& entry) {
    std::string expiry;
    AppendExpiry(entry, expiry);
    SetText(record.exchange, TextOf(entry.exchange));
    SetText(record.securityID, TextOf(entry.securityID));
    SetText(record.securityType, TextOf(entry.securityType));
    SetText(record.symbol, TextOf(entry.symbol));
    SetText(record.expiryDate, expiry);
    SetText(record.optionType, TextOf(entry.optionType));
    record.strikePrice = entry.strikePrice;
    record.security = &entry;
}

bool LacksOfContract(const TradeRecord& record, const SecurityMasterEntry& entry) {
    const auto lacks = [](const char* own, const char* given) { return own[0] == '\0' && given[0] != '\0'; };
    const bool anything = lacks(record.securityType, entry.securityType) ||
                          lacks(record.symbol, entry.symbol) || lacks(record.optionType, entry.optionType) ||
                          lacks(record.expiryDate, entry.expiryText) ||
                          (record.expiryDate[0] == '\0' && entry.expiryTime >= 1) ||
                          (record.strikePrice == 0 && entry.strikePrice != 0);
    return anything && (record.symbol[0] == '\0' || SameLetters(TextOf(record.symbol), TextOf(entry.symbol)));
}

void FillContract(TradeRecord& record, const SecurityMasterEntry& entry) {
    if (!LacksOfContract(record, entry)) return;
    TradeRecord contract{};
    TakeContract(contract, entry);
    const auto fill = [](auto& text, const auto& from) {
        if (text[0] == '\0') std::memcpy(text, from, sizeof(text));
    };
    fill(record.securityType, contract.securityType);
    fill(record.symbol, contract.symbol);
    fill(record.expiryDate, contract.expiryDate);
    fill(record.optionType, contract.optionType);
    if (record.strikePrice == 0) record.strikePrice = contract.strikePrice;
}

void CopyContract(TradeRecord& record, const TradeRecord& from) {
    // From the exchange to the strike price the record holds the contract and nothing else.
    constexpr std::size_t kFirst = offsetof(TradeRecord, exchange), kLast = offsetof(TradeRecord, text55107);
    std::memcpy(reinterpret_cast<char*>(&record) + kFirst, reinterpret_cast<const char*>(&from) + kFirst,
                kLast - kFirst);
    record.security = from.security;
}

std::array<std::string_view, column::Count> TextsOfColumns(const char* TradeColumn::*text) {
    std::array<std::string_view, column::Count> texts;
    for (std::size_t index = 0; index < texts.size(); ++index)
        texts[index] = kTradeColumns[index].*text;
    return texts;
}

}  // namespace Dravel
