// What became of the lines of an imported file: those that were left out, and those that came in with a
// doubt.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "entry/LineArena.h"
#include "platform/Files.h"

namespace Dravel {

enum class LineOutcome : std::uint8_t {
    Imported,
    Duplicate,   // detail: VELTTradeID of the trade that has its key
    Refused,     // its client is unknown and was not agreed to; detail: the client
    HeldBack,    // its client is unknown, and the import was cancelled; detail: the client
    Empty,       // it has no cells
    NotRead,     // the import was cancelled before it
    Unreadable,  // the file could not be read here, or was cut off while it was read
    TooLong,     // beyond kLongestLine; detail: MiB, rounded up. Its text is the beginning, and is not saved
};

// Why a line that came in is to be looked at.
namespace doubt {
enum Bit : std::uint8_t {
    CellCount = 1,
    Quote = 2,
    Number = 4,
    ExpiryDate = 8,
    NoContract = 16,
    ByIdentifier = 32,  // the contract is that of the SecurityID, whatever the names say
};
}

struct Doubts {
    std::uint8_t bits = 0;
    std::uint8_t column = 0;  // of the first doubtful number, by the trade's columns
    bool operator==(const Doubts&) const = default;
};

struct ReportRow {
    std::uint64_t line;    // 1 is the file's first line
    const char* text;      // as it stands in the file, with its end; only the beginning of an imported one
    std::uint32_t length;  // of that
    std::uint32_t detail;  // what it is says the outcome
    LineOutcome outcome;
    Doubts doubts;
};

// How much a report lists. What goes beyond it is counted only.
struct ReportLimits {
    std::size_t skipped = 2000000;              // lines
    std::size_t text = std::size_t{512} << 20;  // bytes of their texts
    std::size_t doubtful = 100000;              // lines
};

// Filled by the import, then handed on and only read. User-interface thread.
class ImportReport {
 public:
    explicit ImportReport(std::filesystem::path file, const ReportLimits& limits = {})
        : file_(std::move(file)), limits_(limits) {}

    static constexpr std::size_t kShownText = 255;  // more than a list shows of a line

    // The file's first line as it stands there, when it names the columns.
    void SetHeader(std::string_view raw) { header_ = raw; }
    // Number under which an unknown client goes as a detail.
    std::uint32_t AddClient(std::string_view client);
    void Imported(std::uint64_t line, std::string_view raw, const Doubts& doubts);
    void Skipped(std::uint64_t line, std::string_view raw, LineOutcome outcome, std::uint32_t detail = 0);
    // Puts the rows into the order of the lines.
    void Close();

    const std::filesystem::path& File() const { return file_; }
    // Each line but the header is one or the other.
    std::uint64_t LinesImported() const { return imported_; }
    std::uint64_t LinesSkipped() const { return skipped_; }
    std::uint64_t Lines() const { return imported_ + skipped_; }
    std::uint64_t LinesDoubtful() const { return doubtful_; }  // imported ones
    // Lines that were left out or doubtful, and are counted but not listed.
    std::uint64_t LinesUnlisted() const { return skipped_ + doubtful_ - rows_.size(); }

    const std::vector<ReportRow>& Rows() const { return rows_; }
    // In words, for the user.
    std::string Reason(const ReportRow& row) const;
    // The line to show: without its end, at most some hundred bytes, control characters as blanks.
    static std::string TextToShow(const ReportRow& row);
    // "9,948 of 10,000 imported, report"
    std::string Summary() const;
    // The same with all counts, in sentences.
    std::string Overview() const;

    // Writes the header and the listed lines that were left out, byte for byte, so that they can be mended
    // and imported; but no line that is too long. The file is written beside `path` and swapped: when it
    // fails, what was there stays.
    FileStatus SaveSkipped(IFiles& files, const std::filesystem::path& path) const;

 private:
    FileStatus WriteSkipped(IFile& file) const;

    std::filesystem::path file_;
    ReportLimits limits_;
    std::string header_;
    std::uint64_t imported_ = 0, skipped_ = 0, doubtful_ = 0;
    bool full_ = false;  // a skipped line found no room: none that comes later is listed
    std::size_t skippedListed_ = 0, doubtfulListed_ = 0;
    std::vector<std::string> clients_;
    LineArena texts_;
    std::vector<ReportRow> rows_;
};

}  // namespace Dravel
