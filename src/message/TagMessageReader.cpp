// Reading of a frame: the hunt for its header, the decoding of its body, and the walk over its fields.
#include "message/TagMessageReader.h"

#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "message/FieldBytes.h"
#include "message/GrowingBuffer.h"
#include "message/TagMessageWriter.h"
#include "message/TagReceiveQueue.h"
#include "message/Tags.h"

using namespace Dravel;

namespace {

constexpr std::size_t kMaxBody = 65535;  // what the 16-bit read position can walk

// Every range of tags begins one behind a multiple of 5000; by the number of that multiple, tag 0 by itself.
constexpr std::uint32_t kTagsInARange = 5000;
constexpr std::uint32_t kWidths[] = {0, 1, 1, 2, 2, 4, 4, 8, 4, 8, 16, 8, kVariableWidth, kVariableWidth, 0};
static_assert((65535 + kTagsInARange - 1) / kTagsInARange + 1 == std::size(kWidths));

bool IsHeader(const std::uint8_t* at) {
    return at[0] == wire::kMark && at[5] == wire::kMark && wire::Get<std::uint16_t>(at + 1) == tag::Header &&
           wire::Get<std::uint16_t>(at + 6) == tag::BodyLength;
}

// Offset of the first header; where there is none, of the first byte that could still begin one (size - 9).
std::size_t FindHeader(const std::uint8_t* data, std::size_t size) {
    const std::size_t end = size - (wire::kHeaderSize - 1);
    std::size_t at = 0;
    while (at < end) {
        const void* mark = std::memchr(data + at, wire::kMark, end - at);
        if (mark == nullptr) return end;
        at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(mark) - data);
        if (IsHeader(data + at)) return at;
        ++at;
    }
    return end;
}

// False when the stream is damaged, ends early, or is larger than a body may be.
bool InflateBody(z_stream& stream, GrowingBuffer& out) {
    while (out.bytes != nullptr && out.used <= kMaxBody) {
        stream.next_out = out.bytes + out.used;
        stream.avail_out = static_cast<uInt>(out.size - out.used);
        const int result = inflate(&stream, Z_NO_FLUSH);
        out.used = out.size - stream.avail_out;
        if (result == Z_STREAM_END) return out.used <= kMaxBody;
        const bool full = stream.avail_out == 0 && (result == Z_OK || result == Z_BUF_ERROR);
        if (!full || !out.Enlarge()) return false;
    }
    return false;
}

}  // namespace

std::uint32_t TagWidth(std::uint16_t tag) {
    return kWidths[(tag + kTagsInARange - 1) / kTagsInARange];
}

CTagMessageReader::CTagMessageReader(const void* data, std::uint16_t length)
    : data_(static_cast<const std::uint8_t*>(data)), length_(data != nullptr ? length : std::uint16_t{0}) {}

CTagMessageReader::CTagMessageReader(CTagReceiveQueue& queue)
    : CTagMessageReader(queue.Unread(),
                        static_cast<std::uint16_t>(std::min<std::uint32_t>(queue.Count(), 65535))) {
    Open();
}

CTagMessageReader::~CTagMessageReader() {
    std::free(decoded_);
}

FrameOpening CTagMessageReader::Open() {
    FrameOpening found;
    position_ = wire::kHeaderSize;
    if (length_ < wire::kHeaderSize) return found;
    const std::size_t skipped = FindHeader(data_, length_);
    found.consumed = static_cast<std::uint32_t>(skipped);
    const std::size_t available = length_ - skipped;
    if (available < wire::kHeaderSize) return found;
    const std::uint8_t* frame = data_ + skipped;
    const std::uint32_t frameLength = wire::Get<std::uint16_t>(frame + wire::kLengthOffset) + 10u;
    if (frameLength > available) {
        found.needed = frameLength;
        return found;
    }
    found.consumed += frameLength;
    data_ = frame;
    length_ = static_cast<std::uint16_t>(frameLength);
    encoding_ = wire::Get<std::uint16_t>(frame + wire::kEncodingOffset);
    found.opened = Decode() && NextTag() && tag_ == tag::MessageCode && Read16(messageCode_);
    return found;
}

// Enciphered bodies are refused: no cipher context is ever installed.
bool CTagMessageReader::Decode() {
    if (encoding_ == static_cast<std::uint16_t>(BodyEncoding::Plain)) return true;
    return encoding_ == static_cast<std::uint16_t>(BodyEncoding::Deflated) && Inflate();
}

bool CTagMessageReader::Inflate() {
    const std::size_t size = 2 * std::size_t{length_};
    GrowingBuffer output{static_cast<std::uint8_t*>(std::malloc(size)), size, 0, length_};
    z_stream stream{};
    stream.next_in = const_cast<std::uint8_t*>(data_) + wire::kHeaderSize;
    stream.avail_in = static_cast<uInt>(length_ - wire::kHeaderSize);
    const bool whole = inflateInit(&stream) == Z_OK && InflateBody(stream, output);
    inflateEnd(&stream);
    std::free(whole ? decoded_ : output.bytes);
    if (!whole) return false;
    decoded_ = output.bytes;
    decodedLength_ = static_cast<std::uint16_t>(output.used);
    data_ = decoded_;
    position_ = 0;
    length_ = decodedLength_;
    return true;
}

bool CTagMessageReader::NextTag() {
    if (AtEnd()) return false;
    const std::uint8_t* next = data_ + position_;  // the mark, unless a value was read short
    const void* mark = *next == wire::kMark ? next : std::memchr(next, wire::kMark, Remaining());
    if (mark != nullptr) {
        const auto at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(mark) - data_);
        position_ = static_cast<std::uint16_t>(at + 1);
        if (Read16(tag_)) return true;
    }
    position_ = length_;
    return false;
}

bool CTagMessageReader::SkipValue() {
    std::uint32_t width = TagWidth(tag_);
    if (width == kVariableWidth) {
        // A length that is cut off counts as 0 and the call succeeds: deliberate, the next NextTag ends the
        // walk.
        std::uint16_t length = 0;
        Read16(length);
        width = length;
    }
    if (Remaining() < width) return false;
    position_ = static_cast<std::uint16_t>(position_ + width);
    return true;
}

template <typename T>
bool CTagMessageReader::ReadValue(T& value) {
    if (Remaining() < sizeof(T)) return false;
    value = wire::Get<T>(data_ + position_);
    position_ = static_cast<std::uint16_t>(position_ + sizeof(T));
    return true;
}

bool CTagMessageReader::Read8(std::uint8_t& value) {
    return ReadValue(value);
}
bool CTagMessageReader::Read16(std::uint16_t& value) {
    return ReadValue(value);
}
bool CTagMessageReader::Read32(std::uint32_t& value) {
    return ReadValue(value);
}
bool CTagMessageReader::Read64(std::uint64_t& value) {
    return ReadValue(value);
}
bool CTagMessageReader::ReadDouble(double& value) {
    return ReadValue(value);
}

bool CTagMessageReader::ReadBytes(void* into, std::uint16_t capacity) {
    if (Remaining() < sizeof(std::uint16_t)) return false;
    const auto length = wire::Get<std::uint16_t>(data_ + position_);
    const std::uint16_t copied = capacity != 0 ? std::min(capacity, length) : length;
    if (Remaining() < sizeof(length) + copied) return false;
    const std::uint8_t* value = data_ + position_ + sizeof(length);
    auto* to = static_cast<std::uint8_t*>(into);
    if (copied != 0) std::memcpy(to, value, copied);
    if (capacity > copied) to[copied] = 0;
    position_ = static_cast<std::uint16_t>(position_ + sizeof(length) + copied);
    return true;
}

bool CTagMessageReader::ReadText(std::string& text) {
    if (Remaining() < sizeof(std::uint16_t)) return false;
    const auto length = wire::Get<std::uint16_t>(data_ + position_);
    if (Remaining() < sizeof(length) + length) return false;
    const auto* value = reinterpret_cast<const char*>(data_ + position_ + sizeof(length));
    text.assign(value, std::find(value, value + length, '\0'));
    position_ = static_cast<std::uint16_t>(position_ + sizeof(length) + length);
    return true;
}
