#include "records/JournalFile.h"

#include <algorithm>
#include <random>
#include <utility>

#include "platform/FileTools.h"
#include "support/FaultText.h"

namespace Dravel {

namespace {

namespace fs = std::filesystem;

constexpr char kContext[] = "Journal";
constexpr int kReplaceTries = 11;  // half a second in all
constexpr std::uint32_t kReplacePause = 50;

std::uint64_t RandomID() {
    std::random_device device;
    const std::uint64_t id = std::uint64_t{device()} << 32 | device();
    return id == 0 ? 1 : id;
}

FileStatus WriteAll(IFile& file, std::uint64_t at, JournalBuffer& frames) {
    if (const FileStatus status = file.Seek(at); !status) return status;
    for (std::size_t i = 0; i < frames.Pieces(); ++i) {
        const auto piece = frames.Piece(i);
        if (const FileStatus status = file.Write(piece.data(), piece.size()); !status) return status;
    }
    return {};
}

}  // namespace

JournalFile::JournalFile(IFiles& files, IClock& clock, ILog& log, const fs::path& folder,
                         const std::string& name)
    : files_(files),
      clock_(clock),
      log_(log),
      folder_(folder),
      path_(folder / (name + ".journal")),
      newPath_(WithEnding(path_, ".new")),
      history_(files, clock, folder / "History") {}

FileStatus JournalFile::EnsureOpen() {
    if (!file_ && !exists_) {
        files_.MakeFolders(folder_);
        if (const FileStatus status = Create(path_, book_, file_, id_, length_); !status) return status;
        exists_ = true;
        fromBefore_ = cutWanted_ = false;
        afterMark_ = 0;
    } else if (!file_) {
        const FileStatus status = files_.Open(path_, FileMode::ReadWrite, FileShare::DenyWrite, file_);
        if (!status) return status;
        cutWanted_ = true;  // nobody else writes it; a failed write of ours may have
    }
    return cutWanted_ ? CutBack() : FileStatus{};
}

// Its head is on the disk when what follows it is.
FileStatus JournalFile::Create(const fs::path& path, const FileSum& book, std::unique_ptr<IFile>& file,
                               std::uint64_t& id, std::uint64_t& length) {
    FileStatus status = files_.Open(path, FileMode::Create, FileShare::DenyWrite, file);
    if (!status) return status;
    id = RandomID();
    JournalBuffer head(std::make_shared<ImageMemory>());
    AppendHead(head, clock_.Now(), {id, book, keptAside_});
    head.ForEach([&](std::span<std::uint8_t> frame) { SealFrame(frame, nextNumber_); });
    status = WriteAll(*file, 0, head);
    length = head.Bytes();
    if (!status) {
        file.reset();
        files_.Remove(path);
    } else {
        ++nextNumber_;
    }
    return status;
}

FileStatus JournalFile::CutBack() {
    const FileStatus status = file_->Cut(length_);
    if (status) cutWanted_ = false;
    return status;
}

// Returns the number behind the last frame's.
std::uint64_t JournalFile::Seal(JournalBuffer& frames, std::uint64_t& afterMark) const {
    std::uint64_t number = nextNumber_, at = length_;
    frames.ForEach([&](std::span<std::uint8_t> frame) {
        SealFrame(frame, number++);
        at += frame.size();
        if (CodeOf(frame) == msg::JournalMark) afterMark = at;
    });
    return number;
}

FileStatus JournalFile::Append(JournalBuffer& frames) {
    if (frames.Empty()) return {};
    if (const FileStatus status = EnsureOpen(); !status) return status;
    std::uint64_t afterMark = afterMark_;
    const std::uint64_t next = Seal(frames, afterMark);
    FileStatus status = WriteAll(*file_, length_, frames);
    if (status) status = file_->Flush();
    if (!status) {
        cutWanted_ = true;
        CutBack();
        return status;
    }
    length_ += frames.Bytes();
    nextNumber_ = next;
    afterMark_ = afterMark;
    if (beside_ && !AddBeside(frames)) DropBeside();
    return {};
}

// Saving

bool JournalFile::BeforeSwap(const FileSum& book, JournalBuffer& unwritten, bool gap) {
    besideBook_ = book;
    AppendMarkFile(unwritten, clock_.Now(), book);
    const FileStatus status = gap ? FileStatus{FileFault::Other, 0} : Append(unwritten);
    marked_ = static_cast<bool>(status);
    if (marked_) {
        unwritten.Clear();
        return true;
    }
    const FileStatus laid = LayBeside(unwritten, gap);
    if (!laid) log_.Line(LogLevel::Warning, kContext, FaultText("No journal follows the new book", laid));
    return static_cast<bool>(laid);
}

// What is behind the mark, in the file or still in memory, under a head that names the new book.
FileStatus JournalFile::LayBeside(JournalBuffer& unwritten, bool gap) {
    DropBeside();
    FileStatus status = Create(newPath_, besideBook_, beside_, besideID_, besideLength_);
    if (!status) return status;
    besideNext_ = nextNumber_;
    JournalBuffer behind(std::make_shared<ImageMemory>());
    if (!gap) status = ReadBehindMark(unwritten, behind);
    if (status) status = WriteAll(*beside_, besideLength_, behind);
    besideLength_ += behind.Bytes();
    if (status) status = AddBeside(unwritten);
    if (!status) DropBeside();
    return status;
}

// What the file has behind the last mark; nothing when that is still in memory.
FileStatus JournalFile::ReadBehindMark(JournalBuffer& unwritten, JournalBuffer& behind) {
    bool markWaits = false;
    unwritten.ForEach([&](std::span<std::uint8_t> frame) { markWaits |= CodeOf(frame) == msg::JournalMark; });
    if (markWaits || afterMark_ == 0 || !exists_) return {};
    if (const FileStatus status = EnsureOpen(); !status) return status;
    JournalWalk walk(*file_, afterMark_);
    while (walk.Offset() < length_) {
        const auto frame = walk.Next();
        if (frame.empty()) return walk.Status() ? FileStatus{FileFault::Other, 0} : walk.Status();
        behind.Copy(frame);
    }
    return {};
}

// Those of the frames that it lacks: behind the last mark, and not there from an earlier call.
FileStatus JournalFile::AddBeside(JournalBuffer& unwritten) {
    JournalBuffer lacked(std::make_shared<ImageMemory>());
    std::uint64_t number = nextNumber_;
    const bool appended = !unwritten.Empty() && number > besideNext_;  // sealed, and in the old one
    if (!appended) {
        std::uint64_t afterMark = 0;
        number = Seal(unwritten, afterMark);
    }
    unwritten.ForEach([&](std::span<std::uint8_t> frame) {
        if (CodeOf(frame) == msg::JournalMark) lacked.Clear();
        if (NumberOf(frame) >= besideNext_) lacked.Copy(frame);
    });
    FileStatus status = WriteAll(*beside_, besideLength_, lacked);
    if (status) status = beside_->Flush();
    besideLength_ += lacked.Bytes();
    besideNext_ = number;
    return status;
}

void JournalFile::DropBeside() {
    if (!beside_) return;
    beside_.reset();
    files_.Remove(newPath_);
}

void JournalFile::NotSwapped() {
    DropBeside();
    marked_ = false;
}

bool JournalFile::Swapped(JournalBuffer& unwritten, bool gap, const std::function<void()>& between) {
    book_ = besideBook_;
    const bool follows = MakeAnew(unwritten, gap, between);
    marked_ = false;
    return follows;
}

bool JournalFile::MakeAnew(JournalBuffer& unwritten, bool gap, const std::function<void()>& between) {
    FileStatus status = beside_ ? AddBeside(unwritten) : LayBeside(unwritten, gap);
    between();
    if (status && file_) {
        const FileStatus kept = history_.Append(*file_, length_, id_, fromBefore_, between);
        if (!kept) log_.Line(LogLevel::Warning, kContext, FaultText("The history was not written", kept));
        if (marked_ && beside_) status = kept;  // the old one goes on; its mark names the book
    }
    if (status) status = ReplaceByBeside(between);
    if (!status) {
        log_.Line(LogLevel::Warning, kContext, FaultText("The journal was not made anew", status));
        beside_.reset();
        if (marked_) files_.Remove(newPath_);
        return marked_ || BeginAfresh(unwritten, gap);
    }
    nextNumber_ = std::max(nextNumber_, besideNext_);
    unwritten.Clear();
    return true;
}

// The old journal must not be taken for one that follows the new book, which may be byte for byte the one
// that it followed. The next append makes a new file, of what is behind the mark.
bool JournalFile::BeginAfresh(JournalBuffer& unwritten, bool gap) {
    JournalBuffer behind(std::make_shared<ImageMemory>());
    if (!gap && !ReadBehindMark(unwritten, behind)) return false;
    file_.reset();
    if (exists_ && !files_.Rename(path_, NextAside())) return false;
    exists_ = false;
    unwritten.ForEach([&](std::span<std::uint8_t> frame) {
        behind.Copy(frame);
        if (CodeOf(frame) == msg::JournalMark) behind.Clear();
    });
    unwritten.Clear();
    unwritten.Take(behind);
    return true;
}

// No system moves or replaces a file that is held open. What comes between two tries goes to both files.
FileStatus JournalFile::ReplaceByBeside(const std::function<void()>& between) {
    for (int tries = 1;; ++tries) {
        if (!beside_) return {FileFault::Other, 0};  // something that came could not be added
        beside_.reset();
        file_.reset();
        const FileStatus status = files_.Replace(newPath_, path_);
        if (status) break;
        if (status.fault != FileFault::InUse || tries == kReplaceTries) return status;
        clock_.Sleep(kReplacePause);
        if (!files_.Open(newPath_, FileMode::ReadWrite, FileShare::DenyWrite, beside_)) return status;
        between();
    }
    exists_ = true;
    fromBefore_ = cutWanted_ = false;
    id_ = besideID_;
    length_ = besideLength_;
    afterMark_ = 0;
    return {};
}

// Emptied first: a name may come back after a power cut, and what it names must not.
void JournalFile::Remove() {
    DropBeside();
    if (!std::exchange(exists_, false)) return;
    if (file_ || files_.Open(path_, FileMode::ReadWrite, FileShare::DenyWrite, file_)) {
        if (file_->Cut(0)) file_->Flush();
    }
    file_.reset();
    files_.Remove(path_);
}

}  // namespace Dravel
