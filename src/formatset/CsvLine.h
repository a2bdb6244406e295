// Comma-separated text files: their lines and the cells of a line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/Files.h"

namespace Dravel {

constexpr bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

// Without the blanks and tabs at both ends.
constexpr std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// Without a UTF-8 byte-order mark at the front. Bytes are otherwise never recoded.
std::string_view WithoutByteOrderMark(std::string_view text);

// The cells of `line`, cut at every comma; there is no quoting, and an empty cell is an empty text. An empty
// line has no cells. At most `limit` cells are cut; the rest of the line is then left out. The cells point
// into `line`; the vector is used again without a new allocation.
void SplitCells(std::string_view line, std::vector<std::string_view>& cells, std::size_t limit = SIZE_MAX);

// Bytes of the longest line that is read as a whole, its end apart. Nobody's trade is longer, and a file
// without line ends must not take up the memory of its size.
inline constexpr std::size_t kLongestLine = std::size_t{16} << 20;

// Reads the lines of a file in large blocks. Lines may hold any byte.
class CsvLines {
 public:
    // Borrows the file, which is read from where it stands.
    explicit CsvLines(IFile& file, std::size_t blockSize = 256 * 1024,
                      std::size_t longestLine = kLongestLine);

    // Whether the beginning of the file can be read.
    bool Readable();
    // The next line without its end (LF, or CR LF; a CR at the very end of the file counts as a cut line
    // end). A byte-order mark in front of the first line is stepped over. Valid until the next call. False:
    // none is left, or the file could not be read on (see Failed).
    //
    // Of a line longer than the longest, its first bytes are given, and TooLong holds until its rest has been
    // passed over. Next does that by itself; who must not be kept waiting calls PassRest before.
    bool Next(std::string_view& line);
    bool TooLong() const { return tooLong_; }
    // Reads on, a block at most. True: the line's end is reached, or that of the file.
    bool PassRest();
    // The line of the last Next as it stands in the file, with its end and the byte-order mark. Valid as long
    // as the line is.
    std::string_view Raw() const { return raw_; }
    bool Failed() const { return failed_; }
    // Bytes that the lines so far took up.
    std::uint64_t Position() const { return position_; }

 private:
    bool Fill();
    std::size_t FindEnd() const;
    void Take(std::size_t end, std::size_t next, std::string_view& line);
    void TakeBeginning(std::string_view& line);

    IFile& file_;
    const std::size_t longestLine_;
    std::vector<char> block_;
    std::size_t first_ = 0;    // start of the line that is being read
    std::size_t scanned_ = 0;  // no line end in front of it
    std::size_t last_ = 0;     // end of the bytes read
    std::uint64_t position_ = 0;
    std::string_view raw_;
    bool atEnd_ = false;
    bool failed_ = false;
    bool tooLong_ = false;
};

}  // namespace Dravel
