// Takes the bytes for a record file: the book opens whatever they are, and what it loaded survives a save and
// a reopening.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <vector>

#include "fuzz/FuzzCheck.h"
#include "records/BookFile.h"

namespace Dravel::Fuzz {

// A disk of plain blocks: no faults, no shares.
class BlockDisk final : public IFiles {
 public:
    std::map<std::filesystem::path, std::vector<std::uint8_t>> files;

    FileStatus Open(const std::filesystem::path& path, FileMode mode, FileShare,
                    std::unique_ptr<IFile>& file) override {
        if (mode != FileMode::Create && !files.contains(path)) return {FileFault::NotFound, 0};
        auto& bytes = files[path];
        if (mode == FileMode::Create) bytes.clear();
        file = std::make_unique<Block>(bytes);
        return {};
    }
    FileStatus OpenLock(const std::filesystem::path& path, std::unique_ptr<IFile>& file) override {
        file = std::make_unique<Block>(files[path]);
        return {};
    }
    FileStatus Rename(const std::filesystem::path&, const std::filesystem::path&) override { return {}; }
    FileStatus Replace(const std::filesystem::path& from, const std::filesystem::path& to) override {
        files[to].swap(files[from]);
        files.erase(from);
        return {};
    }
    FileStatus Link(const std::filesystem::path&, const std::filesystem::path&) override {
        linked = true;
        return {};
    }
    FileStatus Remove(const std::filesystem::path& path) override {
        return {files.erase(path) ? FileFault::None : FileFault::NotFound, 0};
    }
    FileStatus Info(const std::filesystem::path& path, FileInfo& info) override {
        if (!files.contains(path)) return {FileFault::NotFound, 0};
        info.size = files[path].size();
        return {};
    }
    FileStatus MakeFolders(const std::filesystem::path&) override { return {}; }
    FileStatus List(const std::filesystem::path&, std::vector<std::filesystem::path>&) override { return {}; }
    bool linked = false;

 private:
    class Block final : public IFile {
     public:
        explicit Block(std::vector<std::uint8_t>& bytes) : bytes_(bytes) {}
        FileStatus Read(void* into, std::size_t capacity, std::size_t& got) override {
            got = std::min(capacity, bytes_.size() - at_);
            if (got > 0) std::memcpy(into, bytes_.data() + at_, got);
            at_ += got;
            return {};
        }
        FileStatus Write(const void* from, std::size_t count) override {
            const auto* bytes = static_cast<const std::uint8_t*>(from);
            bytes_.insert(bytes_.end(), bytes, bytes + count);
            return {};
        }
        FileStatus Flush() override { return {}; }
        FileStatus Seek(std::uint64_t position) override {
            at_ = static_cast<std::size_t>(position);
            return {};
        }
        FileStatus Size(std::uint64_t& size) override {
            size = bytes_.size();
            return {};
        }
        FileStatus Cut(std::uint64_t) override { return {FileFault::Other, 0}; }
        FileStatus Close() override { return {}; }

     private:
        std::vector<std::uint8_t>& bytes_;
        std::size_t at_ = 0;
    };
};

struct StoppedClock final : IClock {
    std::int64_t Now() const override { return 0; }
    CivilTime LocalNow() const override { return {}; }
    std::int32_t ZoneOffset(std::int64_t) const override { return 0; }
    std::uint64_t Ticks() const override { return 0; }
    void Sleep(std::uint32_t) const override {}
};
struct NoLog final : ILog {
    void Line(LogLevel, std::string_view, std::string_view) override {}
};

inline void FuzzRecordFile(const std::uint8_t* data, std::size_t size) {
    BlockDisk disk;
    StoppedClock clock;
    NoLog log;
    const std::filesystem::path book = "Data/Book.ada";
    disk.files[book].assign(data, data + size);
    BookFile file(disk, clock, log, {"Data", "Backup", "Book"});
    Require(static_cast<bool>(file.Acquire()), "a book that nobody holds is ours");

    std::vector<TradeRecord> trades;
    BookImage image;
    const auto report = file.LoadBook([&](const TradeRecord& trade, bool) {
        trades.push_back(trade);
        trades.back().veltTradeID = static_cast<std::uint32_t>(trades.size());
        image.Append(trades.back());
    });
    Require(report.complete, "a disk without faults is read to its end");
    Require(report.trades == trades.size(), "every trade is handed on");
    Require(report.bytesPassedOver <= size, "no more is passed over than there is");

    Require(file.Save(image).ok, "what was loaded can be saved");
    Require(disk.linked == !report.Clean(),
            "bytes that are in no trade are kept by a backup, and only those");
    std::size_t at = 0;
    const auto again = file.LoadBook([&](const TradeRecord& trade, bool) {
        Require(at < trades.size(), "no trade comes out of nothing");
        std::uint8_t before[kMaxTradeFrame], after[kMaxTradeFrame];
        const std::size_t length = BuildStoredTrade(trades[at++], false, before);
        Require(BuildStoredTrade(trade, false, after) == length && std::memcmp(before, after, length) == 0,
                "a saved trade is the same trade");
    });
    Require(again.Clean() && at == trades.size(), "a saved book is read in full");

    auto& bytes = disk.files[book];
    if (bytes.empty()) return;
    bytes[size % bytes.size()] ^= 1;
    const auto changed = file.LoadBook([](const TradeRecord&, bool) {});
    Require(!changed.asSaved, "a saved book that was changed is known by its sums");
    // And the bytes as sums that nobody vouches for.
    disk.files["Data/Book.sums"].assign(data, data + size);
    Require(file.LoadBook([](const TradeRecord&, bool) {}).complete, "no sums keep a book from being read");
}

}  // namespace Dravel::Fuzz
