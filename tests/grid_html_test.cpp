// Rows on the clipboard: what may be copied, the table as HTML, the offsets of its wrapping, the text.
#include "tradebook/base/GridHtml.h"

#include <gtest/gtest.h>

#include <charconv>

#include "tradebook/base/GridText.h"

using namespace Dravel;

namespace {

// Row r, column c says "r.c", but for what a test puts there; row 2 is the head of a group.
class Source final : public IGridSource {
 public:
    std::uint32_t RowCount() const override { return 5; }
    void CellText(std::uint32_t row, int column, std::string& text) const override {
        text = row == 1 ? special : std::to_string(row) + "." + std::to_string(column);
    }
    GridRowStyle RowStyle(std::uint32_t) const override { return {}; }
    GridGroupHead GroupHead(std::uint32_t row) const override { return {.level = row == 2 ? 0 : -1}; }

    std::string special;
};

GridSelection Rows(std::initializer_list<GridRange> ranges) {
    GridSelection rows;
    for (const GridRange& range : ranges)
        rows.Add(range);
    return rows;
}

// The part of a page between two of its offsets.
std::string Between(const std::string& page, std::string_view from, std::string_view to) {
    const auto offset = [&](std::string_view name) {
        std::size_t value = 0;
        const std::size_t at = page.find(name) + name.size();
        std::from_chars(page.data() + at, page.data() + page.size(), value);
        return value;
    };
    return page.substr(offset(from), offset(to) - offset(from));
}

const std::string kAsText = "<td align=\"left\" style=\"mso-number-format:'\\@'\">";

}  // namespace

TEST(GridHtml, OffsetsCountBytesOfUtf8) {
    for (const std::string fragment : {"", "<b>x</b>", "\xC3\xA9\xE2\x82\xAC \xF0\x9F\x98\x80"}) {
        const std::string page = ClipboardHtml(fragment);
        EXPECT_EQ(Between(page, "StartFragment:", "EndFragment:"), fragment);
        const std::string html = Between(page, "StartHTML:", "EndHTML:");
        EXPECT_TRUE(html.starts_with("<html>") && html.ends_with("</html>")) << html;
        EXPECT_TRUE(page.ends_with(html));
        EXPECT_NE(html.find("<!--StartFragment-->" + fragment + "<!--EndFragment-->"), html.npos);
    }
    const std::string large = ClipboardHtml(std::string(12'345'678, 'x'));
    EXPECT_EQ(Between(large, "StartFragment:", "EndFragment:").size(), 12'345'678u);
}

TEST(GridHtml, TablesHaveHeadersAndSkipGroups) {
    Source source;
    source.special = "a";
    GridColumns columns;
    columns.Add({"colA", "A & B", 60, GridAlign::Left, true, false});
    columns.Add({"colB", "Price", 60, GridAlign::Right, true, false});
    const int shown[] = {1, 0};
    const std::string html = RowsAsHtml(source, Rows({{2, 9}}), columns, shown);
    const auto count = [&](std::string_view part) {
        std::size_t found = 0;
        for (std::size_t at = 0; (at = html.find(part, at)) != html.npos; ++at)
            ++found;
        return found;
    };
    EXPECT_EQ(count("<tr>"), 3u);  // the headers, rows 3 and 4
    EXPECT_EQ(count("</td>"), 4u);
    EXPECT_EQ(count("A &amp; B"), 1u);
    EXPECT_LT(html.find(">Price<"), html.find(">A &amp; B<"));
    EXPECT_NE(html.find("<td align=\"right\">3.1</td><td align=\"left\">3.0</td>"), html.npos) << html;
    EXPECT_EQ(RowsAsText(source, Rows({{1, 3}}), shown), "a\ta\r\n3.1\t3.0\r\n");
}

TEST(GridHtml, CellsAreEscapedAndOnlyPlainNumbersAreNumbers) {
    Source source;
    GridColumns columns;
    columns.Add({"colA", "", 60, GridAlign::Left, true, false});
    const int shown[] = {0};
    const struct {
        const char *text, *cell;
        bool number;
    } cells[] = {
        {"<i>&\"", "&lt;i&gt;&amp;&quot;", false},
        {"a\r\nb\x01", "a  b ", false},
        {"=1+1", "=1+1", false},
        {"-12.5", "-12.5", true},
        {"0.25", "0.25", true},
        {"0", "0", true},
        {"007", "007", false},
        {"1100000000000001", "1100000000000001", false},  // more digits than a spreadsheet keeps
        {"12.", "12.", false},
        {"-", "-", false},
        {"", "", false},
        {"1.2.3", "1.2.3", false},
        {".5", ".5", false},
    };
    for (const auto& one : cells) {
        source.special = one.text;
        const std::string html = RowsAsHtml(source, Rows({{1, 1}}), columns, shown);
        const std::string expected = (one.number ? "<td align=\"left\">" : kAsText) + one.cell + "</td>";
        EXPECT_NE(html.find(expected), html.npos) << one.text << "\n" << html;
    }
}

TEST(GridHtml, TooMuchTooLittleAndTooManyAreRefused) {
    const auto refusal = [](std::initializer_list<GridRange> ranges) {
        const char* text = RefusalToCopy(Rows(ranges));
        return std::string(text ? text : "");
    };
    EXPECT_EQ(refusal({{3, 3}}), "");
    EXPECT_EQ(refusal({{5, 10005}}), "");  // 10,001 rows
    EXPECT_EQ(refusal({{5, 10006}}),
              "Selection is too large, please make smaller selection and repeat command.");
    EXPECT_EQ(refusal({}), "Content of the grid is too large, please make selection and repeat command.");
    EXPECT_EQ(refusal({{1, 1}, {3, 3}}), "This command can't be used on multiple selection.");
    EXPECT_EQ(refusal({{1, 1}, {2, 3}}), "");  // they touch: one selection
}
