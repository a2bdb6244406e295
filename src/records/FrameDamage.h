// What a load finds wrong with a frame of the record file.
#pragma once

#include <cstdint>

namespace Dravel {

// Several may hold for one frame.
namespace damage {
using Kinds = std::uint8_t;
inline constexpr Kinds NotAsSaved = 1;     // its bytes are not those of any frame that was saved
inline constexpr Kinds NoIdentifier = 2;   // it has other identity fields, but no identifier to go by
inline constexpr Kinds NoDeletedMark = 4;  // it has identity fields, but does not end in a deleted mark
inline constexpr Kinds MarkedDeleted = 8;  // no save writes that
inline constexpr Kinds Torn = 16;          // its length is wrong, or no field begins where one should
inline constexpr Kinds NotShown = 32;      // half a trade: not handed on
}  // namespace damage

struct DamagedFrame {
    std::uint64_t line = 0;        // 1 for the first frame of the file
    std::uint32_t identifier = 0;  // 0: the frame has none
    damage::Kinds kinds = 0;
};

}  // namespace Dravel
