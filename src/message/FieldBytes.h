// The bytes of single fields, written into room that is known to suffice, and of integers anywhere in a
// frame.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Dravel::wire {

static_assert(std::endian::native == std::endian::little,
              "the wire is little-endian, values are copied as they stand");

inline constexpr std::uint8_t kMark = '#';         // in front of every tag
inline constexpr std::size_t kTagSize = 3;         // mark and tag
inline constexpr std::size_t kPrefixedSize = 5;    // mark, tag and the length of a variable value
inline constexpr std::size_t kHeaderSize = 10;     // both header fields
inline constexpr std::size_t kEncodingOffset = 3;  // of the body encoding in the header
inline constexpr std::size_t kLengthOffset = 8;    // of the body length in the header

// Values lie at odd addresses, so they are copied, never cast.
template <typename T>
std::uint8_t* Put(std::uint8_t* at, T value) {
    std::memcpy(at, &value, sizeof(T));
    return at + sizeof(T);
}

template <typename T>
T Get(const std::uint8_t* at) {
    T value;
    std::memcpy(&value, at, sizeof(T));
    return value;
}

// Each returns the first byte behind the field.
inline std::uint8_t* PutTag(std::uint8_t* at, std::uint16_t tag) {
    *at = kMark;
    return Put(at + 1, tag);
}

// `T` must have the width that TagWidth gives for the tag.
template <typename T>
std::uint8_t* PutField(std::uint8_t* at, std::uint16_t tag, T value) {
    return Put(PutTag(at, tag), value);
}

// `bytes` may be nullptr when the length is 0.
inline std::uint8_t* PutBytes(std::uint8_t* at, std::uint16_t tag, const void* bytes, std::uint16_t length) {
    at = PutField(at, tag, length);
    if (length != 0) std::memcpy(at, bytes, length);
    return at + length;
}

}  // namespace Dravel::wire
