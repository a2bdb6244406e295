// Takes the bytes for a record file: the book opens whatever they are, and what it loaded survives a save and
// a reopening.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz/FuzzCheck.h"
#include "records/BookFile.h"

namespace Dravel::Fuzz {

// A disk of plain blocks: no faults, no shares.
class BlockDisk final : public IFiles {
 public:
    std::vector<std::uint8_t> book, fresh;

    FileStatus Open(const std::filesystem::path& path, FileMode mode, FileShare,
                    std::unique_ptr<IFile>& file) override {
        auto& bytes = path.extension() == ".new" ? fresh : book;
        if (mode == FileMode::Create) bytes.clear();
        file = std::make_unique<Block>(bytes);
        return {};
    }
    FileStatus OpenLock(const std::filesystem::path&, std::unique_ptr<IFile>& file) override {
        file = std::make_unique<Block>(fresh);
        return {};
    }
    FileStatus Rename(const std::filesystem::path&, const std::filesystem::path&) override { return {}; }
    FileStatus Replace(const std::filesystem::path&, const std::filesystem::path&) override {
        book.swap(fresh);
        return {};
    }
    FileStatus Link(const std::filesystem::path&, const std::filesystem::path&) override {
        linked = true;
        return {};
    }
    FileStatus Remove(const std::filesystem::path&) override { return {}; }
    FileStatus Info(const std::filesystem::path&, FileInfo& info) override {
        info.size = book.size();
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
    disk.book.assign(data, data + size);
    BookFile file(disk, clock, log, {"Data", "Backup", "Book"});
    Require(static_cast<bool>(file.Acquire()), "a book that nobody holds is ours");

    std::vector<TradeRecord> trades;
    BookImage image;
    const auto report = file.LoadBook([&](const TradeRecord& trade, bool deleted) {
        trades.push_back(trade);
        image.Append(trade, deleted);
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
}

}  // namespace Dravel::Fuzz
