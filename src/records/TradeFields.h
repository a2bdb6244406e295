// The one table of the fields of a trade that travel in frames; building and reading frames walk it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "message/Tags.h"
#include "records/TradeRecord.h"

namespace Dravel {

enum class FieldKind : std::uint8_t { Text, Unsigned, Real };

struct TradeField {
    tag::Tag tag;
    std::uint16_t offset;    // in TradeRecord
    std::uint16_t capacity;  // bytes in TradeRecord; what a number has on the wire, the most that a text has
    FieldKind kind;
};

namespace detail {

template <class Member>
constexpr TradeField DescribeField(tag::Tag tag, std::size_t offset) {
    static_assert(!std::is_pointer_v<Member>);
    constexpr FieldKind kind = std::is_array_v<Member>            ? FieldKind::Text
                               : std::is_floating_point_v<Member> ? FieldKind::Real
                                                                  : FieldKind::Unsigned;
    return {tag, static_cast<std::uint16_t>(offset), sizeof(Member), kind};
}

}  // namespace detail

#define DRAVEL_FIELD(tag_, member) \
    detail::DescribeField<decltype(TradeRecord::member)>(tag_, offsetof(TradeRecord, member))

// In the order in which the fields stand in a frame: those that the host knows, in record order, then the
// identity of the trade, which the host steps over and the record file needs.
inline constexpr std::array kTradeFields = {
    DRAVEL_FIELD(tag::ManagerID, managerID),
    DRAVEL_FIELD(tag::ExchangeTradeTime, exchangeTradeTime),
    DRAVEL_FIELD(tag::OrderID, orderID),
    DRAVEL_FIELD(tag::OrderTime, orderTime),
    DRAVEL_FIELD(tag::ExchangeOrderTime, exchangeOrderTime),
    DRAVEL_FIELD(tag::Exchange, exchange),
    DRAVEL_FIELD(tag::SecurityID, securityID),
    DRAVEL_FIELD(tag::SecurityType, securityType),
    DRAVEL_FIELD(tag::Symbol, symbol),
    DRAVEL_FIELD(tag::ExpiryDate, expiryDate),
    DRAVEL_FIELD(tag::OptionType, optionType),
    DRAVEL_FIELD(tag::StrikePrice, strikePrice),
    DRAVEL_FIELD(tag::Text55107, text55107),
    DRAVEL_FIELD(tag::Side, side),
    DRAVEL_FIELD(tag::OrderType, orderType),
    DRAVEL_FIELD(tag::Quantity, quantity),
    DRAVEL_FIELD(tag::PendingQuantity, pendingQuantity),
    DRAVEL_FIELD(tag::Value20036, value20036),
    DRAVEL_FIELD(tag::Price, price),
    DRAVEL_FIELD(tag::ProductType, productType),
    DRAVEL_FIELD(tag::OpenClose, openClose),
    DRAVEL_FIELD(tag::ClientID, clientID),
    DRAVEL_FIELD(tag::MemberID, memberID),
    DRAVEL_FIELD(tag::CTCLID, ctclID),
    DRAVEL_FIELD(tag::ReferenceText, referenceText),
    DRAVEL_FIELD(tag::Value20083, value20083),
    DRAVEL_FIELD(tag::Value20068, value20068),
    DRAVEL_FIELD(tag::Value20081, value20081),
    DRAVEL_FIELD(tag::Value20082, value20082),
    DRAVEL_FIELD(tag::Text55151, text55151),
    DRAVEL_FIELD(tag::Value40008, value40008),
    DRAVEL_FIELD(tag::Value20101, value20101),
    DRAVEL_FIELD(tag::TerminalInfo, terminalInfo),
    DRAVEL_FIELD(tag::Pan, pan),
    DRAVEL_FIELD(tag::Text55328, text55328),
    DRAVEL_FIELD(tag::Value11115, value11115),
    DRAVEL_FIELD(tag::Text55329, text55329),
    DRAVEL_FIELD(tag::UserID, userID),
    DRAVEL_FIELD(tag::VELTTradeID, veltTradeID),
    DRAVEL_FIELD(tag::VELTOrderID, veltOrderID),
    DRAVEL_FIELD(tag::ExchangeTradeID, exchangeTradeID),
    DRAVEL_FIELD(tag::ExchangeOrderNo, exchangeOrderNo),
};
#undef DRAVEL_FIELD

inline constexpr std::size_t kIdentityFields = 5;  // the last ones of the table
inline constexpr std::size_t kHostFields = kTradeFields.size() - kIdentityFields;

// Everything of the record is in the table once, but for the reference to the terminal's master.
static_assert([] {
    std::size_t bytes = sizeof(TradeRecord::security);
    for (const TradeField& field : kTradeFields) {
        bytes += field.capacity;
    }
    return bytes == sizeof(TradeRecord);
}());

}  // namespace Dravel
