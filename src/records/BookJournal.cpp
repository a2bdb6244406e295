#include "records/BookJournal.h"

#include <mutex>
#include <utility>

#include "support/FaultText.h"

namespace Dravel {

namespace {

// Bytes that wait for nothing: the memory of the first is filled anew while it is still in the caches.
constexpr std::uint64_t kHurry = 2 * 1048576;
constexpr std::uint32_t kTryAgain = 500;  // milliseconds after a failure
constexpr char kNotProtected[] = "Unsaved work is not protected";

}  // namespace

BookJournal::BookJournal(IFiles& files, IClock& clock, ILog& log, const std::filesystem::path& folder,
                         const std::string& name)
    : clock_(clock), queued_(memory_), file_(files, clock, log, folder, name), unwritten_(memory_) {}

FileStatus BookJournal::Open(const FileSum& book, const std::function<void(const JournalEntry&)>& deal,
                             JournalOpening& opening) {
    const std::lock_guard guard(fileLock_);
    moved_ = false;
    const auto take = [&](const JournalEntry& entry) {
        moved_ |= entry.code == msg::JournalMoved;
        deal(entry);
    };
    return file_.Open(book, take, opening);
}

void BookJournal::Start(std::function<void()> wake, std::function<void()> stale) {
    const std::lock_guard guard(queueLock_);
    wake_ = std::move(wake);
    stale_ = std::move(stale);
    taking_ = true;
}

void BookJournal::Stop() {
    {
        const std::lock_guard guard(queueLock_);
        taking_ = false;
        wake_ = stale_ = nullptr;
    }
    Flush();
}

void BookJournal::Remove() {
    const std::lock_guard guard(fileLock_);
    unwritten_.Clear();
    file_.Remove();
}

// Changes, on the user-interface thread

template <class Fill>
void BookJournal::Queue(const Fill& fill) noexcept {
    std::function<void()> wake;
    {
        const std::lock_guard guard(queueLock_);
        if (!taking_ || closed_) return;
        try {
            const std::uint64_t before = queued_.Bytes();
            fill(queued_, clock_.Now());
            told_ += queued_.Bytes() - before;
            if (queued_.Bytes() + unwrittenBytes_ > kMostWaiting) return Close();
            if (queued_.Bytes() >= kHurry && !hurried_) {
                hurried_ = waits_ = true;
                due_ = 0;
            } else if (!std::exchange(waits_, true)) {
                due_ = clock_.Ticks() + kFlushAfter;
            } else {
                return;
            }
            wake = wake_;
        } catch (...) {
            return Close();
        }
    }
    if (wake) wake();
}

// Too much waits, or memory ran out: a journal with a hole would be worse than none. Under the queue's lock.
void BookJournal::Close() noexcept {
    closed_ = lost_ = true;
    queued_.Clear();
    Stale();
}

void BookJournal::Put(const TradeRecord& trade, std::uint32_t above, const ChangeSource& source) noexcept {
    Queue([&](JournalBuffer& into, std::int64_t now) { AppendPut(into, now, trade, above, source); });
}

void BookJournal::Deleted(std::span<const std::uint32_t> identifiers, const ChangeSource& source) noexcept {
    Queue([&](JournalBuffer& into, std::int64_t now) { AppendDeleted(into, now, identifiers, source); });
}

void BookJournal::Moved(std::uint32_t identifier, std::uint32_t above) noexcept {
    Queue([&](JournalBuffer& into, std::int64_t now) {
        AppendMoved(into, now, identifier, above);
        moved_ = true;
    });
}

void BookJournal::DraftChanged(const DraftTexts& draft) noexcept {
    Queue([&](JournalBuffer& into, std::int64_t now) { AppendDraft(into, now, draft); });
}

void BookJournal::DraftGone(std::uint32_t id) noexcept {
    Queue([&](JournalBuffer& into, std::int64_t now) { AppendDraftGone(into, now, id); });
}

void BookJournal::Mark() noexcept {
    {
        const std::lock_guard guard(queueLock_);
        closed_ = moved_ = false;
    }
    Queue([](JournalBuffer& into, std::int64_t now) { AppendMark(into, now); });
}

bool BookJournal::RowsMoved() {
    const std::lock_guard guard(queueLock_);
    return moved_;
}

std::string BookJournal::Warning() {
    const std::lock_guard guard(queueLock_);
    if (closed_) return std::string(kNotProtected) + ": save the book";
    if (failure_) return {};
    std::string text = FaultText(kNotProtected, failure_);
    text.pop_back();  // the status line has no full stops
    return text;
}

std::uint64_t BookJournal::Told() {
    const std::lock_guard guard(queueLock_);
    return told_;
}

void BookJournal::Stale() noexcept {
    try {
        if (stale_) stale_();
    } catch (...) {
        // The status line comes to it with the next change.
    }
}

// Writing

std::uint32_t BookJournal::DueIn() noexcept {
    const std::lock_guard guard(queueLock_);
    if (!waits_) return KRV::Base::kWriterWakeUp;
    const std::uint64_t now = clock_.Ticks();
    return now >= due_ ? 0 : static_cast<std::uint32_t>(due_ - now);
}

void BookJournal::Between() noexcept {
    if (DueIn() == 0) Flush();
}

// Under the file's lock.
void BookJournal::Pull() {
    const std::lock_guard guard(queueLock_);
    if (std::exchange(lost_, false)) {
        gap_ = true;
        unwritten_.Clear();
    }
    unwritten_.Take(queued_);
    unwrittenBytes_ = unwritten_.Bytes();
    pulled_ = told_;
    waits_ = hurried_ = false;
}

void BookJournal::Flush() noexcept try {
    const std::lock_guard guard(fileLock_);
    if (swapping_ && !file_.Marked()) return Say({});  // they wait for the end of the save
    Pull();
    if (gap_) return;
    const FileStatus status = file_.Append(unwritten_);
    if (status) {
        unwritten_.Clear();
        kept_ = pulled_;
    }
    unwrittenBytes_ = unwritten_.Bytes();
    Say(status);
} catch (...) {
    Say({FileFault::Other, 0});
}

// A failure is tried again soon.
void BookJournal::Say(const FileStatus& status) noexcept {
    const std::lock_guard guard(queueLock_);
    if (!status || swapping_) {
        waits_ = true;
        due_ = clock_.Ticks() + kTryAgain;
    }
    const bool changed = failure_.fault != status.fault;
    failure_ = status;
    if (changed) Stale();
}

void BookJournal::BeforeSwap(const FileSum& book) noexcept try {
    const std::lock_guard guard(fileLock_);
    Pull();
    swapping_ = true;
    const bool laid = file_.BeforeSwap(book, unwritten_, gap_);
    if (file_.Marked()) kept_ = pulled_;
    unwrittenBytes_ = unwritten_.Bytes();
    if (!laid) Say({FileFault::Other, 0});
} catch (...) {
    Say({FileFault::Other, 0});
}

void BookJournal::AfterSwap(bool swapped) noexcept try {
    const std::lock_guard guard(fileLock_);
    bool follows = !gap_;
    if (!swapped) {
        file_.NotSwapped();
    } else {
        if (file_.Marked()) {
            Flush();
        } else {
            Pull();
        }
        follows = file_.Swapped(unwritten_, gap_, [this] { Between(); });
        gap_ = !follows;
        if (follows && unwritten_.Empty()) kept_ = pulled_;
    }
    swapping_ = false;
    unwrittenBytes_ = unwritten_.Bytes();
    if (!follows) {
        const std::lock_guard queue(queueLock_);
        Close();
        return;
    }
    if (swapped) Flush();
} catch (...) {
    swapping_ = false;
    Say({FileFault::Other, 0});
}

}  // namespace Dravel
