// The keys of packed texts order them as their bytes do, whatever the texts have in common.
#include "tradebook/TextPages.h"

#include <gtest/gtest.h>

#include <random>

namespace Dravel {
namespace {

void ExpectOrder(const std::vector<std::string>& texts) {
    TextPages pages;
    for (const std::string& text : texts)
        pages.Add(text);
    const OrderKeys made = pages.Keys();
    ASSERT_EQ(made.keys.size(), texts.size());
    for (std::size_t a = 0; a < texts.size(); ++a) {
        ASSERT_TRUE(made.bits == 64 || made.keys[a] >> made.bits == 0);
        for (std::size_t b = 0; b < texts.size(); ++b) {
            const bool keyLess = made.keys[a] < made.keys[b], less = texts[a] < texts[b];
            ASSERT_TRUE(made.whole ? keyLess == less : !keyLess || less)
                << testing::PrintToString(texts) << a << " " << b;
        }
    }
}

TEST(TextPagesTest, KeysOrderTexts) {
    ExpectOrder({"a", "ab", "", "b"});
    ExpectOrder({"ab", "a"});
    ExpectOrder({std::string(64, 'x'), std::string(63, 'x')});
    ExpectOrder({std::string(64, 'x'), std::string(64, 'y'), std::string(62, 'x') + "yx"});
    std::mt19937 random(5);
    std::size_t wholes = 0;
    for (int round = 0; round < 2000; ++round) {
        const std::uint32_t letters = 1 + random() % 9, shortest = random() % 4, spread = 1 + random() % 60;
        std::vector<std::string> texts(1 + random() % 6);
        for (std::string& text : texts) {
            text.resize(shortest + random() % spread);
            for (char& c : text)
                c = static_cast<char>('\xFF' - random() % letters);
        }
        ExpectOrder(texts);
        TextPages pages;
        for (const std::string& text : texts)
            pages.Add(text);
        wholes += pages.Keys().whole;
    }
    EXPECT_TRUE(wholes > 500 && wholes < 1950) << wholes;
}

// Numbered texts of one length cost bits only where they differ.
TEST(TextPagesTest, KeysAreShort) {
    TextPages pages;
    for (int i = 0; i < 1000; ++i)
        pages.Add("T2026" + std::to_string(100000 + i));
    EXPECT_EQ(pages.Keys().bits, 12);
    EXPECT_TRUE(pages.Keys().whole);
}

}  // namespace
}  // namespace Dravel
