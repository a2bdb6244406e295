// The journal on the disk: which file is taken at an opening, how frames get into it, and how a save makes a
// new one follow the new book. The steps are told in docs/data-safety.md.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "platform/Files.h"
#include "records/JournalFrames.h"
#include "records/JournalHistory.h"
#include "records/JournalScan.h"
#include "support/Log.h"

namespace Dravel {

// What an opening found.
struct JournalOpening {
    // Names of journals that were kept beside: one that follows another book, one with a damaged place.
    std::optional<std::string> stranger, damaged;
};

// One thread at a time; only for the process that owns the book. Disk, clock and log outlive it.
class JournalFile {
 public:
    // `folder` / `name` + ".journal", and `folder` / "History".
    JournalFile(IFiles& files, IClock& clock, ILog& log, const std::filesystem::path& folder,
                const std::string& name);

    // Finds the journal that follows `book`, the file as it was just loaded, and hands out the changes that
    // the book lacks, in order. A failure leaves everything as it is, but what was handed out: the opening is
    // to be tried again.
    FileStatus Open(const FileSum& book, const std::function<void(const JournalEntry&)>& deal,
                    JournalOpening& opening);

    // Seals the frames, writes them behind the others, and returns when they are on the disk. Makes the file,
    // which follows the book given last, when there is none. A failure leaves the file as it was: the same
    // frames are to be given again, in front of later ones.
    FileStatus Append(JournalBuffer& frames);

    // A save's steps. `unwritten` has the frames that are not in the file, in order.
    // 1. The new book is about to take the old one's place: the last mark is given its length and checksum;
    //    all of `unwritten` is in the file then, and the buffer is empty. When that cannot be written, or
    //    must not (`gap`: frames in front of these are lost), a new journal is laid beside; the buffer stays,
    //    and nothing may be appended until step 2. False: neither could be.
    bool BeforeSwap(const FileSum& book, JournalBuffer& unwritten, bool gap);
    // 2a. It did: makes the journal of what is behind the mark, gives the old one to the history, replaces
    //     it. `between` is called between its steps, and may append when step 1 could write the mark. True: a
    //     journal follows the new book; what is left in `unwritten` is to be appended as ever. False: none
    //     does, and nothing may be appended before the next save's step 1.
    bool Swapped(JournalBuffer& unwritten, bool gap, const std::function<void()>& between);
    // 2b. It did not.
    void NotSwapped();
    // Step 1 could write the mark.
    bool Marked() const { return marked_; }

    // Nothing in it is needed any more.
    void Remove();

 private:
    FileStatus Look(const std::filesystem::path& path, const FileSum& book, std::unique_ptr<IFile>& file,
                    JournalScan& scan);
    FileStatus TakeOver(std::unique_ptr<IFile> file, const JournalScan& scan,
                        const std::function<void(const JournalEntry&)>& deal, JournalOpening& opening);
    FileStatus TakeBeside(std::unique_ptr<IFile> old, const JournalScan& scan);
    std::filesystem::path NextAside();
    FileStatus CopyAside(IFile& file, std::optional<std::string>& name);
    FileStatus Clear(std::unique_ptr<IFile> file, const JournalScan& scan, JournalOpening& opening);

    FileStatus EnsureOpen();
    FileStatus Create(const std::filesystem::path& path, const FileSum& book, std::unique_ptr<IFile>& file,
                      std::uint64_t& id, std::uint64_t& length);
    FileStatus CutBack();
    std::uint64_t Seal(JournalBuffer& frames, std::uint64_t& afterMark) const;

    FileStatus LayBeside(JournalBuffer& unwritten, bool gap);
    FileStatus ReadBehindMark(JournalBuffer& unwritten, JournalBuffer& behind);
    FileStatus AddBeside(JournalBuffer& unwritten);
    void DropBeside();
    bool MakeAnew(JournalBuffer& unwritten, bool gap, const std::function<void()>& between);
    bool BeginAfresh(JournalBuffer& unwritten, bool gap);
    FileStatus ReplaceByBeside(const std::function<void()>& between);

    IFiles& files_;
    IClock& clock_;
    ILog& log_;
    std::filesystem::path folder_, path_, newPath_;
    JournalHistory history_;

    std::unique_ptr<IFile> file_;  // held against other writers; may be none although the file exists
    bool exists_ = false;
    bool cutWanted_ = false;   // bytes of a failed write stand behind `length_`
    bool fromBefore_ = false;  // taken at an opening: the history may have part of it
    std::uint64_t id_ = 0;
    std::uint64_t length_ = 0;  // of its whole frames
    std::uint64_t nextNumber_ = 1;
    std::uint64_t afterMark_ = 0;  // offset behind the last mark; 0: it has none
    std::uint32_t keptAside_ = 0;
    FileSum book_;  // the book on the disk

    // The journal that is to replace it.
    std::unique_ptr<IFile> beside_;
    std::uint64_t besideID_ = 0, besideLength_ = 0;
    std::uint64_t besideNext_ = 0;  // number of the first frame of `unwritten` that it lacks
    FileSum besideBook_;
    bool marked_ = false;
};

}  // namespace Dravel
