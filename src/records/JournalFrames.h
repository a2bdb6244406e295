// The frames of the journal: what each says, and the bytes that say it. docs/formats.md has them field by
// field.
//
// A frame is one of the record file's kind, with a code of the journal's. Behind the code stand its number
// and its time, at its end a checksum of everything before. Number and checksum are filled in when the frame
// is sealed, just before it is written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "message/Tags.h"
#include "records/BookImage.h"
#include "records/ChangeRecorder.h"
#include "records/Checksum.h"

namespace Dravel {

// Frames on their way to the disk, in pieces, so that no growing copies what is there. One thread at a time.
class JournalBuffer {
 public:
    explicit JournalBuffer(std::shared_ptr<ImageMemory> memory) : memory_(std::move(memory)) {}
    ~JournalBuffer() { Clear(); }
    JournalBuffer(JournalBuffer&&) = default;
    JournalBuffer& operator=(JournalBuffer&&) = delete;

    // Room for a frame of at most `bytes` (65535); Commit takes as much of it as the frame has come to need.
    std::uint8_t* Room(std::size_t bytes);  // may throw std::bad_alloc
    void Commit(std::size_t bytes);
    // Takes the other's frames behind its own.
    void Take(JournalBuffer& other);
    // Copies one whole frame behind the others.
    void Copy(std::span<const std::uint8_t> frame);
    void Clear() noexcept;

    bool Empty() const { return bytes_ == 0; }
    std::uint64_t Bytes() const { return bytes_; }
    std::size_t Pieces() const { return pieces_.size(); }
    std::span<std::uint8_t> Piece(std::size_t index) {
        return {pieces_[index].bytes.get(), pieces_[index].used};
    }
    // Each frame in order.
    template <class Deal>
    void ForEach(const Deal& deal) {
        for (PieceOfFrames& piece : pieces_) {
            for (std::size_t at = 0; at < piece.used;) {
                const std::size_t length = LengthAt(piece.bytes.get() + at);
                deal(std::span<std::uint8_t>(piece.bytes.get() + at, length));
                at += length;
            }
        }
    }

 private:
    struct PieceOfFrames {
        ImageMemory::Piece bytes;
        std::size_t used = 0;
    };
    static std::size_t LengthAt(const std::uint8_t* frame);

    std::shared_ptr<ImageMemory> memory_;
    std::vector<PieceOfFrames> pieces_;
    std::uint64_t bytes_ = 0;
};

// What the head of a journal says: which journal it is, and which book the changes behind it follow.
struct JournalHead {
    std::uint64_t id = 0;  // random, never 0
    FileSum book;
    std::uint32_t keptAside = 0;  // the largest number that a journal kept aside was ever given
};

// One frame, as far as its code has it.
struct JournalEntry {
    msg::Code code = 0;
    std::uint64_t number = 0;  // of its own, ascending, also from one journal to the next
    std::int64_t time = 0;     // seconds since 1970-01-01 00:00:00 UTC
    JournalHead head;          // JournalHead; JournalMarkFile has its book only
    ChangeSource source;
    std::uint32_t above = 0;
    TradeRecord record{};                    // JournalPut
    std::vector<std::uint32_t> identifiers;  // JournalDeleted; JournalMoved has one
    DraftTexts draft;                        // JournalDraft; JournalDraftGone has its id only
};

// Each appends one frame, not sealed yet; deletions come in as many as are needed. All may throw
// std::bad_alloc, which leaves the buffer as it was before that frame.
void AppendHead(JournalBuffer& into, std::int64_t time, const JournalHead& head);
void AppendPut(JournalBuffer& into, std::int64_t time, const TradeRecord& trade, std::uint32_t above,
               const ChangeSource& source);
void AppendDeleted(JournalBuffer& into, std::int64_t time, std::span<const std::uint32_t> identifiers,
                   const ChangeSource& source);
void AppendMoved(JournalBuffer& into, std::int64_t time, std::uint32_t identifier, std::uint32_t above);
// Cells beyond 1,800 bytes are cut: no column takes a tenth of that.
void AppendDraft(JournalBuffer& into, std::int64_t time, const DraftTexts& draft);
void AppendDraftGone(JournalBuffer& into, std::int64_t time, std::uint32_t id);
// The book was pictured for a save here: what follows is not in the picture.
void AppendMark(JournalBuffer& into, std::int64_t time);
// The file that the last mark's picture was written to.
void AppendMarkFile(JournalBuffer& into, std::int64_t time, const FileSum& book);

// Gives a frame its number and its checksum. Again: does the same again.
void SealFrame(std::span<std::uint8_t> frame, std::uint64_t number);
msg::Code CodeOf(std::span<const std::uint8_t> frame);
std::uint64_t NumberOf(std::span<const std::uint8_t> frame);

// Length of the sealed frame that stands at the start of the bytes, every byte of it as it was sealed; 0:
// none does, or not all of it.
std::size_t SoundFrame(std::span<const std::uint8_t> bytes);
// Reads a sound frame. Fields that are not known are stepped over.
void ReadJournalFrame(std::span<const std::uint8_t> frame, JournalEntry& entry);

}  // namespace Dravel
