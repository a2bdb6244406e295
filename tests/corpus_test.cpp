// Replays what the fuzzers have found: every file of fuzz/corpus/<target>/ through the body of its target.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "SourceFolder.h"
#include "fuzz/csv_line_fuzz.h"
#include "fuzz/format_set_fuzz.h"
#include "fuzz/frame_fuzz.h"
#include "fuzz/record_file_fuzz.h"
#include "fuzz/settings_fuzz.h"

namespace {

struct FuzzTarget {
    const char* name;
    void (*run)(const std::uint8_t*, std::size_t);
};
// One line for each fuzz/*_fuzz.cpp.
const FuzzTarget kTargets[] = {
    {"csv_line_fuzz", Dravel::Fuzz::FuzzCsvLine},  {"format_set_fuzz", Dravel::Fuzz::FuzzFormatSet},
    {"frame_fuzz", Dravel::Fuzz::FuzzFrame},       {"record_file_fuzz", Dravel::Fuzz::FuzzRecordFile},
    {"settings_fuzz", Dravel::Fuzz::FuzzSettings},
};

std::vector<std::uint8_t> Content(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> read{std::istreambuf_iterator<char>(file), {}};
    return {read.begin(), read.end()};  // exactly as large as the file, so that a read past the end is seen
}

}  // namespace

TEST(Corpus, EveryFindIsReplayed) {
    const std::filesystem::path root = std::filesystem::path(DRAVEL_SOURCE_DIR) / "fuzz";
    for (const FuzzTarget& target : kTargets) {
        std::size_t files = 0;
        for (const auto& entry : std::filesystem::directory_iterator(root / "corpus" / target.name)) {
            const auto content = Content(entry.path());
            target.run(content.data(), content.size());
            ++files;
        }
        EXPECT_GT(files, 0u) << target.name;
    }
    for (const auto& entry : std::filesystem::directory_iterator(root / "corpus")) {
        const auto name = entry.path().filename().string();
        EXPECT_TRUE(std::any_of(std::begin(kTargets), std::end(kTargets),
                                [&name](const FuzzTarget& target) { return name == target.name; }))
            << name << " is replayed by nobody";
    }
}
