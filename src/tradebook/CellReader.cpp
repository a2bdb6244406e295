#include "tradebook/CellReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "formatset/LetterCase.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace {

constexpr std::array<CellReader::Place, column::Count> kPlaces = [] {
    std::array<CellReader::Place, column::Count> places{};
#define DRAVEL_OWN(column_, member)                                 \
    places[column::column_].offset = offsetof(TradeRecord, member); \
    places[column::column_].capacity = sizeof(TradeRecord::member)
#define DRAVEL_CONTRACT(column_, member)                                         \
    DRAVEL_OWN(column_, member);                                                 \
    places[column::column_].entryOffset = offsetof(SecurityMasterEntry, member); \
    places[column::column_].entryCapacity = sizeof(SecurityMasterEntry::member)
    DRAVEL_OWN(UserID, userID);
    DRAVEL_OWN(ExchangeOrderNo, exchangeOrderNo);
    DRAVEL_OWN(ExchangeTradeID, exchangeTradeID);
    DRAVEL_OWN(OrderTime, orderTime);
    DRAVEL_OWN(ExchangeOrderTime, exchangeOrderTime);
    DRAVEL_OWN(ExchangeTradeTime, exchangeTradeTime);
    DRAVEL_CONTRACT(Exchange, exchange);
    DRAVEL_CONTRACT(SecurityType, securityType);
    DRAVEL_CONTRACT(Symbol, symbol);
    DRAVEL_CONTRACT(OptionType, optionType);
    DRAVEL_CONTRACT(SecurityID, securityID);
    DRAVEL_OWN(ClientID, clientID);
    DRAVEL_OWN(ReferenceText, referenceText);
    DRAVEL_OWN(ManagerID, managerID);
    DRAVEL_OWN(MemberID, memberID);
    DRAVEL_OWN(CTCLID, ctclID);
    DRAVEL_OWN(Side, side);
    DRAVEL_OWN(OrderType, orderType);
    DRAVEL_OWN(OpenClose, openClose);
#undef DRAVEL_OWN
#undef DRAVEL_CONTRACT
    return places;
}();

constexpr std::size_t RoundedUp(std::size_t capacity) {
    return (capacity + 7) / 8 * 8;
}

// Eight bytes are read at once also where a field ends between them.
static_assert(std::ranges::all_of(kPlaces, [](const CellReader::Place& place) {
    return place.offset + RoundedUp(place.capacity) <= sizeof(TradeRecord) && place.entryCapacity % 8 == 0 &&
           std::max(place.capacity, place.entryCapacity) <= CellReader::kLongest;
}));

// Copies a text up to its first zero, eight bytes at a time, and fills `width` up with zeros; returns its
// length. What lies behind the zero is not read: it may be in memory that nobody else waits for.
std::size_t CopyLower(const char* from, std::size_t capacity, char* to, std::size_t width) {
    static_assert(std::endian::native == std::endian::little);
    constexpr std::uint64_t kEach = 0x0101010101010101, kAll = ~std::uint64_t{0}, kNone = 0;
    for (std::size_t at = 0; at < width; at += 8)
        std::memcpy(to + at, &kNone, 8);
    for (std::size_t at = 0; at < capacity; at += 8) {
        std::uint64_t part = 0;
        std::memcpy(&part, from + at, 8);
        if (capacity - at < 8) part &= kAll >> (64 - 8 * (capacity - at));
        const std::uint64_t zeros = (part - kEach) & ~part & (kEach * 0x80);
        const std::uint64_t before = ((zeros & (0 - zeros)) >> 7) - 1;  // bytes before the first zero
        part = LowerCase8(part & before);
        std::memcpy(to + at, &part, 8);
        if (zeros != 0) return at + static_cast<std::size_t>(std::countr_zero(zeros)) / 8;
    }
    return capacity;
}

}  // namespace

CellReader::CellReader(int column) : column_(column), place_(kPlaces[static_cast<std::size_t>(column)]) {
    constexpr std::size_t kMostTexts = 16;
    end_ = place_.offset + std::clamp<std::size_t>(place_.capacity, 1, kMostTexts) - 1;
    entry_ = place_.entryCapacity != 0 ? offsetof(TradeRecord, security) : place_.offset;
    if (place_.capacity == 1) words_.resize(256);
    if (place_.capacity > 1) width_ = RoundedUp(std::max(place_.capacity, place_.entryCapacity));
}

// The entry's address is read where it matters and nowhere else: it lies far from most texts.
std::string_view CellReader::Read(const TradeRecord& record) {
    const char* from = reinterpret_cast<const char*>(&record) + place_.offset;
    std::size_t capacity = place_.capacity;
    if (capacity <= 1) return ReadFormatted(record);
    if (place_.entryCapacity != 0) {
        if (const SecurityMasterEntry* const entry = record.security; entry != nullptr) {
            from = reinterpret_cast<const char*>(entry) + place_.entryOffset;
            capacity = place_.entryCapacity;
        }
    }
    return {cell_.bytes, CopyLower(from, capacity, cell_.bytes, width_)};
}

std::string_view CellReader::ReadFormatted(const TradeRecord& record) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&record);
    if (place_.capacity == 1) return Keep(words_[bytes[place_.offset]], record);
    const SecurityMasterEntry* const entry = record.security;
    if (column_ == column::ExpiryDate && entry != nullptr) return Keep(expiries_[entry], record);
    cell_.known = false;
    return Keep(cell_, record);
}

// The cell as the column table makes it, made once.
std::string_view CellReader::Keep(Cell& cell, const TradeRecord& record) {
    if (!cell.known) {
        CellText(record, column_, text_);
        LowerCase(text_);
        cell.known = true;
        cell.length = std::min(text_.size(), kLongest);
        std::memset(cell.bytes, 0, kLongest);
        std::memcpy(cell.bytes, text_.data(), cell.length);
    }
    return {cell.bytes, cell.length};
}

}  // namespace Dravel
