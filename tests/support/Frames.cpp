#include "support/Frames.h"

#include <algorithm>

namespace Dravel::Test {

bool TakeValue(CTagMessageReader& reader, Bytes& value) {
    const std::uint32_t width = TagWidth(reader.CurrentTag());
    std::uint16_t length = static_cast<std::uint16_t>(width);
    if (width == kVariableWidth && !reader.Read16(length)) return false;
    value.resize(length);
    return std::all_of(value.begin(), value.end(), [&](std::uint8_t& byte) { return reader.Read8(byte); });
}

Frame Walk(CTagMessageReader& reader) {
    Frame frame{reader.MessageCode(), {}};
    while (reader.NextTag()) {
        Field field{reader.CurrentTag(), {}};
        if (!TakeValue(reader, field.value)) break;
        frame.fields.push_back(std::move(field));
    }
    return frame;
}

Stream WalkAll(const Bytes& bytes) {
    Stream stream;
    while (stream.consumed < bytes.size()) {
        const std::size_t rest = std::min<std::size_t>(bytes.size() - stream.consumed, 65535);
        CTagMessageReader reader(bytes.data() + stream.consumed, static_cast<std::uint16_t>(rest));
        const FrameOpening found = reader.Open();
        stream.consumed += found.consumed;
        if (!found.opened) {
            stream.last = found;
            break;
        }
        stream.frames.push_back(Walk(reader));
    }
    return stream;
}

}  // namespace Dravel::Test
