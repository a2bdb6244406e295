// The settings store: keys and values, its text form, damaged files, and a disk that fails.
#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "support/FakeClock.h"
#include "support/FaultFiles.h"
#include "tradebook/base/VELTPXMLSettings.h"

namespace Dravel {
namespace {

using Test::FakeClock;
using Test::FaultFiles;
using Test::FileBytes;
using Test::Keep;
using Bytes = std::vector<std::uint8_t>;

std::string Text(CVELTPXMLSettings& settings, std::string_view key, std::string_view name,
                 const std::string& missing = "<missing>") {
    std::string text = missing;
    if (settings.Open(key)) settings.ReadText(name, text);
    return text;
}

CVELTPXMLSettings Loaded(std::string_view text) {
    CVELTPXMLSettings settings;
    settings.LoadTextForm(text);
    return settings;
}

TEST(Settings, WritesItsTextForm) {
    CVELTPXMLSettings settings;
    EXPECT_EQ(settings.TextForm(), "");
    ASSERT_TRUE(settings.CreateKey("Dravel\\col Side"));
    EXPECT_TRUE(settings.WriteText("Header", "Si\"de"));
    EXPECT_TRUE(settings.WriteInteger("Order", -1));
    EXPECT_TRUE(settings.WriteColour("Buy Color", 0xFF875F));
    EXPECT_TRUE(settings.WriteBinary("Font", Bytes{0x0A, 0xFF}));
    EXPECT_TRUE(settings.WriteInteger("Order", 7));
    ASSERT_TRUE(settings.CreateKey("Dravel"));
    EXPECT_TRUE(settings.WriteInteger("IsMultipleSort", 1));
    ASSERT_TRUE(settings.CreateKey("Bar"));
    EXPECT_EQ(settings.TextForm(),
              "<CURRENT_USER>\n<Dravel>\n<colSide>\n<Header>\"Si\"de\"</Header>\n<Order>\"7\"</Order>\n"
              "<BuyColor>\"16746335\"</BuyColor>\n<Font>\"0aff\"</Font>\n</colSide>\n"
              "<IsMultipleSort>\"1\"</IsMultipleSort>\n</Dravel>\n<Bar>\"\"</Bar>\n</CURRENT_USER>\n");
    EXPECT_EQ(Loaded(settings.TextForm()).TextForm(), settings.TextForm());
}

TEST(Settings, ReadsWhatWasWrittenUnderEitherName) {
    CVELTPXMLSettings settings;
    ASSERT_TRUE(settings.CreateKey("Trade Grid"));
    settings.WriteInteger("Carry Forward Trade", 1);
    settings.WriteColour("C", 0xFFFFFFFF);
    settings.WriteBinary("B", Bytes{0, 255, 16});
    settings.WriteText("T", "two\nlines <Bar>\"x\"</Bar>");
    CVELTPXMLSettings again = Loaded(settings.TextForm());
    ASSERT_TRUE(again.Open("TradeGrid"));
    std::int32_t integer = 0;
    std::uint32_t colour = 0;
    Bytes bytes;
    EXPECT_TRUE(again.ReadInteger("CarryForwardTrade", integer));
    EXPECT_EQ(integer, 1);
    EXPECT_TRUE(again.ReadColour("C", colour));
    EXPECT_EQ(colour, 0xFFFFFFFF);
    EXPECT_TRUE(again.ReadBinary("B", bytes));
    EXPECT_EQ(bytes, (Bytes{0, 255, 16}));
    EXPECT_EQ(Text(again, "Trade Grid", "T"), "two\nlines <Bar>\"x\"</Bar>");
}

TEST(Settings, RefusalsChangeNothing) {
    CVELTPXMLSettings settings;
    EXPECT_FALSE(settings.WriteInteger("A", 1));  // no key is open
    EXPECT_FALSE(settings.Open("K"));
    for (const char* key : {"", " \\ ", "a<b", "a\\/b", "\"", "a\nb"})
        EXPECT_FALSE(settings.CreateKey(key)) << key;
    std::string deep;
    for (std::size_t i = 0; i < CVELTPXMLSettings::kMaxDepth; ++i)
        deep += "k\\";
    EXPECT_FALSE(settings.CreateKey(deep));
    ASSERT_TRUE(settings.CreateKey("K\\L") && settings.WriteText("V", "") && settings.CreateKey("K"));
    for (const char* name : {"", " ", "<", "/x", "L"})
        EXPECT_FALSE(settings.WriteText(name, "1")) << name;
    EXPECT_TRUE(settings.WriteText("A", "9x"));
    const std::string before = settings.TextForm();
    settings.SetReadOnly(true);
    EXPECT_FALSE(settings.WriteText("A", "2"));
    EXPECT_FALSE(settings.CreateKey("N"));
    EXPECT_EQ(settings.TextForm(), before);
    settings.SetReadOnly(false);
    std::int32_t integer = 5;
    std::uint32_t colour = 6;
    Bytes bytes{7};
    std::string text = "8";
    EXPECT_FALSE(settings.ReadInteger("A", integer) || settings.ReadColour("A", colour) ||
                 settings.ReadBinary("A", bytes) || settings.ReadText("L", text) ||
                 settings.ReadText("Z", text));
    for (const char* digits : {"9x", "x9", "0a1", "0g", " 00"}) {
        EXPECT_TRUE(settings.CreateKey("K") && settings.WriteText("B", digits));
        EXPECT_FALSE(settings.ReadBinary("B", bytes) || settings.ReadBinary("Z", bytes)) << digits;
    }
    EXPECT_TRUE(integer == 5 && colour == 6 && bytes == Bytes{7} && text == "8");
}

TEST(Settings, TheMachinesTreeStaysInMemory) {
    CVELTPXMLSettings settings(CVELTPXMLSettings::Hive::LocalMachine);
    ASSERT_TRUE(settings.CreateKey("K"));
    settings.WriteText("A", "1");
    EXPECT_EQ(Text(settings, "K", "A"), "1");
    EXPECT_EQ(settings.TextForm(), "");
}

TEST(Settings, UnbalancedTextIsReadByRule) {
    const struct {
        const char* body;  // inside the outermost element
        const char* form;  // how it is written again, without line ends
    } cases[] = {
        {"stray <b <c<K> text <A>\"1\"</A> </Q> </K>", "<K><A>\"1\"</A></K>"},
        {"<K><L><A>\"1\"</A></K><B>\"2\"</B>", "<K><L><A>\"1\"</A></L></K><B>\"2\"</B>"},
        {"<K><A>\"1<B>\"2\"</B></K>", "<K><B>\"2\"</B></K>"},
        {"<K><A>\"1\"</A><A>\"2\"</A>", "<K><A>\"1\"</A><A>\"2\"</A></K>"},
        {"<A B>\"1\"</A B></My Key><C>\"\"</C>", "<C>\"\"</C>"},
        {"<?xml version=\"1.0\"?><A></A>", "<A>\"\"</A>"},
        {"<A>\"1\"</A></CURRENT_USER><B>\"2\"</B>", "<A>\"1\"</A>"},
    };
    for (const auto& c : cases) {
        std::string form = Loaded(std::string("garbage<CURRENT_USER>") + c.body).TextForm();
        std::erase(form, '\n');
        EXPECT_EQ(form, std::string("<CURRENT_USER>") + c.form + "</CURRENT_USER>") << c.body;
    }
    CVELTPXMLSettings settings = Loaded("<CURRENT_USER><A>\"1\"</A>");
    EXPECT_FALSE(settings.LoadTextForm("<CURRENT_USE><B>\"2\"</B>"));
    EXPECT_EQ(Text(settings, "", "A"), "1");
}

std::string Sample() {
    CVELTPXMLSettings settings;
    for (int i = 0; settings.TextForm().size() < 4096; ++i) {
        settings.CreateKey("Dravel\\col" + std::to_string(i));
        settings.WriteText("Header", "Column " + std::to_string(i));
        for (const char* name : {"Width", "Visible", "Align", "Sort"})
            settings.WriteInteger(name, i);
    }
    return settings.TextForm();
}

// Whatever was read can be written and read again to the same.
void ExpectStable(const std::string& damaged) {
    CVELTPXMLSettings settings;
    if (!settings.LoadTextForm(damaged)) return;
    const std::string form = settings.TextForm();
    CVELTPXMLSettings again;
    ASSERT_TRUE(form.empty() || again.LoadTextForm(form));
    ASSERT_EQ(again.TextForm(), form) << damaged;
}

TEST(Settings, EveryPrefixGivesAPrefixOfTheValues) {
    const std::string whole = Sample();
    std::size_t before = 0;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        CVELTPXMLSettings settings;
        settings.LoadTextForm(std::string_view(whole).substr(0, length));
        const auto values = settings.TextForm().size();
        ASSERT_GE(values + 64, before) << length;  // a key without a value yet is one line, not two
        before = std::max(before, values);
    }
    EXPECT_EQ(before, whole.size());
}

TEST(Settings, EveryByteFlippedStillGivesATree) {
    const std::string whole = Sample();
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 1 << at % 8);
        ExpectStable(damaged);
    }
}

TEST(Settings, HostileTextCostsNoMoreThanItsLength) {
    const auto repeated = [](std::string_view piece, std::size_t bytes) {
        std::string text = "<CURRENT_USER>";
        while (text.size() < bytes)
            text += piece;
        return text;
    };
    std::string distinct = "<CURRENT_USER>";
    for (int i = 0; distinct.size() < 1'000'000; ++i)
        distinct += "<v" + std::to_string(i) + ">\"";
    const std::string texts[] = {repeated("<a>", 1'000'000),
                                 repeated("<a>\"", 1'000'000),
                                 repeated("<", 1'000'000),
                                 repeated("</a>", 1'000'000),
                                 repeated("<a>\"</a>", 1'000'000),
                                 repeated("<a><b>\"\"</b>", 1'000'000),
                                 repeated("<a></b>\"</b", 1'000'000),
                                 distinct};
    const auto start = std::chrono::steady_clock::now();
    for (const std::string& text : texts) {
        CVELTPXMLSettings settings;
        EXPECT_TRUE(settings.LoadTextForm(text));
    }
    // Squared, a single one of them would take hours.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

class SettingsFile : public testing::Test {
 protected:
    std::string Stored() const {
        const FileBytes& bytes = disk.Content("base/Settings.xml");
        return {bytes.begin(), bytes.end()};
    }
    static CVELTPXMLSettings With(std::string_view value) {
        CVELTPXMLSettings settings;
        settings.CreateKey("K");
        settings.WriteText("A", value);
        return settings;
    }
    FakeClock clock;
    FaultFiles disk{clock};
};

TEST_F(SettingsFile, LinesEndWithCrLfOnDisk) {
    EXPECT_TRUE(CVELTPXMLSettings().SaveFile(disk, "base/Settings.xml"));
    EXPECT_TRUE(disk.Names().empty());
    EXPECT_TRUE(With("two\nlines").SaveFile(disk, "base/Settings.xml"));
    EXPECT_EQ(Stored(), "<CURRENT_USER>\r\n<K>\r\n<A>\"two\r\nlines\"</A>\r\n</K>\r\n</CURRENT_USER>\r\n");
    CVELTPXMLSettings settings;
    ASSERT_TRUE(settings.LoadFile(disk, "base/Settings.xml"));
    EXPECT_EQ(Text(settings, "K", "A"), "two\nlines");
    EXPECT_FALSE(settings.LoadFile(disk, "base/None.xml"));
    disk.Put("base/garbage.xml", FileBytes(1000, 0xFF));
    EXPECT_FALSE(settings.LoadFile(disk, "base/garbage.xml"));
    EXPECT_EQ(Text(settings, "K", "A"), "two\nlines");
}

TEST_F(SettingsFile, AFailureOrCrashAnywhereLeavesTheOldFileOrTheNew) {
    ASSERT_TRUE(With("old").SaveFile(disk, "base/Settings.xml"));
    const std::string old = Stored();
    std::string fresh = old;
    fresh.replace(fresh.find("old"), 3, "new");
    bool saved = false;
    for (std::uint64_t k = 1; !saved && k < 40; ++k) {
        for (const bool crash : {false, true}) {
            disk.Put("base/Settings.xml", FileBytes(old.begin(), old.end()));
            (crash ? disk.plan.crashAt : disk.plan.failAt) = disk.Operations() + k;
            saved = With("new").SaveFile(disk, "base/Settings.xml") && crash;
            disk.ClearPlan();
            if (crash) disk.Crash(Keep::Nothing);
            ASSERT_TRUE(Stored() == old || Stored() == fresh) << k << Stored();
            EXPECT_TRUE(crash || !disk.Has("base/Settings.xml.new")) << k;
        }
    }
    EXPECT_TRUE(saved);
}

}  // namespace
}  // namespace Dravel
