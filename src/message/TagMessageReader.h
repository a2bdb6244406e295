// Finds, checks, decodes and walks one frame of tagged fields.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

class CTagReceiveQueue;

// Bytes of a value by its tag; kVariableWidth: a 16-bit length, then that many bytes.
inline constexpr std::uint32_t kVariableWidth = 0xFFFFFFFF;
std::uint32_t TagWidth(std::uint16_t tag);

// What opening a frame found.
struct FrameOpening {
    bool opened = false;
    // Bytes of the input that are dealt with, strays in front of the header included.
    std::uint32_t consumed = 0;
    // Whole length of an incomplete frame (from its header on), else 0. Up to 65545, although no reader can
    // be given more than 65535 bytes: a header that announces more is not one of a writer's.
    std::uint32_t needed = 0;
};

// A frame being read, shared with the host by layout. Borrows the bytes, which must outlive it; inflated
// bytes are its own (malloc). Owned by one thread. No operation reads past the given length, whatever the
// bytes are.
class CTagMessageReader {
 public:
    CTagMessageReader(const void* data, std::uint16_t length);
    // The unread bytes of the queue, the first 65535 at most; opens at once (message code 0: nothing opened).
    // Nothing may be appended to the queue while the reader lives, as growing moves its bytes. Consumes
    // nothing.
    explicit CTagMessageReader(CTagReceiveQueue& queue);
    ~CTagMessageReader();
    CTagMessageReader(const CTagMessageReader&) = delete;
    CTagMessageReader& operator=(const CTagMessageReader&) = delete;

    // Hunts for a header, checks that the frame is whole, decodes its body and reads its message code.
    // Enciphered bodies, unknown encodings, damaged streams and bodies that inflate to more than 65535 bytes
    // are refused.
    FrameOpening Open();
    std::uint16_t MessageCode() const { return messageCode_; }
    std::uint16_t CurrentTag() const { return tag_; }
    bool AtEnd() const { return position_ >= length_; }
    bool Plain() const { return encoding_ == 0; }
    // Bytes of the frame as read: header and body of a plain one, the inflated body of another.
    std::uint16_t Length() const { return length_; }
    // The bytes not read yet, and the stepping over the first of them (`bytes` of them are there): for
    // readers that take many fields in one go.
    std::span<const std::uint8_t> Unread() const { return {data_ + length_ - Remaining(), Remaining()}; }
    void Step(std::size_t bytes) { position_ = static_cast<std::uint16_t>(position_ + bytes); }

    // Finds the next field mark from the read position on and makes its tag current. False at the end and
    // when a mark has fewer than two bytes behind it: the current tag stays and the read position becomes the
    // length.
    bool NextTag();
    // Steps over the current tag's value by its width. False when the value runs past the end: the position
    // stays in front of the value (behind the length of a variable one).
    bool SkipValue();

    // Bounds-checked: false, without moving, when fewer bytes remain.
    bool Read8(std::uint8_t& value);
    bool Read16(std::uint16_t& value);
    bool Read32(std::uint32_t& value);
    bool Read64(std::uint64_t& value);
    bool ReadDouble(double& value);
    // Copies a length-prefixed value into a buffer of `capacity` bytes (0: the whole value, `into` must hold
    // 65535) and puts a zero byte behind it when there is room. A longer value leaves its tail unread: the
    // next NextTag hunts on from there. Deliberate, the wire has always been read so.
    bool ReadBytes(void* into, std::uint16_t capacity);
    // The length-prefixed text up to its first zero byte; moves past the whole value.
    bool ReadText(std::string& text);

 private:
    // The host may hand over a reader of its own making: the position need not lie within the length.
    std::size_t Remaining() const { return AtEnd() ? 0u : static_cast<std::size_t>(length_ - position_); }
    bool Decode();
    bool Inflate();
    template <typename T>
    bool ReadValue(T& value);

    std::uint16_t tag_ = 0;
    std::uint16_t messageCode_ = 0;
    const std::uint8_t* data_ = nullptr;
    std::uint8_t* decoded_ = nullptr;
    std::uint16_t encoding_ = 0;
    std::uint16_t position_ = 0;
    std::uint16_t length_ = 0;
    std::uint16_t decodedLength_ = 0;

    friend struct TagMessageReaderLayout;
};

// The offsets that the host was built with.
struct TagMessageReaderLayout {
    using R = CTagMessageReader;
    static_assert(offsetof(R, tag_) == 0 && offsetof(R, messageCode_) == 2 && offsetof(R, data_) == 8);
    static_assert(offsetof(R, decoded_) == 16 && offsetof(R, encoding_) == 24 &&
                  offsetof(R, position_) == 26);
    static_assert(offsetof(R, length_) == 28 && offsetof(R, decodedLength_) == 30 && sizeof(R) == 32);
};
