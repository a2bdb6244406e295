// One trade, as it is kept in memory.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/HostTypes.h"

// A packed block: fields follow one another without gaps. Texts are 8-bit and zero-terminated when shorter
// than their capacity (use TextOf in RecordText.h, never strlen). Fields named after a tag have no known
// meaning; they are kept and sent on. How each field travels stands in TradeFields.h.
#pragma pack(push, 1)
struct TradeRecord {
    char userID[21];
    char managerID[20];
    std::uint32_t veltTradeID;  // 1 to 2,147,483,647, given by the book
    std::uint32_t veltOrderID;
    char exchangeTradeID[48];
    char exchangeTradeTime[22];
    std::uint32_t orderID;
    char orderTime[22];
    char exchangeOrderNo[48];
    char exchangeOrderTime[22];
    char exchange[48];
    char securityID[48];
    char securityType[16];
    char symbol[32];
    char expiryDate[32];
    char optionType[16];
    double strikePrice;
    char text55107[48];
    std::uint8_t side;  // codes in CodeTables.h
    std::uint8_t orderType;
    std::uint32_t quantity;
    std::uint32_t pendingQuantity;
    std::uint32_t value20036;
    double price;
    std::uint32_t productType;
    std::uint8_t openClose;
    char clientID[20];
    char memberID[20];
    char ctclID[20];
    char referenceText[64];
    std::uint32_t value20083;
    std::uint32_t value20068;
    std::uint32_t value20081;
    std::uint32_t value20082;
    char text55151[32];
    std::uint64_t value40008;
    const SecurityMasterEntry*
        security;  // borrowed from the terminal, not transmitted; nullptr: the own texts count
    std::uint32_t value20101;
    char terminalInfo[24];
    char pan[16];
    char text55328[16];
    std::uint16_t value11115;
    char text55329[16];
};
#pragma pack(pop)
static_assert(sizeof(TradeRecord) == 748 + sizeof(void*));
static_assert(offsetof(TradeRecord, exchange) == 215 && offsetof(TradeRecord, strikePrice) == 407);

// Whether the book can go by the trade's identifier; any other counts as missing.
inline bool HasIdentifier(const TradeRecord& record) {
    return record.veltTradeID >= 1 && record.veltTradeID <= 0x7FFFFFFF;
}
