// The pages about formats and the interface say what the code does.
#include <gtest/gtest.h>

#include <charconv>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "SourceFolder.h"
#include "message/TagMessageReader.h"
#include "plugin/Answers.h"
#include "plugin/HostCallbacks.h"
#include "records/TradeFields.h"
#include "support/Frames.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

std::string Page(const char* name) {
    std::ifstream file(std::string(DRAVEL_SOURCE_DIR "/docs/") + name);
    return {std::istreambuf_iterator<char>(file), {}};
}

unsigned Hex(const std::string& digits) {
    unsigned value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return value;
}

// The bytes of a "hex" block: each line is "offset: bytes ; comment".
Bytes HexBlock(const std::string& page) {
    Bytes bytes;
    std::istringstream lines(page.substr(page.find("```hex\n") + 7));
    for (std::string line; std::getline(lines, line) && line.find("```") != 0;) {
        std::istringstream words(line.substr(0, line.find(';')));
        std::string word;
        words >> word;
        EXPECT_EQ(Hex(word), bytes.size()) << line;
        while (words >> word) {
            bytes.push_back(static_cast<std::uint8_t>(Hex(word)));
        }
    }
    return bytes;
}

}  // namespace

TEST(Docs, WorkedFrameIsTheOneThatIsSent) {
    const Bytes shown = HexBlock(Page("formats.md"));
    CTagMessageWriter frame(msg::SelectedContractAnswer);
    const SelectedCells cells{"NSE", "26000", "C1", "24010.5"};
    BuildSelectedContract(frame, &cells);
    EXPECT_EQ(shown, Finished(frame));
    const Stream read = WalkAll(shown);
    ASSERT_EQ(read.frames.size(), 1u);
    EXPECT_EQ(read.frames[0].fields.back(), (Field{40002, Little(24010.5)}));
}

TEST(Docs, HostPageListsTheTradeFieldsInOrderAndTheCallbacks) {
    const std::string page = Page("host-interface.md");
    std::size_t at = page.find("## The fields of a trade");
    for (const TradeField& field : kTradeFields) {
        const std::string width = field.kind == FieldKind::Text   ? "text, " + std::to_string(field.capacity)
                                  : field.kind == FieldKind::Real ? "8, double"
                                                                  : std::to_string(field.capacity);
        at = page.find("| " + std::to_string(field.tag) + " | " + width + " |", at);
        ASSERT_NE(at, std::string::npos) << field.tag;
    }
    for (const char* name : kCallbackNames) {
        EXPECT_NE(page.find('`' + std::string(name) + '`'), std::string::npos) << name;
    }
}
