#include "records/JournalFrames.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "message/FieldBytes.h"
#include "message/TagMessageReader.h"
#include "records/TradeFrame.h"

namespace Dravel {

namespace {

using Byte = std::uint8_t;

constexpr std::size_t kCodeOffset = wire::kHeaderSize + wire::kTagSize;
constexpr std::size_t kNumberOffset = kCodeOffset + 2 + wire::kTagSize;
constexpr std::size_t kValue64 = wire::kTagSize + 8;  // a field of 8 bytes
// What every frame has: header, code, number and time in front, the checksum behind.
constexpr std::size_t kShell = wire::kHeaderSize + wire::kTagSize + 2 + 3 * kValue64;
constexpr std::size_t kMostText = 1800;         // bytes of a name or a cell
constexpr std::size_t kMostIdentifiers = 8000;  // in one frame

Byte* PutText(Byte* at, tag::Tag tag, std::string_view text) {
    const auto length = static_cast<std::uint16_t>(std::min(text.size(), kMostText));
    return wire::PutBytes(at, tag, text.data(), length);
}

Byte* PutSource(Byte* at, const ChangeSource& source) {
    at = wire::PutField(at, tag::ChangeKind, static_cast<Byte>(source.kind));
    if (!source.name.empty()) at = PutText(at, tag::ChangeName, source.name);
    return source.number == 0 ? at : wire::PutField(at, tag::ChangeNumber, source.number);
}
std::size_t RoomOf(const ChangeSource& source) {
    return 4 + wire::kPrefixedSize + std::min(source.name.size(), kMostText) + 7;
}

Byte* PutSum(Byte* at, const FileSum& sum) {
    at = wire::PutField(at, tag::FileLength, sum.length);
    return wire::PutField(at, tag::FileChecksum, sum.checksum);
}

// `fields` writes what is the frame's own and returns the byte behind it; it needs at most `room` bytes.
template <class Fields>
void AppendFrame(JournalBuffer& into, msg::Code code, std::int64_t time, std::size_t room,
                 const Fields& fields) {
    Byte* const frame = into.Room(kShell + room);
    Byte* at = wire::PutField(frame, tag::Header, std::uint16_t{0});
    at = wire::PutField(at, tag::BodyLength, std::uint16_t{0});
    at = wire::PutField(at, tag::MessageCode, code);
    at = wire::PutField(at, tag::FrameNumber, std::uint64_t{0});
    at = fields(wire::PutField(at, tag::FrameTime, time));
    at = wire::PutField(at, tag::FrameChecksum, std::uint64_t{0});
    const auto length = static_cast<std::size_t>(at - frame);
    wire::Put(frame + wire::kLengthOffset, static_cast<std::uint16_t>(length - wire::kHeaderSize));
    into.Commit(length);
}

bool TakeCell(CTagMessageReader& frame, DraftTexts& draft) {
    const std::size_t cell = static_cast<std::size_t>(frame.CurrentTag()) - tag::DraftCell;
    if (frame.CurrentTag() < tag::DraftCell || cell >= kDraftCells) return false;
    draft.set.set(cell);
    return frame.ReadText(draft.cells[cell]);
}

void ReadIdentifiers(CTagMessageReader& frame, std::vector<std::uint32_t>& identifiers) {
    std::vector<Byte> bytes(65535);
    const std::size_t before = frame.Unread().size();
    if (!frame.ReadBytes(bytes.data(), 0)) return;
    const std::size_t length = before - frame.Unread().size() - 2;
    for (std::size_t at = 0; at + 4 <= length; at += 4)
        identifiers.push_back(wire::Get<std::uint32_t>(&bytes[at]));
}

void TakeOwnField(CTagMessageReader& frame, JournalEntry& entry) {
    std::uint64_t wide = 0;
    std::uint8_t kind = 0;
    switch (frame.CurrentTag()) {
        case tag::FrameNumber:
            frame.Read64(entry.number);
            break;
        case tag::FrameTime:
            if (frame.Read64(wide)) entry.time = static_cast<std::int64_t>(wide);
            break;
        case tag::JournalID:
            frame.Read64(entry.head.id);
            break;
        case tag::FileLength:
            frame.Read64(entry.head.book.length);
            break;
        case tag::FileChecksum:
            frame.Read64(entry.head.book.checksum);
            break;
        case tag::KeptAside:
            frame.Read32(entry.head.keptAside);
            break;
        case tag::ChangeKind:
            if (frame.Read8(kind)) entry.source.kind = static_cast<ChangeKind>(kind);
            break;
        case tag::ChangeName:
            frame.ReadText(entry.source.name);
            break;
        case tag::ChangeNumber:
            frame.Read32(entry.source.number);
            break;
        case tag::RowAbove:
            frame.Read32(entry.above);
            break;
        case tag::Identifiers:
            ReadIdentifiers(frame, entry.identifiers);
            break;
        case tag::DraftID:
            frame.Read32(entry.draft.id);
            break;
        case tag::DraftTrade:
            frame.Read32(entry.draft.trade);
            break;
        default:
            if (!TakeCell(frame, entry.draft)) frame.SkipValue();
    }
}

}  // namespace

std::uint8_t* JournalBuffer::Room(std::size_t bytes) {
    if (pieces_.empty() || ImageMemory::kPieceSize - pieces_.back().used < bytes)
        pieces_.push_back({memory_->Take()});
    return pieces_.back().bytes.get() + pieces_.back().used;
}

void JournalBuffer::Commit(std::size_t bytes) {
    pieces_.back().used += bytes;
    bytes_ += bytes;
}

void JournalBuffer::Take(JournalBuffer& other) {
    if (Empty()) Clear();
    for (PieceOfFrames& piece : other.pieces_)
        pieces_.push_back(std::move(piece));
    bytes_ += std::exchange(other.bytes_, 0);
    other.pieces_.clear();
}

void JournalBuffer::Copy(std::span<const std::uint8_t> frame) {
    std::memcpy(Room(frame.size()), frame.data(), frame.size());
    Commit(frame.size());
}

void JournalBuffer::Clear() noexcept {
    for (PieceOfFrames& piece : pieces_)
        memory_->Give(std::move(piece.bytes));
    pieces_.clear();
    bytes_ = 0;
}

std::size_t JournalBuffer::LengthAt(const std::uint8_t* frame) {
    return wire::kHeaderSize + wire::Get<std::uint16_t>(frame + wire::kLengthOffset);
}

void AppendHead(JournalBuffer& into, std::int64_t time, const JournalHead& head) {
    AppendFrame(into, msg::JournalHead, time, 3 * kValue64 + 7, [&](Byte* at) {
        at = PutSum(wire::PutField(at, tag::JournalID, head.id), head.book);
        return wire::PutField(at, tag::KeptAside, head.keptAside);
    });
}

void AppendPut(JournalBuffer& into, std::int64_t time, const TradeRecord& trade, std::uint32_t above,
               const ChangeSource& source) {
    AppendFrame(into, msg::JournalPut, time, RoomOf(source) + 7 + kMaxTradeFields, [&](Byte* at) {
        at = wire::PutField(PutSource(at, source), tag::RowAbove, above);
        return PutTradeFields(at, trade);
    });
}

void AppendDeleted(JournalBuffer& into, std::int64_t time, std::span<const std::uint32_t> identifiers,
                   const ChangeSource& source) {
    while (!identifiers.empty()) {
        const auto part = identifiers.first(std::min(identifiers.size(), kMostIdentifiers));
        AppendFrame(into, msg::JournalDeleted, time, RoomOf(source) + wire::kPrefixedSize + part.size_bytes(),
                    [&](Byte* at) {
                        return wire::PutBytes(PutSource(at, source), tag::Identifiers, part.data(),
                                              static_cast<std::uint16_t>(part.size_bytes()));
                    });
        identifiers = identifiers.subspan(part.size());
    }
}

void AppendMoved(JournalBuffer& into, std::int64_t time, std::uint32_t identifier, std::uint32_t above) {
    AppendFrame(into, msg::JournalMoved, time, wire::kPrefixedSize + 4 + 7, [&](Byte* at) {
        at = wire::PutBytes(at, tag::Identifiers, &identifier, sizeof identifier);
        return wire::PutField(at, tag::RowAbove, above);
    });
}

void AppendDraft(JournalBuffer& into, std::int64_t time, const DraftTexts& draft) {
    std::size_t room = 2 * 7;
    for (const std::string& cell : draft.cells)
        room += wire::kPrefixedSize + std::min(cell.size(), kMostText);
    AppendFrame(into, msg::JournalDraft, time, room, [&](Byte* at) {
        at = wire::PutField(at, tag::DraftID, draft.id);
        at = wire::PutField(at, tag::DraftTrade, draft.trade);
        for (std::size_t i = 0; i < kDraftCells; ++i) {
            if (draft.set.test(i))
                at = PutText(at, static_cast<tag::Tag>(tag::DraftCell + i), draft.cells[i]);
        }
        return at;
    });
}

void AppendDraftGone(JournalBuffer& into, std::int64_t time, std::uint32_t id) {
    AppendFrame(into, msg::JournalDraftGone, time, 7,
                [&](Byte* at) { return wire::PutField(at, tag::DraftID, id); });
}

void AppendMark(JournalBuffer& into, std::int64_t time) {
    AppendFrame(into, msg::JournalMark, time, 0, [](Byte* at) { return at; });
}

void AppendMarkFile(JournalBuffer& into, std::int64_t time, const FileSum& book) {
    AppendFrame(into, msg::JournalMarkFile, time, 2 * kValue64, [&](Byte* at) { return PutSum(at, book); });
}

void SealFrame(std::span<std::uint8_t> frame, std::uint64_t number) {
    wire::Put(frame.data() + kNumberOffset, number);
    wire::Put(frame.data() + frame.size() - 8, Checksum(frame.data(), frame.size() - 8));
}

msg::Code CodeOf(std::span<const std::uint8_t> frame) {
    return wire::Get<msg::Code>(frame.data() + kCodeOffset);
}

std::uint64_t NumberOf(std::span<const std::uint8_t> frame) {
    return wire::Get<std::uint64_t>(frame.data() + kNumberOffset);
}

std::size_t SoundFrame(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < kShell) return 0;
    const Byte* at = bytes.data();
    if (at[0] != wire::kMark || wire::Get<tag::Tag>(at + 1) != tag::Header || at[5] != wire::kMark ||
        wire::Get<tag::Tag>(at + 6) != tag::BodyLength)
        return 0;
    const std::size_t length = wire::kHeaderSize + wire::Get<std::uint16_t>(at + wire::kLengthOffset);
    if (length < kShell || length > bytes.size()) return 0;
    const msg::Code code = CodeOf(bytes);
    if (code < msg::JournalHead || code > msg::JournalLast) return 0;
    return wire::Get<std::uint64_t>(at + length - 8) == Checksum(at, length - 8) ? length : 0;
}

void ReadJournalFrame(std::span<const std::uint8_t> frame, JournalEntry& entry) {
    entry = {};
    CTagMessageReader reader(frame.data(), static_cast<std::uint16_t>(frame.size()));
    if (!reader.Open().opened) return;
    entry.code = reader.MessageCode();
    while (reader.NextTag()) {
        if (entry.code != msg::JournalPut || !TakeTradeField(reader, entry.record))
            TakeOwnField(reader, entry);
    }
}

}  // namespace Dravel
