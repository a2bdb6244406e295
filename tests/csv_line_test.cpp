// Lines and cells of comma-separated files, against a slow reading of the same bytes.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <utility>

#include "formatset/CsvLine.h"
#include "support/FakeClock.h"
#include "support/FaultFiles.h"

namespace Dravel {
namespace {

using Test::FakeClock;
using Test::FaultFiles;
using Test::FileBytes;
using Strings = std::vector<std::string>;

class CsvLineFiles : public testing::Test {
 protected:
    // Of a line that is longer than `longest` its beginning, with "..." behind.
    Strings Lines(const std::string& text, std::size_t block = 16, std::size_t longest = kLongestLine) {
        disk.Put("f.csv", FileBytes(text.begin(), text.end()));
        std::unique_ptr<IFile> file;
        EXPECT_TRUE(disk.Open("f.csv", FileMode::Read, FileShare::DenyNone, file));
        CsvLines lines(*file, block, longest);
        Strings read;
        for (std::string_view line; lines.Next(line);) {
            read.emplace_back(line) += lines.TooLong() ? "..." : "";
            // Piece by piece, or left to Next.
            for (std::uint64_t from = lines.Position(); text.size() % 2 == 0 && !lines.PassRest();)
                EXPECT_LE(lines.Position() - std::exchange(from, lines.Position()), 2 * (longest + block));
        }
        failed = lines.Failed();
        EXPECT_EQ(lines.Position(), text.size());
        return read;
    }
    FakeClock clock;
    FaultFiles disk{clock};
    bool failed = false;
};

Strings SlowLines(std::string text, std::size_t longest) {
    Strings lines;
    std::string line;
    const bool open = !text.empty() && text.back() != '\n';
    if (open) text += '\n';
    for (const char c : text) {
        if (c != '\n') {
            line += c;
            continue;
        }
        if (line.size() > longest) {
            lines.push_back(line.substr(0, longest) + "...");
            line.clear();
            continue;
        }
        if (line.ends_with('\r')) line.pop_back();
        if (lines.empty() && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
        lines.push_back(line);
        line.clear();
    }
    return lines;
}

TEST_F(CsvLineFiles, LineEnds) {
    EXPECT_EQ(Lines(""), Strings{});
    EXPECT_EQ(Lines("\n"), Strings{""});
    EXPECT_EQ(Lines("a,b\r\nc\n\nd"), (Strings{"a,b", "c", "", "d"}));
    EXPECT_EQ(Lines("a\rb\r\r\nc\r"), (Strings{"a\rb\r", "c"}));
    EXPECT_EQ(Lines("\xEF\xBB\xBFkey\n\xEF\xBB\xBFx\n"), (Strings{"key", "\xEF\xBB\xBFx"}));
    EXPECT_EQ(Lines(std::string("a\0b\n", 4)), Strings{std::string("a\0b", 3)});
    EXPECT_EQ(Lines(std::string(100000, 'x') + "\ny"), (Strings{std::string(100000, 'x'), "y"}));
}

TEST_F(CsvLineFiles, AgreeWithASlowReadingAtEveryBlockEdge) {
    std::mt19937 random(11);
    for (int i = 0; i < 3000; ++i) {
        std::string text = i % 3 == 0 ? "\xEF\xBB\xBF" : "";
        const char* const bytes = i % 2 == 0 ? "\r\n\nab,\xC3" : "ab,\n\r,cdefghijklmnopqrs,";
        for (std::uint32_t n = random() % 120; n > 0; --n)
            text += bytes[random() % std::strlen(bytes)];
        const std::size_t longest = i % 5 == 0 ? kLongestLine : 3 + random() % 40;
        ASSERT_EQ(Lines(text, 16 + random() % 5, longest), SlowLines(text, longest))
            << testing::PrintToString(text) << longest;
    }
}

TEST_F(CsvLineFiles, AReadThatFailsEndsTheLines) {
    disk.Put("f.csv", FileBytes(40, '\n'));
    std::unique_ptr<IFile> file;
    ASSERT_TRUE(disk.Open("f.csv", FileMode::Read, FileShare::DenyNone, file));
    CsvLines lines(*file, 16);
    disk.plan.failAt = disk.Operations() + 2;
    disk.plan.sticky = true;
    int count = 0;
    for (std::string_view line; lines.Next(line);)
        ++count;
    EXPECT_TRUE(lines.Failed());
    EXPECT_EQ(count, 16);
}

TEST(CsvLine, Cells) {
    std::vector<std::string_view> cells;
    const struct {
        const char* line;
        Strings cells;
    } cases[] = {
        {"", {}},
        {"a", {"a"}},
        {",", {"", ""}},
        {" a , b\t,", {" a ", " b\t", ""}},
        {"\"x,y\"", {"\"x", "y\""}},
    };
    for (const auto& c : cases) {
        SplitCells(c.line, cells);
        EXPECT_EQ(Strings(cells.begin(), cells.end()), c.cells) << c.line;
    }
    SplitCells("a,b,c", cells, 2);
    EXPECT_EQ(cells.size(), 2u);
    EXPECT_EQ(Trimmed(" \t a b \t"), "a b");
    EXPECT_EQ(Trimmed(" \t "), "");
}

}  // namespace
}  // namespace Dravel
