// The trade book on disk: who owns it, how it is loaded, and how it is saved so that no moment of a kill, a
// power cut or a full disk leaves less than the old book or the new one. The protocol is told in
// docs/data-safety.md.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "records/ADAStore.h"
#include "records/BookImage.h"
#include "records/BookSums.h"
#include "records/SaveWatch.h"
#include "records/TradeImpl.h"

namespace Dravel {

// Why nothing is saved by the second terminal that opens a book, or without a folder that can be written.
inline constexpr char kBookNotOwned[] =
    "The book is open in another terminal, or its file could not be opened.";
// Why, when the image of the book or a path to its file finds no room.
inline constexpr char kMemoryRanOut[] = "Memory ran out.";

// Whose the book is after a try to become its owner.
enum class BookAccess : std::uint8_t {
    Ours,       // owned, and its file is open
    Elsewhere,  // another process owns it
    ReadOnly,   // nothing can be written where it lies
    Refused,    // the disk or another program refuses
};
struct BookClaim {
    BookAccess access = BookAccess::Refused;
    FileStatus status;  // why it is not ours
    explicit operator bool() const { return access == BookAccess::Ours; }
};

struct SaveResult {
    bool ok = false;
    std::string reason;  // when not ok: a sentence for the user
    // When ok: another program had written to the book since it was loaded or saved. `backup` is the name of
    // the backup that keeps what it wrote, empty when that was nothing.
    bool foundChanged = false;
    std::string backup = {};
};

// Any thread; every operation takes the file's lock, so a load never meets a save.
class BookFile final : public KRV::VELT::CKRVTradeImpl {
 public:
    // `place.name` as in "DravelBook_Dravel".
    BookFile(IFiles& files, IClock& clock, ILog& log, const KRV::Base::RecordFilePlace& place,
             ISecurityMaster* master = nullptr);
    ~BookFile() override;

    // Makes the folder, becomes the book's owner and opens its file, an empty one when there is none. When
    // the book is not ours then, nothing is held, Save fails, and nothing is ever written; it may be tried
    // again. Logs nothing: whoever tries every few seconds says when something changed.
    BookClaim Acquire();
    bool Owned();
    // Opens the file of a book that is not ours, to be loaded and closed (Close) at once: as long as it is
    // open, its owner cannot replace it.
    FileStatus OpenToRead();
    // Gives file and ownership back.
    void Release();

    // Hands every trade to `sink` in row order, also those behind damaged bytes. What is damaged, was passed
    // over, or is not as it was saved is reported, logged, and kept by a dated backup before the next save
    // writes over it. Trades with the deleted mark are told as such and are not to be shown. The caller has
    // the trades by identifier and sees to those that share one.
    KRV::VELT::TradeLoadReport LoadBook(KRV::VELT::TradeSink sink);
    // To be told after a load when so many trades had the identifier of a later, different one: logged, and
    // kept by a dated backup as other damage is.
    void TradesRenumbered(std::size_t count);

    // Who hears of saves from now on; nullptr: nobody. Not while one runs.
    void SetWatch(ISaveWatch* watch);
    // The book on the disk, as it was loaded or saved last.
    FileSum Sum();

    // Replaces the whole book by the image: returns ok once its bytes are on the disk. On failure the old
    // book stands as it was. Never throws.
    SaveResult Save(const BookImage& image);

 protected:
    bool SalvagesDamage() const override { return true; }

 private:
    BookClaim NotOurs(const FileStatus& status);
    bool IsAsSaved();
    KRV::VELT::TradeLoadReport FindChanged(const KRV::VELT::TradeLoadReport& loaded);
    SaveResult SaveLocked(const BookImage& image);
    SaveResult SwapIn();
    std::optional<FileInfo> InfoOf(const std::filesystem::path& path);
    bool FindOutsideChange();
    FileStatus WriteNew(const BookImage& image);
    FileStatus WriteWhole(IFile& file, const BookImage& image);
    bool NeedsBackup() const;
    FileStatus MakeBackup();
    FileStatus BackUpAs(const std::filesystem::path& to);
    FileStatus CopyTo(const std::filesystem::path& to);
    FileStatus Swap();

    std::filesystem::path lockPath_, newPath_;
    std::unique_ptr<IFile> owner_;
    ISaveWatch noWatch_;
    ISaveWatch* watch_ = &noWatch_;
    FileSum newSum_;  // of the image that was written last
    BookSums sums_;
    bool backedUp_ = false;  // the live file as it stands has its dated backup
    std::optional<FileInfo>
        known_;                  // the live file as it was loaded or saved last; none: it could not be told
    bool foundChanged_ = false;  // since the last save that succeeded
    std::string backupName_;     // of the last backup
};

// One save on its way to the writer thread. `done` is called once, on the thread that carries it out.
class BookSaveItem final : public KRV::Base::IADAItem {
 public:
    BookSaveItem(BookFile& file, BookImage image, std::function<void(const SaveResult&)> done);
    void Write() override;
    void Release() override { delete this; }

 private:
    BookFile& file_;
    BookImage image_;
    std::function<void(const SaveResult&)> done_;
};

}  // namespace Dravel
