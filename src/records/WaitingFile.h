// The file in which trades wait that the terminal handed over while no book could take them. A trade that is
// in it when the handler returns outlives the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "platform/Files.h"
#include "records/TradeRecord.h"

namespace Dravel {

struct WaitingTrade {
    std::uint32_t number = 0;  // in its file, from 1
    TradeRecord record{};
};

// The frame of one trade, and that of a number alone, which takes its trade out of the file again; closed by
// a checksum of its bytes (docs/formats.md).
std::vector<std::uint8_t> WaitingFrame(const WaitingTrade& trade);
std::vector<std::uint8_t> WaitingDropFrame(std::uint32_t number);

// What a file holds: all whole frames in front of the first that is torn or does not check.
struct WaitingContents {
    std::vector<WaitingTrade> trades;  // as they came, without those taken out
    std::size_t unread = 0;            // bytes from the first bad frame on
};
WaitingContents ParseWaiting(std::span<const std::uint8_t> bytes);

// One file of a process, written by it alone and held against every other writer. User-interface thread.
class WaitingFile {
 public:
    // Milliseconds between two flushes of one file.
    static constexpr std::uint64_t kFlushPause = 500;

    // Makes a new file in `folder`, which is made when missing; `process` tells the terminals apart.
    static FileStatus Make(IFiles& files, const IClock& clock, const std::filesystem::path& folder,
                           std::uint32_t process, std::unique_ptr<WaitingFile>& made);
    // Takes a file of an earlier run over and reads it. InUse: its process lives.
    static FileStatus TakeOver(IFiles& files, const IClock& clock, const std::filesystem::path& path,
                               std::unique_ptr<WaitingFile>& taken, WaitingContents& contents);
    static bool IsName(const std::filesystem::path& name);

    // Appends a frame. On failure nothing of it stays: what was there can still be read to its end. Flushes
    // when the last flush is long enough ago.
    FileStatus Append(std::span<const std::uint8_t> frame);
    FileStatus Flush();
    // Empties the file, closes it and removes its name.
    FileStatus Drop();

    const std::filesystem::path& Path() const { return path_; }
    // As puts of the trades name it.
    std::string Name() const { return path_.filename().string(); }

 private:
    WaitingFile(IFiles& files, const IClock& clock, std::filesystem::path path, std::unique_ptr<IFile> file)
        : files_(files), clock_(clock), path_(std::move(path)), file_(std::move(file)) {}

    IFiles& files_;
    const IClock& clock_;
    std::filesystem::path path_;
    std::unique_ptr<IFile> file_;
    std::uint64_t whole_ = 0;  // bytes of whole frames
    bool torn_ = false;        // something stands behind them
    bool unflushed_ = false;
    bool flushed_ = false;  // ever
    std::uint64_t flushedAt_ = 0;
};

}  // namespace Dravel
