#include "entry/ImportReport.h"

#include <algorithm>
#include <memory>

#include "formatset/CsvLine.h"
#include "formatset/NumberText.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace {

static_assert(kLongestLine == std::size_t{16} << 20, "the reason for TooLong names it");
constexpr std::size_t kWriteBlock = 1024 * 1024;  // bytes written at once

struct DoubtText {
    doubt::Bit bit;
    std::string_view text;
};
constexpr DoubtText kDoubtTexts[] = {
    {doubt::CellCount, "another number of cells than the header"},
    {doubt::Quote, "a quote in the line"},
    {doubt::Number, "a number that does not read"},
    {doubt::ExpiryDate, "an expiry date that does not read"},
    {doubt::NoContract, "contract not found"},
    {doubt::ByIdentifier, "contract found by its SecurityID alone"},
};

std::string DoubtsInWords(const Doubts& doubts) {
    std::string words = "imported: ";
    const std::size_t start = words.size();
    for (const auto& [bit, text] : kDoubtTexts) {
        if ((doubts.bits & bit) == 0) continue;
        if (words.size() != start) words += ", ";
        words += text;
        if (bit == doubt::Number) words.append(" (").append(kTradeColumns[doubts.column].header) += ')';
    }
    return words;
}

}  // namespace

std::uint32_t ImportReport::AddClient(std::string_view client) {
    clients_.emplace_back(client);
    return static_cast<std::uint32_t>(clients_.size() - 1);
}

void ImportReport::Imported(std::uint64_t line, std::string_view raw, const Doubts& doubts) {
    ++imported_;
    if (doubts.bits == 0) return;
    ++doubtful_;
    if (doubtfulListed_ >= limits_.doubtful) return;
    ++doubtfulListed_;
    const std::string_view text = texts_.Keep(raw.substr(0, kShownText));
    rows_.push_back(
        {line, text.data(), static_cast<std::uint32_t>(text.size()), 0, LineOutcome::Imported, doubts});
}

void ImportReport::Skipped(std::uint64_t line, std::string_view raw, LineOutcome outcome,
                           std::uint32_t detail) {
    ++skipped_;
    full_ = full_ || skippedListed_ >= limits_.skipped || texts_.Bytes() > limits_.text ||
            raw.size() > limits_.text - texts_.Bytes();
    if (full_) return;
    ++skippedListed_;
    const std::string_view text = texts_.Keep(raw);
    rows_.push_back({line, text.data(), static_cast<std::uint32_t>(text.size()), detail, outcome, {}});
}

// Lines that were held back came last.
void ImportReport::Close() {
    const auto before = [](const ReportRow& a, const ReportRow& b) { return a.line < b.line; };
    if (!std::is_sorted(rows_.begin(), rows_.end(), before)) std::sort(rows_.begin(), rows_.end(), before);
}

std::string ImportReport::Reason(const ReportRow& row) const {
    switch (row.outcome) {
        case LineOutcome::Imported:
            return DoubtsInWords(row.doubts);
        case LineOutcome::Duplicate:
            return "duplicate of trade " + std::to_string(row.detail);
        case LineOutcome::Refused:
            return "client " + clients_[row.detail] + " not accepted";
        case LineOutcome::HeldBack:
            return "client " + clients_[row.detail] + " unknown, import cancelled";
        case LineOutcome::Empty:
            return "empty line";
        case LineOutcome::NotRead:
            return "not read, import cancelled";
        case LineOutcome::Unreadable:
            return "the file could not be read on";
        case LineOutcome::TooLong:
            return "one line of " + GroupedText(row.detail) + " MB, longer than 16 MB; it is not saved";
    }
    return {};
}

std::string ImportReport::TextToShow(const ReportRow& row) {
    std::string_view line(row.text, row.length);
    if (line.ends_with('\n')) line.remove_suffix(1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    std::string text(line.substr(0, kShownText));
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    }
    return text;
}

std::string ImportReport::Summary() const {
    return GroupedText(imported_) + " of " + GroupedText(Lines()) + " imported, report";
}

std::string ImportReport::Overview() const {
    std::string text = GroupedText(imported_) + " of " + GroupedText(Lines()) + " lines imported, " +
                       GroupedText(doubtful_) + " of them with a doubt; " + GroupedText(skipped_) +
                       " left out.";
    if (const std::uint64_t unlisted = LinesUnlisted(); unlisted != 0)
        text.append(" ").append(GroupedText(unlisted)) += " are not listed: there are too many.";
    return text;
}

FileStatus ImportReport::WriteSkipped(IFile& file) const {
    std::string block = header_;
    FileStatus status;
    for (const ReportRow& row : rows_) {
        if (row.outcome == LineOutcome::Imported || row.outcome == LineOutcome::TooLong) continue;
        block.append(row.text, row.length);
        if (block.size() < kWriteBlock) continue;
        if (status = file.Write(block.data(), block.size()); !status) return status;
        block.clear();
    }
    status = file.Write(block.data(), block.size());
    if (status) status = file.Flush();
    if (status) status = file.Close();
    return status;
}

FileStatus ImportReport::SaveSkipped(IFiles& files, const std::filesystem::path& path) const {
    std::filesystem::path beside = path;
    beside += ".new";
    std::unique_ptr<IFile> file;
    FileStatus status = files.Open(beside, FileMode::Create, FileShare::DenyWrite, file);
    if (!status) return status;
    status = WriteSkipped(*file);
    file.reset();
    if (status) status = files.Replace(beside, path);
    if (!status) files.Remove(beside);
    return status;
}

}  // namespace Dravel
