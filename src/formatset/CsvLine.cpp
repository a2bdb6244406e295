// Lines and cells by memchr, without a copy.
#include "formatset/CsvLine.h"

#include <cstring>
#include <new>

namespace Dravel {
namespace {

constexpr bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

}  // namespace

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::string_view WithoutByteOrderMark(std::string_view text) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    return text.substr(text.starts_with(kMark) ? kMark.size() : 0);
}

void SplitCells(std::string_view line, std::vector<std::string_view>& cells, std::size_t limit) {
    cells.clear();
    if (line.empty()) return;
    const char* at = line.data();
    const char* const end = at + line.size();
    while (cells.size() < limit) {
        // Cells are short: a plain loop beats a call of memchr.
        const char* comma = at;
        while (comma != end && *comma != ',')
            ++comma;
        cells.emplace_back(at, static_cast<std::size_t>(comma - at));
        if (comma == end) return;
        at = comma + 1;
    }
}

CsvLines::CsvLines(IFile& file, std::size_t blockSize)
    : file_(file), block_(blockSize < 16 ? 16 : blockSize) {}

bool CsvLines::Readable() {
    return last_ != 0 || Fill() || !failed_;
}

bool CsvLines::Next(std::string_view& line) {
    for (;;) {
        const void* found =
            scanned_ < last_ ? std::memchr(block_.data() + scanned_, '\n', last_ - scanned_) : nullptr;
        if (found != nullptr) {
            const auto end = static_cast<std::size_t>(static_cast<const char*>(found) - block_.data());
            Take(end, end + 1, line);
            return true;
        }
        scanned_ = last_;
        if (Fill()) continue;
        if (failed_ || first_ == last_) return false;
        Take(last_, last_, line);
        return true;
    }
}

// The line up to `end`; the following one starts at `next`.
void CsvLines::Take(std::size_t end, std::size_t next, std::string_view& line) {
    line = {block_.data() + first_, end - first_};
    raw_ = {block_.data() + first_, next - first_};
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (position_ == 0) line = WithoutByteOrderMark(line);
    position_ += next - first_;
    first_ = scanned_ = next;
}

// Reads more bytes behind those that are there; the line being read moves to the front, and the block doubles
// when the line fills it, so that a line of any length costs no more than its bytes.
bool CsvLines::Fill() {
    if (atEnd_ || failed_) return false;
    if (first_ > 0) {
        std::memmove(block_.data(), block_.data() + first_, last_ - first_);
        last_ -= first_;
        scanned_ -= first_;
        first_ = 0;
    }
    try {
        if (last_ == block_.size()) block_.resize(block_.size() * 2);
    } catch (const std::bad_alloc&) {
        failed_ = true;
        return false;
    }
    std::size_t got = 0;
    failed_ = !file_.Read(block_.data() + last_, block_.size() - last_, got);
    atEnd_ = got == 0;
    last_ += got;
    return !failed_ && got > 0;
}

}  // namespace Dravel
