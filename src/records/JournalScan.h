// Reading a journal's file from the disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

#include "platform/Files.h"
#include "records/JournalFrames.h"

namespace Dravel {

// Walks over the sound frames of a file, from an offset on, in blocks of 1 MiB. The file is the caller's.
class JournalWalk {
 public:
    explicit JournalWalk(IFile& file, std::uint64_t from = 0);
    // The next frame, valid until the next call; empty: no sound frame stands at the offset, or the disk
    // failed.
    std::span<const std::uint8_t> Next();
    // Goes on at the next sound frame behind whatever stands at the offset. False: there is none.
    bool Hunt();
    // Of the first byte that no frame was read of.
    std::uint64_t Offset() const { return offset_; }
    const FileStatus& Status() const { return status_; }

 private:
    std::span<const std::uint8_t> Held() const { return {buffer_.get() + at_, held_ - at_}; }
    bool Fill();
    void Step(std::size_t bytes);

    IFile& file_;
    std::unique_ptr<std::uint8_t[]> buffer_;
    std::size_t held_ = 0, at_ = 0;
    std::uint64_t offset_;
    FileStatus status_;
    bool sought_ = false;
};

// What a journal's file holds, up to the first frame that is torn or does not check.
struct JournalScan {
    bool headed = false;  // it begins with a head; all else means nothing without
    JournalHead head;
    std::uint64_t frames = 0;           // behind the head
    std::uint64_t lastNumber = 0;       // of the last frame
    std::uint64_t end = 0;              // behind the last sound frame
    std::uint64_t size = 0;             // of the file
    bool soundBehind = false;           // a sound frame stands behind a bad one
    std::uint64_t afterMark = 0;        // behind the last mark; 0: there is none
    std::optional<std::uint64_t> from;  // where the changes begin that the book lacks; none: it does not fit
};

// Reads the whole file. Fits: a mark that names `book`, the last such, or else the head.
FileStatus ScanJournal(IFile& file, const FileSum& book, JournalScan& scan);

// Reads the frames from `from` up to `end`, which ScanJournal has found. A failure of the disk leaves the
// rest out.
FileStatus ReadJournal(IFile& file, std::uint64_t from, std::uint64_t end,
                       const std::function<void(const JournalEntry&)>& deal);

}  // namespace Dravel
