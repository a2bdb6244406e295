// Trade record <-> tagged frame.
#pragma once

#include <cstddef>
#include <cstdint>

#include "message/TagMessageReader.h"
#include "message/TagMessageWriter.h"
#include "records/FrameDamage.h"
#include "records/TradeFields.h"

namespace Dravel {

// Finds the terminal's master entry of the security that a record names. Called on the thread that reads.
class ISecurityMaster {
 public:
    virtual ~ISecurityMaster() = default;
    // nullptr when there is none; an entry lives as long as the terminal.
    virtual const SecurityMasterEntry* Find(const TradeRecord& record) = 0;
};

// The most that the fields of a trade, and a whole frame of one, can need.
inline constexpr std::size_t kMaxTradeFields = [] {
    std::size_t bytes = 0;
    for (const TradeField& field : kTradeFields) {
        bytes += (field.kind == FieldKind::Text ? 5 : 3) + field.capacity;
    }
    return bytes;
}();
inline constexpr std::size_t kMaxTradeFrame =
    10 + 5 + kMaxTradeFields + 4;  // header, code, fields, deleted mark
static_assert(kMaxTradeFrame < 4096, "a trade fits the first page of a frame");

// Appends all fields of the table to a frame that has its message code. False, with nothing appended, when
// the frame cannot grow so far.
bool WriteTradeFields(const TradeRecord& record, CTagMessageWriter& frame);

// The same into plain room for kMaxTradeFields bytes, all of which may be written to; returns the byte behind
// the last field.
std::uint8_t* PutTradeFields(std::uint8_t* at, const TradeRecord& record);
// Takes the value at hand, and those behind it as long as they come in the order of the table, the identity
// included. False: the tag at hand is none of a trade's.
bool TakeTradeField(CTagMessageReader& frame, TradeRecord& record);

// Builds a whole plain frame at `into`, which must have room for kMaxTradeFrame bytes (all of them may be
// written to); returns its length. The second form is what the record file holds: code 60004, with the
// deleted mark.
std::size_t BuildTradeFrame(const TradeRecord& record, msg::Code code, std::uint8_t* into);
std::size_t BuildStoredTrade(const TradeRecord& record, bool deleted, std::uint8_t* into);

// Reads the frame of an opened reader into `record`. Fields that the frame lacks, or holds cut short, stay as
// they are; a longer text is cut to its capacity; a product type of 0 becomes NORMAL. Identity fields are
// unknown here and stepped over. When the record has no master entry yet, `master` (if any) is asked for it.
void ReadTradeFrame(CTagMessageReader& frame, TradeRecord& record, ISecurityMaster* master = nullptr);

// The same for a frame of our own whose bytes are known to be sound: the identity is restored, too. The
// reader stands behind a field mark (NextTag).
void ReadOwnFields(CTagMessageReader& frame, TradeRecord& record);

// Bytes at the end of a plain frame that belong to another one: its length is damaged, or it was cut short,
// and it swallowed its neighbours. 0 as a rule. The bytes are searched up to the first header, of which
// `behind` more bytes may follow the frame in memory.
std::size_t ForeignBytes(const CTagMessageReader& frame, std::size_t behind = 0);

// The same as ReadTradeFrame for a frame of the record file: the identity is restored, too. `record` comes in
// blank.
struct StoredTradeEnd {
    bool deleted = false;
    // As ForeignBytes. The record is then worth nothing: read again what is in front of them.
    std::size_t foreign = 0;
    // Whether it holds a field of the identity: then it was written here, and `damage` says what it lacks.
    bool identity = false;
    damage::Kinds damage = 0;
};
StoredTradeEnd ReadStoredTrade(CTagMessageReader& frame, TradeRecord& record,
                               ISecurityMaster* master = nullptr, std::size_t behind = 0);

}  // namespace Dravel
