#include "records/JournalHistory.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>

#include "records/JournalScan.h"

namespace Dravel {

namespace {

constexpr std::size_t kBlock = 1048576;

// The largest number of a frame that stands in the history under the journal's head; 0: none. Torn places are
// stepped over.
FileStatus LastThere(IFile& history, std::uint64_t id, std::uint64_t& last) {
    JournalWalk walk(history);
    JournalEntry entry;
    bool ours = false;
    last = 0;
    do {
        for (auto frame = walk.Next(); !frame.empty(); frame = walk.Next()) {
            if (CodeOf(frame) == msg::JournalHead) {
                ReadJournalFrame(frame, entry);
                ours = entry.head.id == id;
            }
            if (ours) last = std::max(last, NumberOf(frame));
        }
    } while (walk.Status() && walk.Hunt());
    return walk.Status();
}

FileStatus CopyRange(IFile& from, std::uint64_t at, std::uint64_t end, IFile& to,
                     const std::function<void()>& between) {
    const auto block = std::make_unique_for_overwrite<std::uint8_t[]>(kBlock);
    while (at < end) {
        // The position is not ours alone: what comes between is appended to the same file.
        if (const FileStatus status = from.Seek(at); !status) return status;
        std::size_t got = 0;
        const auto want = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, end - at));
        if (const FileStatus status = from.Read(block.get(), want, got); !status) return status;
        if (got == 0) return {FileFault::Other, 0};
        if (const FileStatus status = to.Write(block.get(), got); !status) return status;
        at += got;
        if (between) between();
    }
    return {};
}

// The head, and the frames behind number `last`.
FileStatus CopyJournal(IFile& journal, std::uint64_t length, std::uint64_t last, IFile& history,
                       const std::function<void()>& between) {
    JournalWalk walk(journal);
    std::uint64_t headEnd = 0, at = 0;
    while (walk.Offset() < length) {
        const std::uint64_t before = walk.Offset();
        const auto frame = walk.Next();
        if (frame.empty()) return walk.Status() ? FileStatus{FileFault::Other, 0} : walk.Status();
        if (headEnd == 0) headEnd = walk.Offset();
        at = before == 0 ? headEnd : before;
        if (before > 0 && NumberOf(frame) > last) break;
        at = walk.Offset();
    }
    FileStatus status = CopyRange(journal, 0, headEnd, history, between);
    if (status) status = CopyRange(journal, at, length, history, between);
    if (status) status = history.Flush();
    return status;
}

}  // namespace

std::filesystem::path JournalHistory::MonthPath() const {
    using namespace std::chrono;
    const year_month_day date{floor<days>(sys_seconds{seconds(clock_.Now())})};
    const std::string month = std::to_string(static_cast<unsigned>(date.month()));
    return folder_ / ("Dravel_" + std::to_string(static_cast<int>(date.year())) +
                      (month.size() < 2 ? "0" : "") + month + ".journal");
}

FileStatus JournalHistory::Append(IFile& journal, std::uint64_t length, std::uint64_t id, bool mayHavePart,
                                  const std::function<void()>& between) {
    if (const FileStatus status = files_.MakeFolders(folder_); !status) return status;
    std::unique_ptr<IFile> history;
    const std::filesystem::path path = MonthPath();
    FileStatus status = files_.Open(path, FileMode::ReadWrite, FileShare::DenyWrite, history);
    if (status.fault == FileFault::NotFound)
        status = files_.Open(path, FileMode::Create, FileShare::DenyWrite, history);
    if (!status) return status;
    std::uint64_t last = 0, size = 0;
    if (mayHavePart) status = LastThere(*history, id, last);
    if (status) status = history->Size(size);
    if (status) status = history->Seek(size);
    if (!status) return status;
    status = CopyJournal(journal, length, last, *history, between);
    if (!status) history->Cut(size);
    return status;
}

}  // namespace Dravel
