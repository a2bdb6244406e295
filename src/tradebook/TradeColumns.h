// The 32 columns of a trade: one table that grid, import, export, column profile and format set all walk.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "records/TradeRecord.h"

namespace Dravel {

// Fixed indexes of the columns; cells, format set rows and saved profiles are addressed by them.
namespace column {
enum Index : int {
    Server,
    UserID,
    VELTTradeID,
    VELTOrderID,
    OrderID,
    ExchangeOrderNo,
    ExchangeTradeID,
    OrderTime,
    ExchangeOrderTime,
    ExchangeTradeTime,
    Exchange,
    SecurityType,
    Symbol,
    ExpiryDate,
    OptionType,
    StrikePrice,
    ClientID,
    Side,
    Quantity,
    Price,
    SecurityID,
    OrderType,
    PendingQuantity,
    ReferenceText,
    ManagerID,
    MemberID,
    CTCLID,
    ProductType,
    OpenClose,
    Multiplier,
    TerminalInfo,
    Pancard,
    Count,
};
}  // namespace column

enum class CellType : std::uint8_t { Text, Integer, Double, Byte };

struct TradeColumn {
    const char* key;        // of the column in profiles
    const char* header;     // as shown
    const char* importKey;  // header cell of a CSV file
    std::uint16_t width;    // pixels
    std::uint8_t align;     // the grid's alignment code: 0 left, 1 numbers and identifiers, 2 expiry date
    bool visible;           // until a profile says otherwise
    bool editable;          // by the user, in the grid
    CellType type;
    // Appends the cell as the grid shows it. The terminal's contract counts before the record's own texts.
    void (*append)(const TradeRecord& record, std::string& text);
    // Puts a cell's text into the record: texts are cut to their capacity, words become codes, text that is
    // no number is 0. A cell of the contract lets go of the terminal's entry, which it may no longer agree
    // with: set `record.security` afterwards. Server and Multiplier keep nothing.
    void (*put)(TradeRecord& record, std::string_view text);
};

extern const std::array<TradeColumn, column::Count> kTradeColumns;

// One of the texts of every column, as `&TradeColumn::header`.
std::array<std::string_view, column::Count> TextsOfColumns(const char* TradeColumn::*text);

// The server under which all trades are kept.
inline constexpr std::string_view kServerName = "Dravel";

// Display text of a cell, into `text` (emptied first; its memory is used again).
inline void CellText(const TradeRecord& record, int index, std::string& text) {
    text.clear();
    kTradeColumns[static_cast<std::size_t>(index)].append(record, text);
}

// The expiry as shown: the entry's time as "ddMMMyyyy" in the local zone, or its own text when it has no
// time.
void AppendExpiry(const SecurityMasterEntry& entry, std::string& text);

// Makes `entry` the record's contract: its seven texts and numbers become the record's own, and the record
// borrows it.
void TakeContract(TradeRecord& record, const SecurityMasterEntry& entry);
// Whether the entry has a text, or a strike price, that the record is empty of. False for a record whose own
// symbol is another one's: no contract is made of two.
bool LacksOfContract(const TradeRecord& record, const SecurityMasterEntry& entry);
// Fills these in, so that the record can do without the entry.
void FillContract(TradeRecord& record, const SecurityMasterEntry& entry);
// Copies what TakeContract set in `from`, without making the texts anew.
void CopyContract(TradeRecord& record, const TradeRecord& from);

}  // namespace Dravel
