#include "support/ZipFile.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <span>

namespace Dravel {

namespace {

constexpr std::size_t kPiece = 64 * 1024;
constexpr std::uint32_t kLimit = 0xFFFFFFFF;  // stands for "look elsewhere" in every field of 32 bits
constexpr std::uint16_t kCountLimit = 0xFFFF;

constexpr std::uint32_t kEntryMark = 0x04034B50, kRecordMark = 0x02014B50, kEndMark = 0x06054B50;
constexpr std::size_t kEntryLength = 30, kRecordLength = 46, kEndLength = 22;
constexpr std::size_t kCrcInEntry = 14;  // checksum, packed size and size stand together

constexpr std::uint16_t kVersion = 20;  // the first that knows deflate
constexpr std::uint16_t kStored = 0, kDeflated = 8;
constexpr std::uint32_t kEncrypted = 1;  // of the flags
constexpr int kRawWindow = -15;          // deflate without a wrapper

using Piece = std::array<std::uint8_t, kPiece>;

void Put16(std::string& bytes, std::uint32_t value) {
    bytes += static_cast<char>(value & 0xFF);
    bytes += static_cast<char>(value >> 8 & 0xFF);
}
void Put32(std::string& bytes, std::uint32_t value) {
    Put16(bytes, value & 0xFFFF);
    Put16(bytes, value >> 16);
}
std::uint32_t Get16(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint8_t>(bytes[at]) |
           static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes[at + 1])) << 8;
}
std::uint32_t Get32(std::string_view bytes, std::size_t at) {
    return Get16(bytes, at) | Get16(bytes, at + 2) << 16;
}

bool ReadAt(IFile& file, std::uint64_t at, std::size_t count, std::string& bytes) {
    bytes.resize(count);
    std::size_t got = 0;
    return file.Seek(at) && file.Read(bytes.data(), count, got) && got == count;
}

// The year counts from 1980, the seconds in pairs.
std::uint32_t DosTime(const CivilTime& time) {
    const auto date = static_cast<std::uint32_t>((time.year - 1980) << 9 | time.month << 5 | time.day);
    return date << 16 | static_cast<std::uint32_t>(time.hour << 11 | time.minute << 5 | time.second / 2);
}

// What an entry's header and its record in the directory have in common.
void PutCommon(std::string& bytes, const ZipEntry& entry, std::uint32_t dosTime) {
    Put16(bytes, kVersion);
    Put16(bytes, 0);
    Put16(bytes, entry.method);
    Put32(bytes, dosTime);
    Put32(bytes, entry.crc);
    Put32(bytes, entry.packed);
    Put32(bytes, entry.size);
    Put16(bytes, static_cast<std::uint32_t>(entry.name.size()));
    Put16(bytes, 0);
}

// Inflates or deflates piece by piece; what comes out goes to `sink`, which may refuse.
class Stream {
 public:
    enum class Way : std::uint8_t { Pack, Unpack };
    // One that could not be made, for want of memory, refuses what it is fed.
    explicit Stream(Way way) : way_(way) {
        way == Way::Pack
            ? deflateInit2(&zlib_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kRawWindow, 8, Z_DEFAULT_STRATEGY)
            : inflateInit2(&zlib_, kRawWindow);
    }
    ~Stream() { way_ == Way::Pack ? deflateEnd(&zlib_) : inflateEnd(&zlib_); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    // False: it is damaged, the sink refuses, or there are bytes behind the end.
    template <class Sink>
    bool Feed(std::span<std::uint8_t> bytes, bool last, Sink sink) {
        zlib_.next_in = bytes.data();
        zlib_.avail_in = static_cast<uInt>(bytes.size());
        for (bool more = true; more && !ended_; more = zlib_.avail_out == 0) {
            zlib_.next_out = out_.data();
            zlib_.avail_out = static_cast<uInt>(out_.size());
            const int flush = last ? Z_FINISH : Z_NO_FLUSH;
            const int result = way_ == Way::Pack ? deflate(&zlib_, flush) : inflate(&zlib_, Z_NO_FLUSH);
            if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) return false;
            ended_ = result == Z_STREAM_END;
            if (!sink(std::span(out_).first(out_.size() - zlib_.avail_out))) return false;
        }
        return zlib_.avail_in == 0;
    }
    bool Ended() const { return ended_; }

 private:
    Way way_;
    z_stream zlib_{};
    Piece out_;
    bool ended_ = false;
};

// One record of the directory; steps over it. False: it is not whole, or not one that we read.
bool ReadRecord(std::string_view& bytes, std::uint32_t entriesEnd, ZipEntry& entry) {
    if (bytes.size() < kRecordLength || Get32(bytes, 0) != kRecordMark) return false;
    const std::size_t name = Get16(bytes, 28);
    const std::size_t length = kRecordLength + name + Get16(bytes, 30) + Get16(bytes, 32);
    if (bytes.size() < length) return false;
    const bool plain = (Get16(bytes, 8) & kEncrypted) == 0;
    entry.method = static_cast<std::uint16_t>(Get16(bytes, 10));
    entry.crc = Get32(bytes, 16);
    entry.packed = Get32(bytes, 20);
    entry.size = Get32(bytes, 24);
    entry.offset = Get32(bytes, 42);
    entry.name = bytes.substr(kRecordLength, name);
    bytes.remove_prefix(length);
    const bool known = plain && (entry.method == kStored || entry.method == kDeflated);
    return known && std::uint64_t{entry.offset} + kEntryLength + entry.packed <= entriesEnd;
}

// The end mark stands in front of a comment of up to 65,535 bytes.
bool FindEnd(IFile& file, std::uint64_t& at, std::string& end) {
    std::uint64_t size = 0;
    if (!file.Size(size) || size < kEndLength || size >= kLimit) return false;
    const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(size, kEndLength + kCountLimit));
    std::string tail;
    if (!ReadAt(file, size - length, length, tail)) return false;
    for (std::size_t back = kEndLength; back <= length; ++back) {
        const std::size_t place = length - back;
        if (Get32(tail, place) != kEndMark || Get16(tail, place + 20) != back - kEndLength) continue;
        at = size - back;
        end = tail.substr(place, kEndLength);
        return true;
    }
    return false;
}

}  // namespace

bool ReadZipDirectory(IFile& file, ZipDirectory& directory) {
    std::uint64_t endAt = 0;
    std::string end;
    if (!FindEnd(file, endAt, end)) return false;
    const std::uint32_t count = Get16(end, 10), length = Get32(end, 12);
    directory.begin = Get32(end, 16);
    const bool whole = Get32(end, 4) == 0 && Get16(end, 8) == count && count < kCountLimit &&
                       std::uint64_t{directory.begin} + length == endAt;
    if (!whole || !ReadAt(file, directory.begin, length, directory.bytes)) return false;
    directory.entries.assign(std::min<std::size_t>(count, length / kRecordLength), {});
    std::string_view left = directory.bytes;
    for (ZipEntry& entry : directory.entries) {
        if (!ReadRecord(left, directory.begin, entry)) return false;
    }
    return directory.entries.size() == count && left.empty();
}

bool ReadZipEntry(IFile& file, const ZipEntry& entry, const ZipSink& sink) {
    std::string header;
    if (!ReadAt(file, entry.offset, kEntryLength, header) || Get32(header, 0) != kEntryMark) return false;
    const std::uint64_t begin = entry.offset + kEntryLength + Get16(header, 26) + Get16(header, 28);
    if (!file.Seek(begin)) return false;
    Stream stream(Stream::Way::Unpack);
    uLong crc = 0;
    std::uint64_t size = 0;
    const auto take = [&](std::span<const std::uint8_t> bytes) {
        crc = crc32(crc, bytes.data(), static_cast<uInt>(bytes.size()));
        return (size += bytes.size()) <= entry.size &&
               sink({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    };
    Piece piece;
    for (std::uint32_t left = entry.packed; left > 0;) {
        std::size_t got = 0;
        if (!file.Read(piece.data(), std::min<std::size_t>(left, kPiece), got) || got == 0) return false;
        left -= static_cast<std::uint32_t>(got);
        const std::span bytes(piece.data(), got);
        if (!(entry.method == kStored ? take(bytes) : stream.Feed(bytes, false, take))) return false;
    }
    return (entry.method == kStored || stream.Ended()) && size == entry.size && crc == entry.crc;
}

bool ZipChecksum(IFile& file, std::uint32_t& crc, std::uint64_t& size, const ZipPulse& pulse) {
    Piece piece;
    crc = 0;
    size = 0;
    for (std::size_t got = kPiece; got == kPiece; size += got) {
        if (!file.Read(piece.data(), kPiece, got) || (pulse && !pulse())) return false;
        crc = static_cast<std::uint32_t>(crc32(crc, piece.data(), static_cast<uInt>(got)));
    }
    return true;
}

bool ZipWriter::Write(std::string_view bytes) {
    written_ += bytes.size();
    return written_ < kLimit && file_.Write(bytes.data(), bytes.size());
}

bool ZipWriter::Copy(IFile& from, const ZipDirectory& directory) {
    std::string piece;
    for (std::uint64_t at = 0; at < directory.begin; at += piece.size()) {
        const std::uint64_t left = directory.begin - at;
        if (!ReadAt(from, at, static_cast<std::size_t>(std::min<std::uint64_t>(left, kPiece)), piece) ||
            !Write(piece) || !Pulse()) {
            return false;
        }
    }
    directory_ = directory.bytes;
    count_ = directory.entries.size();
    return true;
}

bool ZipWriter::Pack(IFile& from, ZipEntry& entry) {
    Stream stream(Stream::Way::Pack);
    uLong crc = 0;
    std::uint64_t size = 0;
    const std::uint64_t begin = written_;
    const auto sink = [&](std::span<const std::uint8_t> bytes) {
        return Write({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    };
    Piece piece;
    for (bool last = false; !last;) {
        std::size_t got = 0;
        if (!from.Read(piece.data(), kPiece, got)) return false;
        last = got < kPiece;
        crc = crc32(crc, piece.data(), static_cast<uInt>(got));
        if ((size += got) >= kLimit || !stream.Feed({piece.data(), got}, last, sink) || !Pulse())
            return false;
    }
    entry.crc = static_cast<std::uint32_t>(crc);
    entry.size = static_cast<std::uint32_t>(size);
    entry.packed = static_cast<std::uint32_t>(written_ - begin);
    return stream.Ended();
}

bool ZipWriter::Add(std::string_view name, const CivilTime& modified, IFile& from) {
    ZipEntry entry;
    entry.name = name;
    entry.method = kDeflated;
    entry.offset = static_cast<std::uint32_t>(written_);
    std::string header;
    Put32(header, kEntryMark);
    PutCommon(header, entry, DosTime(modified));
    header += name;
    if (name.size() > kCountLimit || !Write(header) || !Pack(from, entry)) return false;

    // Checksum and sizes are known only now.
    std::string sums;
    for (const std::uint32_t value : {entry.crc, entry.packed, entry.size})
        Put32(sums, value);
    if (!file_.Seek(entry.offset + kCrcInEntry) || !file_.Write(sums.data(), sums.size()) ||
        !file_.Seek(written_)) {
        return false;
    }

    Put32(directory_, kRecordMark);
    Put16(directory_, kVersion);
    PutCommon(directory_, entry, DosTime(modified));
    for (int i = 0; i < 5; ++i)  // comment, disk, attributes
        Put16(directory_, 0);
    Put32(directory_, entry.offset);
    directory_ += name;
    ++count_;
    return true;
}

bool ZipWriter::Finish() {
    if (count_ >= kCountLimit) return false;
    const auto begin = static_cast<std::uint32_t>(written_);
    std::string end;
    Put32(end, kEndMark);
    Put32(end, 0);
    Put16(end, static_cast<std::uint32_t>(count_));
    Put16(end, static_cast<std::uint32_t>(count_));
    Put32(end, static_cast<std::uint32_t>(directory_.size()));
    Put32(end, begin);
    Put16(end, 0);
    return Write(directory_) && Write(end) && file_.Flush();
}

}  // namespace Dravel
