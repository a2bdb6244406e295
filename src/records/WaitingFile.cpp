#include "records/WaitingFile.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "message/FieldBytes.h"
#include "records/Checksum.h"
#include "records/TradeFrame.h"

namespace Dravel {

namespace {

constexpr char kPrefix[] = "DravelBook_Dravel.waiting-";
constexpr std::size_t kSumField = wire::kTagSize + sizeof(std::uint64_t);
constexpr std::size_t kLongestFrame = 65535;
constexpr std::size_t kReadBlock = 1048576;

// The frame with its last field, the checksum of all bytes before that.
std::vector<std::uint8_t> Closed(CTagMessageWriter& frame) {
    frame.Append64(tag::FrameChecksum, 0);
    const std::uint8_t* data = frame.GetData();
    std::vector<std::uint8_t> bytes(data, data + frame.GetLength());
    if (bytes.size() > kSumField)
        wire::Put(bytes.data() + bytes.size() - sizeof(std::uint64_t),
                  Checksum(bytes.data(), bytes.size() - kSumField));
    return bytes;
}

bool Checks(std::span<const std::uint8_t> frame) {
    if (frame.size() <= kSumField) return false;
    const std::uint8_t* field = frame.data() + frame.size() - kSumField;
    return field[0] == wire::kMark && wire::Get<tag::Tag>(field + 1) == tag::FrameChecksum &&
           wire::Get<std::uint64_t>(field + wire::kTagSize) ==
               Checksum(frame.data(), frame.size() - kSumField);
}

// Takes what the frame at the front says. Returns its length, 0 when it is torn, damaged or none of ours.
std::size_t TakeFrame(std::span<const std::uint8_t> bytes, std::vector<WaitingTrade>& trades) {
    CTagMessageReader frame(bytes.data(), static_cast<std::uint16_t>(std::min(bytes.size(), kLongestFrame)));
    const FrameOpening opening = frame.Open();
    if (!opening.opened || frame.MessageCode() != msg::WaitingTrade || !frame.Plain()) return 0;
    const std::size_t length = frame.Length();
    if (opening.consumed != length || !Checks(bytes.first(length))) return 0;
    WaitingTrade trade;
    if (!frame.NextTag() || frame.CurrentTag() != tag::WaitingNumber || !frame.Read32(trade.number)) return 0;
    if (!frame.NextTag()) return 0;
    if (frame.CurrentTag() == tag::FrameChecksum) {
        std::erase_if(trades, [&](const WaitingTrade& other) { return other.number == trade.number; });
    } else {
        ReadOwnFields(frame, trade.record);
        trades.push_back(trade);
    }
    return length;
}

FileStatus ReadAll(IFile& file, std::vector<std::uint8_t>& bytes) {
    for (std::size_t got = kReadBlock; got > 0;) {
        const std::size_t size = bytes.size();
        bytes.resize(size + kReadBlock);
        const FileStatus status = file.Read(bytes.data() + size, kReadBlock, got);
        bytes.resize(size + (status ? got : 0));
        if (!status) return status;
    }
    return {};
}

}  // namespace

std::vector<std::uint8_t> WaitingFrame(const WaitingTrade& trade) {
    CTagMessageWriter frame(msg::WaitingTrade);
    frame.Append32(tag::WaitingNumber, trade.number);
    WriteTradeFields(trade.record, frame);
    return Closed(frame);
}

std::vector<std::uint8_t> WaitingDropFrame(std::uint32_t number) {
    CTagMessageWriter frame(msg::WaitingTrade);
    frame.Append32(tag::WaitingNumber, number);
    return Closed(frame);
}

WaitingContents ParseWaiting(std::span<const std::uint8_t> bytes) {
    WaitingContents contents;
    while (const std::size_t length = TakeFrame(bytes, contents.trades))
        bytes = bytes.subspan(length);
    contents.unread = bytes.size();
    return contents;
}

bool WaitingFile::IsName(const std::filesystem::path& name) {
    const std::string text = name.string();
    return text.starts_with(kPrefix) && text.find('.', sizeof kPrefix) == text.npos;
}

// No two files of a process have one name, however short they live: the second is counted on.
FileStatus WaitingFile::Make(IFiles& files, const IClock& clock, const std::filesystem::path& folder,
                             std::uint32_t process, std::unique_ptr<WaitingFile>& made) {
    files.MakeFolders(folder);  // a failure shows when the file is made
    std::filesystem::path path;
    FileInfo info;
    std::int64_t time = clock.Now();
    do {
        path = folder / (kPrefix + std::to_string(process) + "-" + std::to_string(time++));
    } while (files.Info(path, info));
    std::unique_ptr<IFile> file;
    const FileStatus status = files.Open(path, FileMode::Create, FileShare::DenyWrite, file);
    if (status) made.reset(new WaitingFile(files, clock, std::move(path), std::move(file)));
    return status;
}

FileStatus WaitingFile::TakeOver(IFiles& files, const IClock& clock, const std::filesystem::path& path,
                                 std::unique_ptr<WaitingFile>& taken, WaitingContents& contents) {
    std::unique_ptr<IFile> file;
    FileStatus status = files.Open(path, FileMode::ReadWrite, FileShare::DenyWrite, file);
    std::vector<std::uint8_t> bytes;
    if (status) status = ReadAll(*file, bytes);
    if (!status) return status;
    contents = ParseWaiting(bytes);
    taken.reset(new WaitingFile(files, clock, path, std::move(file)));
    taken->whole_ = bytes.size() - contents.unread;
    taken->torn_ = contents.unread > 0;
    return {};
}

FileStatus WaitingFile::Append(std::span<const std::uint8_t> frame) {
    if (torn_) {
        if (const FileStatus status = file_->Cut(whole_); !status) return status;
        torn_ = false;
    }
    if (const FileStatus status = file_->Write(frame.data(), frame.size()); !status) {
        torn_ = !file_->Cut(whole_);
        return status;
    }
    whole_ += frame.size();
    unflushed_ = true;
    if (!flushed_ || clock_.Ticks() - flushedAt_ >= kFlushPause) Flush();  // the bytes outlive the process
    return {};
}

FileStatus WaitingFile::Flush() {
    if (!unflushed_) return {};
    const FileStatus status = file_->Flush();
    unflushed_ = !status;
    flushed_ = true;
    flushedAt_ = clock_.Ticks();
    return status;
}

// Emptied first: a name that cannot be removed leaves nothing behind that would be asked about.
FileStatus WaitingFile::Drop() {
    if (file_->Cut(0)) file_->Flush();
    file_.reset();
    return files_.Remove(path_);
}

}  // namespace Dravel
