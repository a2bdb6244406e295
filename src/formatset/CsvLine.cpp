// Lines and cells, without a copy.
#include "formatset/CsvLine.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <new>

namespace Dravel {

std::string_view WithoutByteOrderMark(std::string_view text) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    return text.substr(text.starts_with(kMark) ? kMark.size() : 0);
}

namespace {

constexpr std::size_t kStretch = 64;                     // bytes that are looked at at once
constexpr std::size_t kMostRead = std::size_t{1} << 20;  // bytes, so that no single call takes long

// Bit n: byte n of the stretch is a comma. Every x64 processor has these instructions.
std::uint64_t CommasOf(const char* stretch) {
    const __m128i comma = _mm_set1_epi8(',');
    std::uint64_t commas = 0;
    for (std::size_t at = 0; at < kStretch; at += sizeof comma) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(stretch + at));
        const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, comma));
        commas |= static_cast<std::uint64_t>(static_cast<unsigned>(found)) << at;
    }
    return commas;
}

}  // namespace

// Cells are short: a search for each comma, or a look at each byte, costs several times as much.
void SplitCells(std::string_view line, std::vector<std::string_view>& cells, std::size_t limit) {
    std::size_t count = 0;
    std::size_t room = cells.size();
    std::string_view* cell = cells.data();
    const char* first = line.data();  // of the cell
    const auto endAt = [&](const char* end) {
        if (count == room) {
            room = std::max<std::size_t>(32, 2 * room);
            cells.resize(room);
            cell = cells.data();
        }
        cell[count++] = {first, static_cast<std::size_t>(end - first)};
    };
    for (std::size_t at = 0; at < line.size() && count < limit; at += kStretch) {
        char copy[kStretch] = {};
        const char* stretch = line.data() + at;
        if (line.size() - at < kStretch)
            stretch = static_cast<const char*>(std::memcpy(copy, stretch, line.size() - at));
        for (std::uint64_t commas = CommasOf(stretch); commas != 0 && count < limit; commas &= commas - 1) {
            const char* const comma = line.data() + at + std::countr_zero(commas);
            endAt(comma);
            first = comma + 1;
        }
    }
    if (!line.empty() && count < limit) endAt(line.data() + line.size());
    cells.resize(count);
}

CsvLines::CsvLines(IFile& file, std::size_t blockSize, std::size_t longestLine)
    : file_(file), longestLine_(longestLine), block_(blockSize < 16 ? 16 : blockSize) {}

bool CsvLines::Readable() {
    return last_ != 0 || Fill() || !failed_;
}

// Of the line that is being read, as far as it is there: where its line feed stands, last_ without one.
std::size_t CsvLines::FindEnd() const {
    if (scanned_ == last_) return last_;
    const void* found = std::memchr(block_.data() + scanned_, '\n', last_ - scanned_);
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - block_.data()) : last_;
}

bool CsvLines::Next(std::string_view& line) {
    while (tooLong_)
        PassRest();
    for (;;) {
        const std::size_t end = FindEnd();
        if (end - first_ > longestLine_) {
            TakeBeginning(line);
            return true;
        }
        if (end < last_) {
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

void CsvLines::TakeBeginning(std::string_view& line) {
    line = raw_ = {block_.data() + first_, longestLine_};
    position_ += longestLine_;
    first_ = scanned_ = first_ + longestLine_;
    tooLong_ = true;
}

bool CsvLines::PassRest() {
    if (!tooLong_) return true;
    const std::size_t end = FindEnd();
    const bool found = end < last_;
    const std::size_t next = found ? end + 1 : last_;
    position_ += next - first_;
    first_ = scanned_ = next;
    tooLong_ = !found && Fill();
    return !tooLong_;
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
// when the line fills it, so that a line costs no more than its bytes.
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
    const std::size_t room = std::min(block_.size() - last_, kMostRead);
    failed_ = !file_.Read(block_.data() + last_, room, got);
    atEnd_ = got == 0;
    last_ += got;
    return !failed_ && got > 0;
}

}  // namespace Dravel
