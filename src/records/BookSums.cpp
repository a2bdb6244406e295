#include "records/BookSums.h"

#include <algorithm>
#include <bit>
#include <string>

#include "message/FieldBytes.h"
#include "platform/FileTools.h"
#include "support/FaultText.h"

namespace Dravel {

namespace {

// The words of the file: these four, one a frame, and the checksum of all before it.
constexpr std::size_t kMagicWord = 0, kLengthWord = 1, kChecksumWord = 2, kCountWord = 3, kHeadWords = 4;
constexpr std::uint64_t kMagic = 0x31534D5553565244;  // "DRVSUMS1"
constexpr std::uint64_t kMostFrames = 33554432;  // of a file that is believed: three times the largest book
constexpr std::size_t kBlockWords = 131072;      // written in one piece
constexpr char kContext[] = "BookSums";
constexpr const char* kEndings[] = {".sums", ".sums.new", ".sums.new2"};

static_assert(std::endian::native == std::endian::little, "the file is little-endian");
constexpr std::size_t kWord = sizeof(std::uint64_t);

constexpr std::size_t WordsOf(std::uint64_t frames) {
    return kHeadWords + static_cast<std::size_t>(frames) + 1;
}

bool CanBeSums(std::uint64_t size) {
    return size % kWord == 0 && size >= WordsOf(0) * kWord && size <= WordsOf(kMostFrames) * kWord;
}

bool ChecksItself(const std::vector<std::uint64_t>& words) {
    return words.size() >= WordsOf(0) && words[kMagicWord] == kMagic &&
           words[kCountWord] == words.size() - WordsOf(0) &&
           words.back() == Checksum(words.data(), (words.size() - 1) * kWord);
}

}  // namespace

SavedFrames::SavedFrames(std::vector<std::uint64_t> checksums) : saved_(checksums.size()) {
    std::sort(checksums.begin(), checksums.end());
    for (const std::uint64_t checksum : checksums) {
        if (left_.empty() || left_.back().first != checksum) left_.emplace_back(checksum, 0);
        ++left_.back().second;
    }
}

bool SavedFrames::Find(std::uint64_t checksum) {
    const auto found = std::lower_bound(left_.begin(), left_.end(), std::pair(checksum, std::uint32_t{0}));
    if (found == left_.end() || found->first != checksum || found->second == 0) return false;
    --found->second;
    ++found_;
    return true;
}

FileSum BookSums::Slot::Book() const {
    return {words[kLengthWord], words[kChecksumWord]};
}

BookSums::BookSums(IFiles& files, ILog& log, std::filesystem::path book) : files_(files), log_(log) {
    for (std::size_t i = 0; i < kSlots; ++i) {
        slots_[i].path = book;
        slots_[i].path += kEndings[i];
    }
}

// Memory may run out at any path or line of the log.
template <class Work>
void BookSums::Try(Work work) noexcept {
    try {
        work();
    } catch (...) {
        log_.Line(LogLevel::Warning, kContext, "Memory ran out");
    }
}

void BookSums::Read() noexcept {
    fits_ = kNone;
    misleading_ = false;
    for (Slot& slot : slots_) {
        slot.words.clear();
        Try([&] { ReadSlot(slot); });
    }
}

void BookSums::ReadSlot(Slot& slot) {
    std::unique_ptr<IFile> file;
    FileStatus status = files_.Open(slot.path, FileMode::Read, FileShare::DenyNone, file);
    slot.there = !Missing(status);
    if (!slot.there) return;
    std::uint64_t size = 0;
    std::size_t got = 0;
    std::vector<std::uint64_t> words;
    if (status) status = file->Size(size);
    if (status && CanBeSums(size)) {
        words.resize(static_cast<std::size_t>(size / kWord));
        status = file->Read(words.data(), static_cast<std::size_t>(size), got);
    }
    if (!status) return LogFault("The sums could not be read", status);
    if (got == size && ChecksItself(words)) {
        slot.words = std::move(words);
    } else {
        log_.Line(LogLevel::Warning, kContext, "The sums are damaged and not believed");
    }
}

bool BookSums::Fits(const FileSum& book) {
    for (std::size_t i = 0; i < kSlots && fits_ == kNone; ++i) {
        if (slots_[i].Checks() && slots_[i].Book() == book) fits_ = i;
    }
    return fits_ != kNone || !Known();
}

SavedFrames BookSums::Frames(std::uint64_t length) const {
    const auto best = std::find_if(slots_.begin(), slots_.end(), [&](const Slot& slot) {
        return slot.Checks() && slot.Book().length == length;
    });
    const auto& words = (best == slots_.end() ? slots_[kInPlace] : *best).words;
    return SavedFrames({words.begin() + kHeadWords, words.end() - 1});
}

void BookSums::EndRead() {
    for (Slot& slot : slots_)
        slot.words = {};
}

void BookSums::Begin(std::uint64_t frames) noexcept {
    written_ = kNone;
    words_.clear();
    try {
        words_.reserve(WordsOf(frames));
        words_.resize(kHeadWords);
        whole_ = true;
    } catch (...) {
        whole_ = false;
    }
}

void BookSums::Add(std::span<const std::uint8_t> piece) noexcept {
    while (!piece.empty() && whole_) {
        const std::size_t length =
            piece.size() < wire::kHeaderSize
                ? wire::kHeaderSize
                : wire::Get<std::uint16_t>(piece.data() + wire::kLengthOffset) + wire::kHeaderSize;
        whole_ = length <= piece.size() && words_.size() + 1 < words_.capacity();
        if (!whole_) return;
        words_.push_back(Checksum(piece.data(), length));
        piece = piece.subspan(length);
    }
}

void BookSums::Write(const FileSum& book, ISaveWatch& watch) noexcept {
    const std::size_t into = fits_ == 1 ? 2 : 1;
    Try([&] {
        FileStatus status{FileFault::Other, 0};
        if (whole_) {
            CloseWords(book);
            status = WriteSlot(slots_[into], watch);
        }
        if (status) {
            written_ = into;
        } else {
            LogFault("The sums could not be written, the book is saved without", status);
            RemoveSlot(into);
        }
    });
    words_ = {};
}

void BookSums::CloseWords(const FileSum& book) {
    words_[kMagicWord] = kMagic;
    words_[kLengthWord] = book.length;
    words_[kChecksumWord] = book.checksum;
    words_[kCountWord] = words_.size() - kHeadWords;
    words_.push_back(Checksum(words_.data(), words_.size() * kWord));
}

FileStatus BookSums::WriteSlot(Slot& slot, ISaveWatch& watch) {
    std::unique_ptr<IFile> file;
    FileStatus status = files_.Open(slot.path, FileMode::Create, FileShare::DenyAll, file);
    if (!status) return status;
    slot.there = true;
    for (std::size_t at = 0; at < words_.size() && status; at += kBlockWords) {
        const std::size_t count = std::min(kBlockWords, words_.size() - at);
        status = file->Write(words_.data() + at, count * kWord);
        watch.Between();
    }
    if (status) status = file->Flush();
    const FileStatus closed = file->Close();
    return status ? closed : status;
}

void BookSums::BeforeSwap() noexcept {
    if (written_ != kNone) return;
    Try([&] { RemoveSlot(kInPlace); });
    if (fits_ == kInPlace && !slots_[kInPlace].there) fits_ = kNone;
}

void BookSums::AfterSwap(bool swapped) noexcept {
    if (swapped) {
        fits_ = written_;
        misleading_ = fits_ == kNone && slots_[kInPlace].there;
    } else if (written_ != kNone) {
        Try([&] { RemoveSlot(written_); });
    }
}

void BookSums::Settle() noexcept {
    if (misleading_) Try([&] { RemoveSlot(kInPlace); });
    misleading_ = misleading_ && slots_[kInPlace].there;
    if (fits_ != kNone) Try([&] { Rename(); });
}

// Where the name cannot be had, the sums count under the one that they have.
void BookSums::Rename() {
    if (fits_ != kInPlace) {
        const FileStatus status = files_.Replace(slots_[fits_].path, slots_[kInPlace].path);
        if (!status) return LogFault("The sums could not be renamed", status);
        slots_[fits_].there = false;
        slots_[kInPlace].there = true;
        fits_ = kInPlace;
    }
    for (std::size_t i = kInPlace + 1; i < kSlots; ++i)
        RemoveSlot(i);
}

// What cannot be removed is emptied: that needs other rights, and empty sums say nothing.
void BookSums::RemoveSlot(std::size_t number) {
    Slot& slot = slots_[number];
    if (!slot.there) return;
    const FileStatus status = files_.Remove(slot.path);
    std::unique_ptr<IFile> file;
    slot.there =
        !status && !Missing(status) && !files_.Open(slot.path, FileMode::Create, FileShare::DenyNone, file);
    if (slot.there) LogFault("Old sums could not be removed", status);
}

void BookSums::LogFault(const char* what, const FileStatus& status) {
    log_.Line(LogLevel::Warning, kContext, FaultText(what, status));
}

}  // namespace Dravel
