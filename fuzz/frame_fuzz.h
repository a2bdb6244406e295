// Opens whatever frames the bytes hold and walks each with every kind of read.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>

#include "fuzz/FuzzCheck.h"
#include "message/TagMessageReader.h"
#include "message/TagReceiveQueue.h"

namespace Dravel::Fuzz {

using TakeField = void (*)(CTagMessageReader&);

template <std::uint16_t Capacity>
void TakeBytes(CTagMessageReader& reader) {
    static std::uint8_t into[Capacity != 0 ? Capacity : 65535];
    into[0] = 0xA5;
    if (!reader.ReadBytes(into, Capacity)) Require(into[0] == 0xA5, "a failed read writes nothing");
}

inline constexpr TakeField kTakes[] = {
    [](CTagMessageReader& reader) { reader.SkipValue(); },
    [](CTagMessageReader& reader) {
        std::uint8_t value;
        reader.Read8(value);
    },
    [](CTagMessageReader& reader) {
        std::uint16_t value;
        reader.Read16(value);
    },
    [](CTagMessageReader& reader) {
        std::uint32_t value;
        reader.Read32(value);
    },
    [](CTagMessageReader& reader) {
        std::uint64_t value;
        reader.Read64(value);
    },
    [](CTagMessageReader& reader) {
        double value;
        reader.ReadDouble(value);
    },
    [](CTagMessageReader& reader) {
        std::string value;
        reader.ReadText(value);
    },
    TakeBytes<1>,
    TakeBytes<48>,
    TakeBytes<0>,
};

// Takes the fields in turn by each kind, beginning with `first`; or all by the first kind, which steps over
// them.
inline FrameOpening WalkOver(const std::uint8_t* data, std::uint16_t length, bool inTurn, std::size_t first) {
    CTagMessageReader reader(data, length);
    const FrameOpening found = reader.Open();
    std::size_t fields = 0;
    while (reader.NextTag()) {
        kTakes[inTurn ? (first + fields) % std::size(kTakes) : 0](reader);
        Require(++fields <= 65535 / 3, "a walk ends");
    }
    Require(reader.AtEnd(), "a walk ends at the end");
    return found;
}

inline void FuzzFrame(const std::uint8_t* data, std::size_t size) {
    while (size > 0) {
        const auto length = static_cast<std::uint16_t>(std::min<std::size_t>(size, 65535));
        WalkOver(data, length, true, size);
        const FrameOpening found = WalkOver(data, length, false, 0);
        Require(found.consumed <= length, "no more is consumed than was given");
        Require(found.needed == 0 || found.needed > length - found.consumed, "more is needed than is there");
        Require(!found.opened || found.consumed >= 15, "a frame has a header and a message code");

        CTagReceiveQueue queue(16, true);
        queue.Append(data, length);
        Require((CTagMessageReader(queue).MessageCode() != 0) <= found.opened,
                "a queue reads as its bytes do");
        if (found.consumed == 0) return;
        data += found.consumed;
        size -= found.consumed;
    }
}

}  // namespace Dravel::Fuzz
