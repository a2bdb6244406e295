#include "records/FileImpl.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

#include "message/FieldBytes.h"
#include "message/Tags.h"
#include "platform/FileTools.h"

namespace KRV::Base {

using namespace Dravel;

namespace {

constexpr std::size_t kBlock = 1048576;
constexpr std::size_t kMaxReaderBytes = 65535;
constexpr std::size_t kLookAhead = 13;  // behind a frame: the header of the next one and the tag of its code
constexpr std::size_t kMinHeld = 11;    // fewer bytes are not looked at: a header alone is no frame

void AppendDigits(std::string& text, std::int32_t value, std::size_t width) {
    char digits[12];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const auto count = static_cast<std::size_t>(end - digits);
    if (count < width) text.append(width - count, '0');
    text.append(digits, count);
}

}  // namespace

// One pass over the file. `buffer` holds [0, held); bytes before `parsed` are dealt with.
class CKRVFileImpl::Loader {
 public:
    // A smaller file needs no more than itself.
    Loader(CKRVFileImpl& file, std::uint64_t fileSize)
        : file_(file),
          size_(static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, fileSize + kMinHeld))),
          buffer_(std::make_unique_for_overwrite<std::uint8_t[]>(size_)) {}

    bool Run() {
        for (;;) {
            std::size_t got = 0;
            if (const FileStatus status = file_.stream_->Read(buffer_.get() + held_, size_ - held_, got);
                !status) {
                file_.LogFault("Read failed: ", status, "KRV::Base::CKRVFileImpl::Load");
                return false;
            }
            sum_.Add(buffer_.get() + held_, got);
            held_ += got;
            ended_ = got == 0;
            Parse();
            std::memmove(buffer_.get(), buffer_.get() + parsed_, held_ - parsed_);
            held_ -= std::exchange(parsed_, 0);
            // Bytes that nothing came behind, twice in a row, stay unread.
            if (ended_ && (held_ == 0 || std::exchange(endedBefore_, true))) break;
        }
        if (held_ > 0) file_.PassedOver(held_);
        file_.loadedSum_ = sum_.Sum();
        return true;
    }

 private:
    std::size_t Left() const { return held_ - parsed_; }
    const std::uint8_t* At() const { return buffer_.get() + parsed_; }

    void Parse() {
        while (Left() >= kMinHeld) {
            CTagMessageReader reader(At(), static_cast<std::uint16_t>(std::min(Left(), kMaxReaderBytes)));
            const FrameOpening opening = reader.Open();
            if (opening.opened) {
                if (file_.SalvagesDamage() && !ended_ && Left() < opening.consumed + kLookAhead) return;
                endedBefore_ = false;
                Take(reader, opening);
            } else if (!file_.SalvagesDamage() || !StepOver(opening)) {
                return;
            }
        }
    }

    void Take(CTagMessageReader& reader, const FrameOpening& opening) {
        const std::size_t strays = reader.Plain() ? opening.consumed - reader.Length() : StraysBefore();
        if (strays > 0) file_.PassedOver(strays);
        std::size_t step = opening.consumed;
        file_.place_ = {file_.place_.line + 1, {At() + strays, step - strays}, {At() + step, Left() - step}};
        std::size_t foreign = 0;
        try {
            foreign = file_.ReadFrame(reader);
        } catch (...) {
            file_.FrameFailed();
        }
        if (foreign > 0 && reader.Plain() && file_.SalvagesDamage()) step -= foreign;
        file_.loadedBytes_ += reader.Length() - static_cast<std::uint32_t>(opening.consumed - step);
        parsed_ += step;
    }

    // Steps behind the damage at hand. False when more bytes may turn it into a frame.
    bool StepOver(const FrameOpening& opening) {
        const std::size_t strays = StraysBefore();
        const std::size_t window = std::min(Left(), kMaxReaderBytes);
        const bool atHeader = window - strays >= wire::kHeaderSize;
        // Everything behind a header at the front was there to be opened, or nothing more will come.
        const bool final = opening.needed == 0 || ended_ || opening.needed > kMaxReaderBytes;
        if (atHeader && strays == 0 && !final) return false;
        const std::size_t step = strays > 0 ? strays : 1;
        file_.PassedOver(step);
        parsed_ += step;
        return true;
    }

    // Bytes in front of the first header; all but the last nine when there is none.
    std::size_t StraysBefore() const {
        const std::size_t end = std::min(Left(), kMaxReaderBytes) - (wire::kHeaderSize - 1);
        std::size_t at = 0;
        while (at < end && !IsHeader(At() + at)) {
            ++at;
        }
        return at;
    }

    static bool IsHeader(const std::uint8_t* at) {
        return at[0] == wire::kMark && at[5] == wire::kMark &&
               wire::Get<std::uint16_t>(at + 1) == tag::Header &&
               wire::Get<std::uint16_t>(at + 6) == tag::BodyLength;
    }

    CKRVFileImpl& file_;
    const std::size_t size_;
    std::unique_ptr<std::uint8_t[]> buffer_;
    RunningChecksum sum_;
    std::size_t held_ = 0, parsed_ = 0;
    bool ended_ = false, endedBefore_ = false;
};

CKRVFileImpl::CKRVFileImpl(IFiles& files, IClock& clock, ILog& log, const RecordFilePlace& place)
    : backupFolder_(place.backups), baseName_(place.name), files_(files), clock_(clock), log_(log) {
    livePath_ = place.folder / (baseName_ + extension_);
}

CKRVFileImpl::~CKRVFileImpl() = default;

bool CKRVFileImpl::Open(bool create, FileMode existing, FileMode fresh, FileShare share) {
    const std::lock_guard guard(lock_);
    stream_.reset();
    FileInfo info;
    const FileStatus found = files_.Info(livePath_, info);
    const bool missing = Missing(found);
    openStatus_ = found;
    if (missing && !create) return false;
    // A file that is there but cannot be asked about must never be opened anew, which would empty it.
    openStatus_ = files_.Open(livePath_, missing ? fresh : existing, share, stream_);
    return static_cast<bool>(openStatus_);
}

bool CKRVFileImpl::Load() {
    const std::lock_guard guard(lock_);
    std::uint64_t size = 0;
    if (!stream_ || !AgreesToLoad() || !stream_->Seek(0) || !stream_->Size(size)) return false;
    loadedBytes_ = 0;
    place_ = {};
    return Loader(*this, size).Run();
}

std::string CKRVFileImpl::BackupStamp(bool withTime) const {
    const CivilTime now = clock_.LocalNow();
    std::string stamp;
    AppendDigits(stamp, now.year, 4);
    AppendDigits(stamp, now.month, 2);
    AppendDigits(stamp, now.day, 2);
    if (withTime) {
        stamp += '_';
        AppendDigits(stamp, now.hour, 2);
        AppendDigits(stamp, now.minute, 2);
    }
    return stamp;
}

std::filesystem::path CKRVFileImpl::BackupPath(const std::string& stamp) const {
    if (joinedBackupName_) return backupFolder_ / (baseName_ + "_" + stamp + extension_);
    std::filesystem::path path = backupFolder_ / baseName_;
    path += "_" + stamp;
    path += extension_;
    return path;
}

// The system moves no file that is held open, so the stream is closed first and opened again whatever comes
// of it.
bool CKRVFileImpl::Backup() {
    const std::lock_guard guard(lock_);
    const std::filesystem::path to = BackupPath(BackupStamp(true));
    stream_.reset();
    FileStatus status = files_.Rename(livePath_, to);
    if (status.fault == FileFault::PathNotFound) {
        files_.MakeFolders(backupFolder_);
        status = files_.Rename(livePath_, to);
    }
    if (!status) LogFault("Rename failed: ", status, "KRV::Base::CKRVFileImpl::Backup");
    return Open(static_cast<bool>(status)) && status;
}

void CKRVFileImpl::Close() {
    const std::lock_guard guard(lock_);
    stream_.reset();
}

bool CKRVFileImpl::IsOpen() {
    const std::lock_guard guard(lock_);
    return stream_ != nullptr;
}

std::uint32_t CKRVFileImpl::LoadedBytes() {
    const std::lock_guard guard(lock_);
    return loadedBytes_;
}

void CKRVFileImpl::PassedOver(std::uint64_t) {}

void CKRVFileImpl::LogFault(const char* what, const FileStatus& status, const char* operation) const {
    log_.Line(LogLevel::Error, operation, what + std::to_string(status.code));
}

}  // namespace KRV::Base
