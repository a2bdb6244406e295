// Builds one frame of tagged fields.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// How the body of a frame travels.
enum class BodyEncoding : std::uint16_t { Plain = 0, Deflated = 1, Enciphered = 2, EncipheredToo = 100 };

// A frame under construction, shared with the host by layout: the host reads the finished buffer and length
// when the pointer is set, else the working buffer and write position. Buffers come from malloc, the heap
// that both share.
//
// Owned by one thread. Appends return false when the buffer cannot grow; nothing is then written and the
// frame built so far is unchanged, so a caller may go on appending: the frame lacks that field, and readers
// step over what they do not know. The buffer grows by whole pages of 4096 zeroed bytes up to 61440, which
// bounds every frame. What is appended to a deflated or enciphered frame after it was finished does not
// travel.
class CTagMessageWriter {
 public:
    explicit CTagMessageWriter(BodyEncoding encoding = BodyEncoding::Plain);
    // Frame that starts with its message code, as every frame does.
    explicit CTagMessageWriter(std::uint16_t messageCode, BodyEncoding encoding = BodyEncoding::Plain);
    ~CTagMessageWriter();
    CTagMessageWriter(const CTagMessageWriter&) = delete;
    CTagMessageWriter& operator=(const CTagMessageWriter&) = delete;

    // The width of the value must be the one that TagWidth gives for the tag: nothing else tells a reader.
    bool AppendByte(std::uint16_t tag, std::uint8_t value);
    bool Append16(std::uint16_t tag, std::uint16_t value);
    bool Append32(std::uint16_t tag, std::uint32_t value);
    bool Append64(std::uint16_t tag, std::uint64_t value);
    bool AppendDouble(std::uint16_t tag, double value);
    bool Append35001(std::uint32_t value);
    bool Append30002(std::uint64_t value);
    // Length-prefixed; `bytes` may be nullptr when the length is 0.
    bool AppendBytes(std::uint16_t tag, const void* bytes, std::uint16_t length);
    // raw: exactly `limit` bytes are taken from `text` (which must hold them); else the text's length,
    // `limit` at most, so that a text which fills its capacity needs no zero byte. No terminator travels.
    bool AppendText(std::uint16_t tag, const char* text, std::uint16_t limit, bool raw);
    // The text with its closing zero byte.
    bool AppendString(std::uint16_t tag, std::string_view text);
    bool AppendEndMark();

    // Room for `size` bytes of ready-made fields behind what is built, valid until the next call (nullptr
    // when the frame cannot grow so far, it is then unchanged); and the taking over of the first `size` bytes
    // written there, at most what was reserved. For builders that write many fields in one go by
    // FieldBytes.h.
    std::uint8_t* ReserveFields(std::size_t size);
    void CommitFields(std::size_t size);

    // Both finish the frame first: the body length is filled in and the body encoded. The bytes stay the
    // writer's. An empty frame (failed allocation or compression) has length 0. When compression cannot even
    // begin, the frame leaves plain.
    std::uint16_t GetLength();
    const std::uint8_t* GetData();

 private:
    template <typename T>
    bool AppendValue(std::uint16_t tag, T value);
    bool Grow(std::size_t bytes);
    void Finish();
    void FinishDeflated();
    void FinishEnciphered();

    std::uint32_t capacity_ = 0;
    std::uint8_t* working_ = nullptr;
    std::uint16_t finishedLength_ = 0;
    std::uint8_t* finished_ = nullptr;
    std::uint16_t lengthField_ = 8;
    std::uint16_t encoding_ = 0;
    std::uint16_t position_ = 0;
    std::uint16_t headerLength_ = 0;

    friend struct TagMessageWriterLayout;
};

// The offsets that the host was built with.
struct TagMessageWriterLayout {
    using W = CTagMessageWriter;
    static_assert(offsetof(W, capacity_) == 0 && offsetof(W, working_) == 8 &&
                  offsetof(W, finishedLength_) == 16);
    static_assert(offsetof(W, finished_) == 24 && offsetof(W, lengthField_) == 32 &&
                  offsetof(W, encoding_) == 34);
    static_assert(offsetof(W, position_) == 36 && offsetof(W, headerLength_) == 38 && sizeof(W) == 40);
};
