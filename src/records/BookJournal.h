// The journal of an open book: takes every change on the user-interface thread and sees to it that the
// writer's thread has it on the disk half a second later at the latest.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "platform/Lock.h"
#include "records/ADAWriteAsync.h"
#include "records/ChangeRecorder.h"
#include "records/JournalFile.h"
#include "records/SaveWatch.h"

namespace Dravel {

// Lives as long as the bar of a book that is ours. Two locks: one for what waits, held for the time of a
// copy, one for the file, held while the disk works and never by the user-interface thread while the writer
// runs.
class BookJournal final : public IChangeRecorder, public ISaveWatch, public KRV::Base::IWriterChore {
 public:
    // Milliseconds after the first change that waits. The rest of half a second is the disk's.
    static constexpr std::uint32_t kFlushAfter = 250;
    // Most bytes that wait for a disk that refuses them.
    static constexpr std::uint64_t kMostWaiting = 64 * 1048576;

    BookJournal(IFiles& files, IClock& clock, ILog& log, const std::filesystem::path& folder,
                const std::string& name);

    // As JournalFile::Open. Before Start.
    FileStatus Open(const FileSum& book, const std::function<void(const JournalEntry&)>& deal,
                    JournalOpening& opening);
    // Takes changes from now on. `wake` is called on the thread of a change when something waits; `stale` on
    // any thread when Warning may say something else. Neither is called after Stop.
    void Start(std::function<void()> wake, std::function<void()> stale);
    // Takes no more, and writes what waits. After the writer was stopped.
    void Stop();
    // The file goes: nothing in it is needed any more. After Stop.
    void Remove();

    void Put(const TradeRecord& trade, std::uint32_t above, const ChangeSource& source) noexcept override;
    void Deleted(std::span<const std::uint32_t> identifiers, const ChangeSource& source) noexcept override;
    void Moved(std::uint32_t identifier, std::uint32_t above) noexcept override;
    void DraftChanged(const DraftTexts& draft) noexcept;
    void DraftGone(std::uint32_t id) noexcept;
    // The book is being pictured for a save; every draft is to be told anew behind it.
    void Mark() noexcept;

    // Whether rows were moved since the last mark: they are in no saved book, although nothing asks to save.
    bool RowsMoved();
    // What the status line says while unsaved work is not protected; empty: it is. Any thread.
    std::string Warning();
    // What was told so far, and whether all of it up to there is on the disk, here or in the saved book.
    std::uint64_t Told();
    bool Kept(std::uint64_t told) const { return kept_ >= told; }

    // The save's thread, and the writer's.
    void Between() noexcept override;
    void BeforeSwap(const FileSum& book) noexcept override;
    void AfterSwap(bool swapped) noexcept override;
    std::uint32_t DueIn() noexcept override;
    void RunDue() noexcept override { Flush(); }
    // Writes what waits, at once.
    void Flush() noexcept;

 private:
    template <class Fill>
    void Queue(const Fill& fill) noexcept;
    void Close() noexcept;
    void Pull();
    void Say(const FileStatus& status) noexcept;
    void Stale() noexcept;

    IClock& clock_;
    // Pieces go from one buffer to the other and come back empty: fresh pages cost more than to fill them.
    std::shared_ptr<ImageMemory> memory_ = std::make_shared<ImageMemory>();

    KRV::Thread::CKRVLock queueLock_;  // guards the following
    JournalBuffer queued_;
    std::uint64_t told_ = 0;  // bytes ever queued
    std::uint64_t due_ = 0;   // of the clock's ticks, when `waits_`
    bool waits_ = false;
    bool hurried_ = false;  // the writer was told that much waits
    bool taking_ = false;
    bool moved_ = false;   // rows, since the last mark
    bool closed_ = false;  // what comes is dropped until the next mark
    bool lost_ = false;    // something was dropped that Pull has not heard of
    FileStatus failure_;   // of the last try to write
    std::function<void()> wake_, stale_;

    KRV::Thread::CKRVLock fileLock_;  // guards the following
    JournalFile file_;
    JournalBuffer unwritten_;
    std::uint64_t pulled_ = 0;  // of `told_`, what has come into `unwritten_`
    bool gap_ = false;          // frames in front of `unwritten_` are lost
    bool swapping_ = false;

    std::atomic<std::uint64_t> unwrittenBytes_ = 0;
    std::atomic<std::uint64_t> kept_ = 0;
};

}  // namespace Dravel
