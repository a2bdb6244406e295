#include "records/BookFile.h"

#include <mutex>
#include <utility>

#include "platform/FileTools.h"
#include "records/DamageLog.h"
#include "support/FaultText.h"

namespace Dravel {

namespace {

namespace fs = std::filesystem;

constexpr int kSwapTries = 11;  // half a second in all
constexpr std::uint32_t kSwapPause = 50;
constexpr int kMostBackupsOfOneMinute = 99;
constexpr char kContext[] = "BookFile";

std::int64_t LocalDay(const IClock& clock, std::int64_t time) {
    const std::int64_t local = time + clock.ZoneOffset(time);
    return local / 86400 - (local % 86400 < 0);
}

}  // namespace

BookFile::BookFile(IFiles& files, IClock& clock, ILog& log, const KRV::Base::RecordFilePlace& place,
                   ISecurityMaster* master)
    : CKRVTradeImpl(files, clock, log, place, master),
      lockPath_(place.folder / (place.name + ".lock")),
      newPath_(WithEnding(livePath_, ".new")),
      sums_(files, log, place.folder / place.name) {}

BookFile::~BookFile() {
    Release();
}

BookClaim BookFile::Acquire() {
    const std::lock_guard guard(lock_);
    if (owner_) return {BookAccess::Ours, {}};
    const FileStatus folder = files_.MakeFolders(livePath_.parent_path());
    if (const FileStatus status = files_.OpenLock(lockPath_, owner_); !status)
        return NotOurs(folder ? status : folder);
    std::uint64_t bytes = 0;
    FileStatus status = Open(true) ? stream_->Size(bytes) : openStatus_;
    if (!status) {
        Release();
        return {status.fault == FileFault::Denied ? BookAccess::ReadOnly : BookAccess::Refused, status};
    }
    holdsUnread_ = bytes > 0;  // until a load has seen all of it
    backedUp_ = foundChanged_ = false;
    known_ = InfoOf(livePath_);
    return {BookAccess::Ours, {}};
}

// Who may not write here is not told whether an owner holds the lock; trying to read it tells.
BookClaim BookFile::NotOurs(const FileStatus& status) {
    if (status.fault == FileFault::InUse) return {BookAccess::Elsewhere, status};
    if (status.fault != FileFault::Denied) return {BookAccess::Refused, status};
    std::unique_ptr<IFile> lock;
    const FileStatus held = files_.Open(lockPath_, FileMode::Read, FileShare::DenyWrite, lock);
    if (held.fault == FileFault::InUse) return {BookAccess::Elsewhere, held};
    return {BookAccess::ReadOnly, status};
}

FileStatus BookFile::OpenToRead() {
    const std::lock_guard guard(lock_);
    Open(false, FileMode::Read, FileMode::Create, FileShare::DenyNone);
    return openStatus_;
}

bool BookFile::Owned() {
    const std::lock_guard guard(lock_);
    return owner_ != nullptr;
}

// The file first: who owns the book next must find it free.
void BookFile::Release() {
    const std::lock_guard guard(lock_);
    if (owner_) sums_.Settle();
    stream_.reset();
    owner_.reset();
}

KRV::VELT::TradeLoadReport BookFile::LoadBook(KRV::VELT::TradeSink sink) {
    const std::lock_guard guard(lock_);
    known_ = InfoOf(livePath_);
    sums_.Read();
    writtenHere_ = sums_.Known();
    KRV::VELT::TradeLoadReport report = LoadInto(std::move(sink));
    if (report.complete && !IsAsSaved()) report = FindChanged(report);
    sums_.EndRead();
    if (owner_) sums_.Settle();
    holdsUnread_ = !report.Clean();
    if (!report.Clean()) LogDamage(log_, report, damaged_);
    damaged_ = {};
    return report;
}

// Who only looks on reads the sums again: the owner may have saved between them and the book.
bool BookFile::IsAsSaved() {
    if (sums_.Fits(loadedSum_)) return true;
    if (owner_) return false;
    sums_.Read();
    return sums_.Fits(loadedSum_);
}

// Reads the file once more for the frames that were not saved so: only a file that does not fit its sums pays
// for the checksums of its frames.
KRV::VELT::TradeLoadReport BookFile::FindChanged(const KRV::VELT::TradeLoadReport& loaded) {
    saved_ = sums_.Frames(loadedSum_.length);
    ISecurityMaster* const master = std::exchange(master_, nullptr);
    KRV::VELT::TradeLoadReport report = LoadInto([](const TradeRecord&, bool) {});
    master_ = master;
    if (!report.complete) report = loaded;
    report.failedFrames = loaded.failedFrames;
    report.asSaved = false;
    report.savedFrames = saved_->Saved();
    report.savedFound = saved_->Found();
    saved_.reset();
    return report;
}

void BookFile::TradesRenumbered(std::size_t count) {
    const std::lock_guard guard(lock_);
    holdsUnread_ = true;
    log_.Line(LogLevel::Warning, kContext,
              std::to_string(count) +
                  " trades of the record file had the identifier of a later, different one and got new ones");
}

void BookFile::SetWatch(ISaveWatch* watch) {
    const std::lock_guard guard(lock_);
    watch_ = watch ? watch : &noWatch_;
}

FileSum BookFile::Sum() {
    const std::lock_guard guard(lock_);
    return loadedSum_;
}

SaveResult BookFile::Save(const BookImage& image) {
    try {
        const std::lock_guard guard(lock_);
        SaveResult result = SaveLocked(image);
        lastFault_ = result.reason;
        if (!result.ok) log_.Line(LogLevel::Error, kContext, result.reason);
        return result;
    } catch (...) {
        return {false, kMemoryRanOut};
    }
}

SaveResult BookFile::SaveLocked(const BookImage& image) {
    if (!owner_) return {false, kBookNotOwned};
    if (const FileStatus status = WriteNew(image); !status) {
        return {false, FaultText("The new book could not be written", status)};
    }
    sums_.Write(newSum_, *watch_);
    const std::optional<FileInfo> fresh = InfoOf(newPath_);
    // No system replaces a file that is held open; ownership holds off other books meanwhile.
    stream_.reset();
    SaveResult result = SwapIn();
    sums_.AfterSwap(result.ok);
    if (result.ok) {
        result.foundChanged = std::exchange(foundChanged_, false);
        if (result.foundChanged && backedUp_) result.backup = backupName_;
        loadedSum_ = newSum_;
        known_ = fresh;
        holdsUnread_ = false;
        backedUp_ = false;
    } else {
        files_.Remove(newPath_);
    }
    // Not opened again it can still be saved: the next save needs its name only.
    if (!Open(false)) log_.Line(LogLevel::Warning, kContext, "The record file cannot be opened again");
    return result;
}

SaveResult BookFile::SwapIn() {
    FindOutsideChange();
    if (const FileStatus status = MakeBackup(); !status)
        return {false, FaultText("The backup could not be made", status)};
    watch_->BeforeSwap(newSum_);
    sums_.BeforeSwap();
    const FileStatus status = Swap();
    watch_->AfterSwap(static_cast<bool>(status));
    if (!status) return {false, FaultText("The old book could not be replaced", status)};
    return {true, {}};
}

std::optional<FileInfo> BookFile::InfoOf(const fs::path& path) {
    FileInfo info;
    return files_.Info(path, info) ? std::optional(info) : std::nullopt;
}

// Whether another program has written to the live file, as its length and time tell; it is then worth a
// backup, whether or not the file before it had one.
bool BookFile::FindOutsideChange() {
    const std::optional<FileInfo> now = InfoOf(livePath_);
    if (!now || !known_ || (now->size == known_->size && now->modified == known_->modified)) return false;
    log_.Line(LogLevel::Warning, kContext,
              "Another program has written to the record file since it was loaded or saved");
    known_ = now;
    foundChanged_ = holdsUnread_ = true;
    backedUp_ = false;
    return true;
}

FileStatus BookFile::WriteNew(const BookImage& image) {
    files_.MakeFolders(newPath_.parent_path());
    std::unique_ptr<IFile> file;
    FileStatus status = files_.Open(newPath_, FileMode::Create, FileShare::DenyAll, file);
    if (!status) return status;
    status = WriteWhole(*file, image);
    const FileStatus closed = file->Close();
    if (status) status = closed;
    file.reset();
    if (!status) files_.Remove(newPath_);
    return status;
}

FileStatus BookFile::WriteWhole(IFile& file, const BookImage& image) {
    RunningChecksum sum;
    sums_.Begin(image.Trades());
    for (std::size_t i = 0; i < image.Pieces(); ++i) {
        const auto piece = image.Piece(i);
        sums_.Add(piece);
        sum.Add(piece.data(), piece.size());
        if (const FileStatus status = file.Write(piece.data(), piece.size()); !status) return status;
        watch_->Between();
    }
    newSum_ = sum.Sum();
    if (const FileStatus status = file.Flush(); !status) return status;
    std::uint64_t size = 0;
    if (const FileStatus status = file.Size(size); !status) return status;
    return size == image.Bytes() ? FileStatus{} : FileStatus{FileFault::Full, 0};
}

// At the first save of a day over a file of another day (a file from the future counts, too: the clock was
// wrong), and over bytes that are in no trade of the book.
bool BookFile::NeedsBackup() const {
    FileInfo info;
    if (!files_.Info(livePath_, info)) return true;  // MakeBackup finds out whether there is anything to keep
    if (info.size == 0 || backedUp_) return false;
    return holdsUnread_ || LocalDay(clock_, info.modified) != LocalDay(clock_, clock_.Now());
}

FileStatus BookFile::MakeBackup() {
    if (!NeedsBackup()) return {};
    if (const FileStatus status = files_.MakeFolders(backupFolder_); !status) return status;
    const std::string stamp = BackupStamp(true);
    fs::path to = BackupPath(stamp);
    FileStatus status = BackUpAs(to);
    for (int n = 2; status.fault == FileFault::Exists && n <= kMostBackupsOfOneMinute; ++n) {
        to = BackupPath(stamp + "_" + std::to_string(n));
        status = BackUpAs(to);
    }
    backupName_ = to.filename().string();
    backedUp_ = static_cast<bool>(status);
    // Somebody took the old book away: there is nothing to keep.
    FileInfo info;
    const bool gone =
        status.fault == FileFault::NotFound && files_.Info(livePath_, info).fault == FileFault::NotFound;
    return gone ? FileStatus{} : status;
}

FileStatus BookFile::BackUpAs(const fs::path& to) {
    const FileStatus status = files_.Link(livePath_, to);
    return status || status.fault == FileFault::Exists ? status : CopyTo(to);
}

FileStatus BookFile::CopyTo(const fs::path& to) {
    std::unique_ptr<IFile> from;
    const FileStatus status = files_.Open(livePath_, FileMode::Read, FileShare::DenyWrite, from);
    return status ? CopyWhole(files_, *from, to, [this] { watch_->Between(); }) : status;
}

FileStatus BookFile::Swap() {
    for (int tries = 1;; ++tries) {
        const FileStatus status = files_.Replace(newPath_, livePath_);
        if (status.fault != FileFault::InUse || tries == kSwapTries) return status;
        watch_->Between();
        clock_.Sleep(kSwapPause);
        // Who held it may have written to it.
        if (!FindOutsideChange()) continue;
        if (const FileStatus kept = MakeBackup(); !kept) return kept;
    }
}

BookSaveItem::BookSaveItem(BookFile& file, BookImage image, std::function<void(const SaveResult&)> done)
    : file_(file), image_(std::move(image)), done_(std::move(done)) {}

void BookSaveItem::Write() {
    const SaveResult result = file_.Save(image_);
    if (done_) done_(result);
}

}  // namespace Dravel
