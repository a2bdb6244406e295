#include "records/JournalScan.h"

#include <cstring>

namespace Dravel {

namespace {

constexpr std::size_t kBlock = 1048576;
constexpr std::size_t kMaxFrame = 65545;

}  // namespace

JournalWalk::JournalWalk(IFile& file, std::uint64_t from)
    : file_(file), buffer_(std::make_unique_for_overwrite<std::uint8_t[]>(kBlock)), offset_(from) {}

// Sees to it that a frame that begins here is held whole. False: the disk failed.
bool JournalWalk::Fill() {
    if (status_ && !sought_) {
        sought_ = true;
        status_ = file_.Seek(offset_);
    }
    if (!status_) return false;
    if (held_ - at_ >= kMaxFrame) return true;
    std::memmove(buffer_.get(), buffer_.get() + at_, held_ - at_);
    held_ -= at_;
    at_ = 0;
    std::size_t got = 0;
    status_ = file_.Read(buffer_.get() + held_, kBlock - held_, got);
    held_ += got;
    return static_cast<bool>(status_);
}

void JournalWalk::Step(std::size_t bytes) {
    at_ += bytes;
    offset_ += bytes;
}

std::span<const std::uint8_t> JournalWalk::Next() {
    if (!Fill()) return {};
    const auto frame = Held().first(SoundFrame(Held()));
    Step(frame.size());
    return frame;
}

bool JournalWalk::Hunt() {
    while (Fill() && held_ > at_) {
        Step(1);
        while (held_ > at_ && buffer_[at_] != '#')
            Step(1);
        if (Fill() && SoundFrame(Held()) > 0) return true;
    }
    return false;
}

FileStatus ScanJournal(IFile& file, const FileSum& book, JournalScan& scan) {
    scan = {};
    if (const FileStatus status = file.Size(scan.size); !status) return status;
    JournalWalk walk(file);
    JournalEntry entry;
    for (auto frame = walk.Next(); !frame.empty(); frame = walk.Next()) {
        const msg::Code code = CodeOf(frame);
        if (scan.headed == (code == msg::JournalHead)) break;  // a head comes first, and once
        scan.lastNumber = NumberOf(frame);
        scan.end = walk.Offset();
        if (code == msg::JournalMark) scan.afterMark = scan.end;
        if (scan.headed) ++scan.frames;
        if (code != msg::JournalHead && code != msg::JournalMarkFile) continue;
        ReadJournalFrame(frame, entry);
        if (code == msg::JournalHead) {
            scan.headed = true;
            scan.head = entry.head;
        }
        const std::uint64_t from = code == msg::JournalHead ? scan.end : scan.afterMark;
        if (from > 0 && entry.head.book == book) scan.from = from;
    }
    if (walk.Status() && scan.end < scan.size) scan.soundBehind = walk.Hunt();
    return walk.Status();
}

FileStatus ReadJournal(IFile& file, std::uint64_t from, std::uint64_t end,
                       const std::function<void(const JournalEntry&)>& deal) {
    JournalWalk walk(file, from);
    JournalEntry entry;
    while (walk.Offset() < end) {
        const auto frame = walk.Next();
        if (frame.empty()) break;
        ReadJournalFrame(frame, entry);
        deal(entry);
    }
    return walk.Status();
}

}  // namespace Dravel
