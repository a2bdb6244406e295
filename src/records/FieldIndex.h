// The field table by tag.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "records/TradeFields.h"

namespace Dravel {

// From a tag to its place in the field table: a hash without collisions, the factor found at compile time.
inline constexpr std::uint8_t kNoField = 0xFF;
struct FieldIndex {
    std::uint32_t factor = 0;
    std::array<std::uint8_t, 256> slots{};

    constexpr std::size_t Slot(tag::Tag tag) const { return (tag * factor >> 16) & 0xFF; }
    constexpr bool Fill(std::uint32_t with) {
        factor = with;
        slots.fill(kNoField);
        for (std::size_t i = 0; i < kTradeFields.size(); ++i) {
            std::uint8_t& slot = slots[Slot(kTradeFields[i].tag)];
            if (slot != kNoField) return false;
            slot = static_cast<std::uint8_t>(i);
        }
        return true;
    }
    constexpr std::size_t Find(tag::Tag tag) const {
        const std::uint8_t index = slots[Slot(tag)];
        return index != kNoField && kTradeFields[index].tag == tag ? index : kNoField;
    }
};
inline constexpr FieldIndex kFieldIndex = [] {
    FieldIndex index;
    std::uint32_t factor = 0x9E3779B1;
    while (!index.Fill(factor)) {
        factor += 0x6A09E668;
    }
    return index;
}();

}  // namespace Dravel
