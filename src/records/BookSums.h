// The checksums of the book's file and of each frame in it, kept beside the book: frames carry none, so only
// these tell a value that was changed from one that was saved. docs/formats.md has the bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "platform/Files.h"
#include "records/Checksum.h"
#include "records/SaveWatch.h"
#include "support/Log.h"

namespace Dravel {

// The frames that were saved, each to be found once, in whatever order.
class SavedFrames {
 public:
    explicit SavedFrames(std::vector<std::uint64_t> checksums);
    // Whether a frame of this checksum was saved and has not been found as often already.
    bool Find(std::uint64_t checksum);
    std::uint64_t Saved() const { return saved_; }
    std::uint64_t Found() const { return found_; }

 private:
    std::vector<std::pair<std::uint64_t, std::uint32_t>> left_;  // checksum and how often, ascending
    std::uint64_t saved_ = 0, found_ = 0;
};

// The sums of one book. Those of a save are written under one of two other names before the book is swapped,
// in turn, so that at every moment one of the files fits the book; they get the sums' own name when the book
// is opened or given back, because to rename them at each save would cost it a quarter of its time. Only
// `<book>.sums` itself may say that a book was changed: the other names may hold the sums of a save that did
// not come to its end.
// Guarded by the book file's lock. What fails is logged and costs the sums, never the save.
class BookSums {
 public:
    // `book`: the path of the book's file without its ending.
    BookSums(IFiles& files, ILog& log, std::filesystem::path book);

    // Of a load: reads what is there.
    void Read() noexcept;
    // Whether there are sums of this book, so that its file was written here.
    bool Known() const { return slots_[kInPlace].Checks(); }
    // Whether a file of this length and checksum is one that was saved. True when nothing is known.
    bool Fits(const FileSum& book);
    // The frames of the sums that fit a file of this length best.
    SavedFrames Frames(std::uint64_t length) const;
    // Lets go of what Read took into memory.
    void EndRead();

    // Of a save, in this order. The pieces of the image hold whole frames.
    void Begin(std::uint64_t frames) noexcept;
    void Add(std::span<const std::uint8_t> piece) noexcept;
    // Puts the sums of the new book on the disk, under another name.
    void Write(const FileSum& book, ISaveWatch& watch) noexcept;
    // Takes sums away that would not fit the new book when its own could not be written.
    void BeforeSwap() noexcept;
    void AfterSwap(bool swapped) noexcept;

    // When the book was opened or is given back: gives the sums that fit their name, takes the others away.
    void Settle() noexcept;

 private:
    static constexpr std::size_t kInPlace = 0, kSlots = 3, kNone = kSlots;
    struct Slot {
        std::filesystem::path path;
        bool there = true;                 // it may be there
        std::vector<std::uint64_t> words;  // the file, when it checks itself
        bool Checks() const { return !words.empty(); }
        FileSum Book() const;
    };

    void ReadSlot(Slot& slot);
    void CloseWords(const FileSum& book);
    FileStatus WriteSlot(Slot& slot, ISaveWatch& watch);
    void Rename();
    void RemoveSlot(std::size_t number);
    void LogFault(const char* what, const FileStatus& status);
    template <class Work>
    void Try(Work work) noexcept;

    IFiles& files_;
    ILog& log_;
    std::array<Slot, kSlots> slots_;
    std::size_t fits_ = kNone;          // the file that fits the book on the disk
    std::size_t written_ = kNone;       // the file that fits the book that is about to be
    std::vector<std::uint64_t> words_;  // of the save under way
    bool whole_ = false;                // words_ has all its frames
    bool misleading_ = false;           // nothing fits, and the file in place could not be taken away
};

}  // namespace Dravel
