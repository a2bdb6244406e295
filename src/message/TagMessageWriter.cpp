// Building of a frame: growth of the buffer, the appends, and the body encodings.
#include "message/TagMessageWriter.h"

#include <zlib.h>

#include <cstdlib>
#include <cstring>

#include "message/FieldBytes.h"
#include "message/GrowingBuffer.h"
#include "message/Tags.h"

using namespace Dravel;

namespace {

constexpr std::uint32_t kPage = 4096;
constexpr std::size_t kMaxFrame = 65535;  // lengths and positions are 16-bit

std::size_t LengthUpTo(const char* text, std::size_t limit) {
    const void* end = limit != 0 ? std::memchr(text, 0, limit) : nullptr;
    return end != nullptr ? static_cast<std::size_t>(static_cast<const char*>(end) - text) : limit;
}

// False when memory ran out or the frame would be too long; the buffer is the caller's to free in any case.
bool DeflateBody(z_stream& stream, GrowingBuffer& out) {
    for (;;) {
        if (out.used == out.size && !out.Enlarge()) return false;
        stream.next_out = out.bytes + out.used;
        stream.avail_out = static_cast<uInt>(out.size - out.used);
        const int result = deflate(&stream, Z_FINISH);
        out.used = out.size - stream.avail_out;
        if (result == Z_STREAM_END) return out.used <= kMaxFrame;
        if (result != Z_OK && result != Z_BUF_ERROR) return false;
    }
}

}  // namespace

CTagMessageWriter::CTagMessageWriter(BodyEncoding encoding)
    : encoding_(static_cast<std::uint16_t>(encoding)) {
    working_ = static_cast<std::uint8_t*>(std::calloc(1, kPage));
    if (working_ == nullptr) return;
    capacity_ = kPage;
    std::uint8_t* at = wire::PutField(working_, tag::Header, encoding_);
    wire::PutField(at, tag::BodyLength, std::uint16_t{0});
    lengthField_ = wire::kLengthOffset;
    position_ = headerLength_ = wire::kHeaderSize;
}

CTagMessageWriter::CTagMessageWriter(std::uint16_t messageCode, BodyEncoding encoding)
    : CTagMessageWriter(encoding) {
    Append16(tag::MessageCode, messageCode);
}

CTagMessageWriter::~CTagMessageWriter() {
    std::free(working_);
    std::free(finished_);
}

bool CTagMessageWriter::Grow(std::size_t bytes) {
    if (headerLength_ == 0) return false;  // the first allocation failed: the frame stays empty
    const std::size_t needed = position_ + bytes;
    if (needed <= capacity_) return true;
    // A whole page more than needed, also when the need ends on a page boundary. As 16 pages are one byte too
    // many for a 16-bit length, 15 pages bound every frame.
    const std::size_t capacity = (needed / kPage + 1) * kPage;
    if (capacity > kMaxFrame) return false;
    auto* larger = static_cast<std::uint8_t*>(std::calloc(1, capacity));
    if (larger == nullptr) return false;
    std::memcpy(larger, working_, position_);
    std::free(working_);
    working_ = larger;
    capacity_ = static_cast<std::uint32_t>(capacity);
    return true;
}

std::uint8_t* CTagMessageWriter::ReserveFields(std::size_t size) {
    return size <= kMaxFrame && Grow(size) ? working_ + position_ : nullptr;
}

void CTagMessageWriter::CommitFields(std::size_t size) {
    if (size <= capacity_ - position_) position_ = static_cast<std::uint16_t>(position_ + size);
}

template <typename T>
bool CTagMessageWriter::AppendValue(std::uint16_t tag, T value) {
    if (!Grow(wire::kTagSize + sizeof(T))) return false;
    wire::PutField(working_ + position_, tag, value);
    CommitFields(wire::kTagSize + sizeof(T));
    return true;
}

bool CTagMessageWriter::AppendByte(std::uint16_t tag, std::uint8_t value) {
    return AppendValue(tag, value);
}
bool CTagMessageWriter::Append16(std::uint16_t tag, std::uint16_t value) {
    return AppendValue(tag, value);
}
bool CTagMessageWriter::Append32(std::uint16_t tag, std::uint32_t value) {
    return AppendValue(tag, value);
}
bool CTagMessageWriter::Append64(std::uint16_t tag, std::uint64_t value) {
    return AppendValue(tag, value);
}
bool CTagMessageWriter::AppendDouble(std::uint16_t tag, double value) {
    return AppendValue(tag, value);
}
bool CTagMessageWriter::Append35001(std::uint32_t value) {
    return Append32(tag::Value35001, value);
}
bool CTagMessageWriter::Append30002(std::uint64_t value) {
    return Append64(tag::EntryOrReply, value);
}

bool CTagMessageWriter::AppendBytes(std::uint16_t tag, const void* bytes, std::uint16_t length) {
    if (!Grow(wire::kPrefixedSize + length)) return false;
    wire::PutBytes(working_ + position_, tag, bytes, length);
    CommitFields(wire::kPrefixedSize + length);
    return true;
}

bool CTagMessageWriter::AppendText(std::uint16_t tag, const char* text, std::uint16_t limit, bool raw) {
    return AppendBytes(tag, text, raw ? limit : static_cast<std::uint16_t>(LengthUpTo(text, limit)));
}

bool CTagMessageWriter::AppendString(std::uint16_t tag, std::string_view text) {
    const std::size_t length = text.size() + 1;
    if (length > kMaxFrame || !Grow(wire::kPrefixedSize + length)) return false;
    std::uint8_t* at = wire::PutField(working_ + position_, tag, static_cast<std::uint16_t>(length));
    std::memcpy(at, text.data(), text.size());
    at[text.size()] = 0;
    CommitFields(wire::kPrefixedSize + length);
    return true;
}

bool CTagMessageWriter::AppendEndMark() {
    if (!Grow(wire::kTagSize)) return false;
    wire::PutTag(working_ + position_, tag::EndMark);
    CommitFields(wire::kTagSize);
    return true;
}

void CTagMessageWriter::Finish() {
    if (working_ == nullptr) return;
    const auto bodyLength = static_cast<std::uint16_t>(position_ - headerLength_);
    wire::Put(working_ + lengthField_, bodyLength);
    switch (static_cast<BodyEncoding>(encoding_)) {
        case BodyEncoding::Deflated:
            FinishDeflated();
            break;
        case BodyEncoding::Enciphered:
            if (bodyLength != 0) FinishEnciphered();
            break;
        default:
            std::free(finished_);
            finished_ = nullptr;
    }
}

void CTagMessageWriter::FinishDeflated() {
    z_stream stream{};
    auto* buffer = static_cast<std::uint8_t*>(std::malloc(position_));
    if (buffer == nullptr || deflateInit(&stream, Z_DEFAULT_COMPRESSION) != Z_OK) {
        std::free(buffer);
        encoding_ =
            static_cast<std::uint16_t>(BodyEncoding::Plain);  // uncompressed is better than not at all
        wire::Put(working_ + wire::kEncodingOffset, encoding_);
        return;
    }
    std::memcpy(buffer, working_, headerLength_);
    stream.next_in = working_ + headerLength_;
    stream.avail_in = static_cast<uInt>(position_ - headerLength_);
    GrowingBuffer output{buffer, position_, headerLength_, capacity_};
    const bool whole = DeflateBody(stream, output);
    deflateEnd(&stream);
    finished_ = output.bytes;
    finishedLength_ = whole ? static_cast<std::uint16_t>(output.used) : std::uint16_t{0};
    if (whole) wire::Put(finished_ + lengthField_, static_cast<std::uint16_t>(output.used - headerLength_));
}

// No cipher context is ever installed, so the body leaves as it is.
void CTagMessageWriter::FinishEnciphered() {
    finished_ = static_cast<std::uint8_t*>(std::malloc(position_));
    if (finished_ == nullptr) return;
    std::memcpy(finished_, working_, position_);
    finishedLength_ = position_;
}

std::uint16_t CTagMessageWriter::GetLength() {
    if (finished_ == nullptr) Finish();
    return finished_ != nullptr ? finishedLength_ : position_;
}

const std::uint8_t* CTagMessageWriter::GetData() {
    if (finished_ == nullptr) Finish();
    return finished_ != nullptr ? finished_ : working_;
}
