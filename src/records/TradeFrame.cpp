// The field table is unrolled at compile time: every field gets a piece of code of its own, with its tag,
// offset and capacity as constants.
#include "records/TradeFrame.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "message/FieldBytes.h"
#include "records/CodeTables.h"
#include "records/FieldIndex.h"
#include "records/StoredShape.h"

namespace Dravel {

namespace {

using Byte = std::uint8_t;

// Length of a text that ends at a zero byte or its capacity, eight bytes at a time. The last step overlaps
// the one before it.
template <std::size_t Capacity>
inline std::size_t TextLength(const Byte* text) {
    static_assert(Capacity >= 8);
    constexpr std::uint64_t kOnes = 0x0101010101010101, kHighs = 0x8080808080808080;
    for (std::size_t at = 0;; at = std::min(at + 8, Capacity - 8)) {
        const auto word = wire::Get<std::uint64_t>(text + at);
        const std::uint64_t zeros = (word - kOnes) & ~word & kHighs;  // the lowest bit set is exact
        if (zeros) return at + static_cast<std::size_t>(std::countr_zero(zeros)) / 8;
        if (at == Capacity - 8) return Capacity;
    }
}

// Texts are copied with their whole capacity, which is a constant; what is too much is overwritten by the
// next field.
template <std::size_t Index>
inline Byte* PutField(Byte* at, const Byte* record) {
    constexpr TradeField field = kTradeFields[Index];
    at = wire::PutTag(at, field.tag);
    if constexpr (field.kind == FieldKind::Text) {
        const std::size_t length = TextLength<field.capacity>(record + field.offset);
        at = wire::Put(at, static_cast<std::uint16_t>(length));
        std::memcpy(at, record + field.offset, field.capacity);
        return at + length;
    } else {
        std::memcpy(at, record + field.offset, field.capacity);
        return at + field.capacity;
    }
}

template <std::size_t... Index>
inline Byte* PutFields(Byte* at, const TradeRecord& record, std::index_sequence<Index...>) {
    const Byte* bytes = reinterpret_cast<const Byte*>(&record);
    ((at = PutField<Index>(at, bytes)), ...);
    return at;
}

Byte* PutFields(Byte* at, const TradeRecord& record) {
    return PutFields(at, record, std::make_index_sequence<kTradeFields.size()>());
}

Byte* PutHead(Byte* at, msg::Code code) {
    at = wire::PutField(at, tag::Header, std::uint16_t{0});
    at = wire::PutField(at, tag::BodyLength, std::uint16_t{0});
    return wire::PutField(at, tag::MessageCode, code);
}

std::size_t Finish(Byte* frame, const Byte* end) {
    const auto length = static_cast<std::size_t>(end - frame);
    wire::Put(frame + wire::kLengthOffset, static_cast<std::uint16_t>(length - wire::kHeaderSize));
    return length;
}

// 64 bytes that keep, then 64 that clear: from entry 64 - n on, a mask for the first n bytes of a text.
constexpr std::size_t kLongestText = 64;
constexpr auto kTextMask = [] {
    std::array<Byte, 2 * kLongestText> mask{};
    for (std::size_t i = 0; i < kLongestText; ++i) {
        mask[i] = 0xFF;
    }
    return mask;
}();

// Takes `length` bytes and fills the capacity with zeros, without a branch that depends on the text. All of
// the capacity is read. The last step overlaps the one before it.
template <std::size_t Capacity>
inline void TakeText(Byte* into, const Byte* text, std::size_t length) {
    static_assert(Capacity >= 8 && Capacity <= kLongestText);
    const Byte* mask = kTextMask.data() + kLongestText - length;
    const auto take = [&](std::size_t at) {
        wire::Put(into + at, wire::Get<std::uint64_t>(text + at) & wire::Get<std::uint64_t>(mask + at));
    };
    for (std::size_t at = 0; at + 8 < Capacity; at += 8) {
        take(at);
    }
    take(Capacity - 8);
}

// Reads the value of one field, `at` standing behind its tag. Returns the byte behind it, or `at` when it is
// cut short. The rule for texts is the reader's ReadBytes: what exceeds the capacity is left for the hunt for
// the next tag.
template <std::size_t Index>
inline const Byte* TakeValue(const Byte* at, const Byte* end, Byte* record) {
    constexpr TradeField field = kTradeFields[Index];
    constexpr std::size_t capacity = field.capacity;
    const auto left = static_cast<std::size_t>(end - at);
    Byte* into = record + field.offset;
    if constexpr (field.kind == FieldKind::Text) {
        if (left < 2) return at;
        const std::size_t length = std::min<std::size_t>(wire::Get<std::uint16_t>(at), capacity);
        if (left < 2 + length) return at;
        if (left >= 2 + capacity) {
            TakeText<capacity>(into, at + 2, length);
        } else {
            if (length > 0) std::memcpy(into, at + 2, length);
            std::memset(into + length, 0, capacity - length);
        }
        return at + 2 + length;
    } else {
        if (left < capacity) return at;
        std::memcpy(into, at, capacity);
        return at + capacity;
    }
}

// Reads a field and then, as long as the tags come in the order of the table, those behind it.
template <std::size_t Index, std::size_t Count>
const Byte* TakeFrom(const Byte* at, const Byte* end, Byte* record) {
    at = TakeValue<Index>(at, end, record);
    if constexpr (Index + 1 < Count) {
        constexpr tag::Tag next = kTradeFields[Index + 1].tag;
        if (end - at >= 3 && at[0] == wire::kMark && wire::Get<tag::Tag>(at + 1) == next) {
            return TakeFrom<Index + 1, Count>(at + 3, end, record);
        }
    }
    return at;
}

using FieldTaker = const Byte* (*)(const Byte*, const Byte*, Byte*);

template <std::size_t... Index>
constexpr auto TakersOf(std::index_sequence<Index...>) {
    return std::array<FieldTaker, sizeof...(Index)>{TakeFrom<Index, sizeof...(Index)>...};
}

constexpr auto kHostTakers = TakersOf(std::make_index_sequence<kHostFields>());
constexpr auto kStoredTakers = TakersOf(std::make_index_sequence<kTradeFields.size()>());

// Whether a frame header, followed by a message code, begins at `at`; of a header that is cut off at the end
// as much as is there. No value of a sound frame looks so: a text holds no zero byte, and a number is too
// short.
constexpr Byte kHead[] = {'#', 0x01, 0x00, 0, 0, '#', 0x11, 0x27, 0, 0, '#', 0x12, 0x27};
bool LooksLikeFrame(const Byte* at, std::size_t size) {
    static constexpr bool kFixed[] = {1, 1, 1, 0, 0, 1, 1, 1, 0, 0, 1, 1, 1};
    for (std::size_t i = 0; i < std::min(size, sizeof kHead); ++i) {
        if (kFixed[i] && at[i] != kHead[i]) return false;
    }
    return true;
}

// Whether the first `size` bytes end in the deleted mark, or in its tag.
bool EndsInDeletedMark(const Byte* frame, std::size_t size) {
    const auto markAt = [&](std::size_t bytesBefore) {
        const Byte* at = frame + size - bytesBefore;
        return at[0] == wire::kMark && wire::Get<tag::Tag>(at + 1) == tag::DeletedMark;
    };
    return markAt(4) || markAt(3);
}

// False when the tag is none of the table's.
template <std::size_t Count>
inline bool TakeField(CTagMessageReader& frame, Byte* record, const std::array<FieldTaker, Count>& takers) {
    const std::size_t index = kFieldIndex.Find(frame.CurrentTag());
    if (index >= Count) return false;
    const auto rest = frame.Unread();
    const Byte* behind = takers[index](rest.data(), rest.data() + rest.size(), record);
    frame.Step(static_cast<std::size_t>(behind - rest.data()));
    return true;
}

void TakeStoredField(CTagMessageReader& frame, Byte* record, bool& deleted) {
    if (TakeField(frame, record, kStoredTakers)) return;
    Byte mark = 0;
    if (frame.CurrentTag() != tag::DeletedMark) {
        frame.SkipValue();
    } else if (frame.Read8(mark)) {
        deleted = mark == 1;
    }
}

// Whether nothing but the deleted mark is left; more than 1 in it is the `#` of a header.
bool AtClosingMark(const CTagMessageReader& frame) {
    const auto rest = frame.Unread();
    return rest.size() == 4 && rest[0] == wire::kMark &&
           wire::Get<tag::Tag>(rest.data() + 1) == tag::DeletedMark && rest[3] <= 1;
}

void FinishReading(TradeRecord& record, ISecurityMaster* master) {
    if (record.productType == 0) record.productType = product::Normal;
    if (!record.security && master) record.security = master->Find(record);
}

}  // namespace

std::uint8_t* PutTradeFields(std::uint8_t* at, const TradeRecord& record) {
    return PutFields(at, record);
}

bool TakeTradeField(CTagMessageReader& frame, TradeRecord& record) {
    return TakeField(frame, reinterpret_cast<Byte*>(&record), kStoredTakers);
}

void ReadOwnFields(CTagMessageReader& frame, TradeRecord& record) {
    do {
        if (!TakeTradeField(frame, record)) frame.SkipValue();
    } while (frame.NextTag());
    FinishReading(record, nullptr);
}

bool WriteTradeFields(const TradeRecord& record, CTagMessageWriter& frame) {
    Byte* at = frame.ReserveFields(kMaxTradeFields);
    if (!at) return false;
    frame.CommitFields(static_cast<std::size_t>(PutFields(at, record) - at));
    return true;
}

std::size_t BuildTradeFrame(const TradeRecord& record, msg::Code code, Byte* into) {
    return Finish(into, PutFields(PutHead(into, code), record));
}

std::size_t BuildStoredTrade(const TradeRecord& record, bool deleted, Byte* into) {
    Byte* at = PutFields(PutHead(into, msg::StoredTrade), record);
    return Finish(into, wire::PutField(at, tag::DeletedMark, static_cast<Byte>(deleted ? 1 : 0)));
}

void ReadTradeFrame(CTagMessageReader& frame, TradeRecord& record, ISecurityMaster* master) {
    Byte* bytes = reinterpret_cast<Byte*>(&record);
    while (frame.NextTag()) {
        if (!TakeField(frame, bytes, kHostTakers)) frame.SkipValue();
    }
    FinishReading(record, master);
}

// One byte of a header proves nothing, unless the rest of it follows: a text may end in it. Behind the
// deleted mark there is no text.
std::size_t ForeignBytes(const CTagMessageReader& frame, std::size_t behind) {
    if (!frame.Plain()) return 0;
    const std::size_t size = frame.Length();
    const Byte* bytes = frame.Unread().data() + frame.Unread().size() - size;
    for (std::size_t at = wire::kHeaderSize; at < size; ++at) {
        const std::size_t foreign = size - at;
        if (!LooksLikeFrame(bytes + at, foreign + behind)) continue;
        if (foreign > 1 || behind >= sizeof kHead || EndsInDeletedMark(bytes, at)) return foreign;
    }
    return 0;
}

// A frame as it is written here is one run of fields, in the order of the table, and the deleted mark:
// nothing can hide in it. Any other is searched for what it may have swallowed before more of it is believed,
// which also keeps a file of nothing but headers from being walked again for each of them.
StoredTradeEnd ReadStoredTrade(CTagMessageReader& frame, TradeRecord& record, ISecurityMaster* master,
                               std::size_t behind) {
    StoredTradeEnd end;
    Byte* bytes = reinterpret_cast<Byte*>(&record);
    const auto fields = frame.Unread();
    StoredShape shape{.identity = true, .mark = true};
    bool field = frame.NextTag();
    const bool taken = field && TakeField(frame, bytes, kStoredTakers);
    const bool closed = taken && fields[0] == wire::kMark && AtClosingMark(frame);
    if (taken) field = frame.NextTag();
    if (!closed) {
        end.foreign = ForeignBytes(frame, behind);
        if (end.foreign > 0) return end;
        shape = ShapeOf(fields);
    }
    for (; field; field = frame.NextTag()) {
        TakeStoredField(frame, bytes, end.deleted);
    }
    FinishReading(record, master);
    shape.markSet |= end.deleted;
    end.identity = shape.identity;
    end.damage = shape.Damage(record, end.deleted);
    return end;
}

}  // namespace Dravel
