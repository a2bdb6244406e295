// Frames in tests: built as byte blocks of exactly their size, and walked back into lists of fields.
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "message/TagMessageReader.h"
#include "message/TagMessageWriter.h"
#include "message/Tags.h"

namespace Dravel::Test {

using Bytes = std::vector<std::uint8_t>;

struct Field {
    std::uint16_t tag;
    Bytes value;  // as it travels, the length of a variable value left out
    bool operator==(const Field&) const = default;
};

struct Frame {
    std::uint16_t code = 0;
    std::vector<Field> fields;
    bool operator==(const Frame&) const = default;
};

// All frames of a stream, up to the first place where no more could be opened.
struct Stream {
    std::vector<Frame> frames;
    std::size_t consumed = 0;
    FrameOpening last;  // the opening that failed; default when the stream was used up
};

inline Bytes Finished(CTagMessageWriter& writer) {
    const std::uint8_t* data = writer.GetData();
    return Bytes(data, data + writer.GetLength());
}

inline Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

inline Bytes Text(std::string_view text) {
    return Bytes(text.begin(), text.end());
}

template <typename T>
Bytes Little(T value) {
    Bytes bytes(sizeof(T));
    std::memcpy(bytes.data(), &value, sizeof(T));
    return bytes;
}

// The bytes of one field, and of a plain frame around fields, put together without the writer.
inline Bytes RawField(std::uint16_t tag, const Bytes& value) {
    const bool variable = TagWidth(tag) == kVariableWidth;
    return Text("#") + Little(tag) + (variable ? Little(static_cast<std::uint16_t>(value.size())) : Bytes()) +
           value;
}

inline Bytes RawFrame(const Bytes& body, std::uint16_t encoding = 0) {
    return RawField(1, Little(encoding)) + RawField(10001, Little(static_cast<std::uint16_t>(body.size()))) +
           body;
}

inline Bytes RawFrame(std::uint16_t code, std::initializer_list<Field> fields) {
    Bytes body = RawField(10002, Little(code));
    for (const Field& field : fields) {
        body = body + RawField(field.tag, field.value);
    }
    return RawFrame(body);
}

// The current value; false when it is cut off.
bool TakeValue(CTagMessageReader& reader, Bytes& value);
// The fields behind the message code of an opened frame; a value that is cut off ends them.
Frame Walk(CTagMessageReader& reader);
Stream WalkAll(const Bytes& bytes);

}  // namespace Dravel::Test
