// Numbers as the import reads them and as cells and files show them.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "formatset/NumberReading.h"
#include "formatset/NumberText.h"

namespace Dravel {
namespace {

TEST(Numbers, IntegersReadTheirLeadingDigits) {
    const struct {
        const char* text;
        std::uint32_t asUnsigned;
        std::int32_t asInteger;
    } cases[] = {
        {"0", 0, 0},
        {"12", 12, 12},
        {" \t7", 7, 7},
        {"+7", 7, 7},
        {"12abc", 12, 12},
        {"12.9", 12, 12},
        {"1,000", 1, 1},
        {"-3", 0, -3},
        {"--3", 0, 0},
        {"+-3", 0, 0},
        {"abc", 0, 0},
        {"", 0, 0},
        {"-", 0, 0},
        {"0x10", 0, 0},
        {"2147483648", 2147483648u, 0},
        {"-2147483648", 0, std::numeric_limits<std::int32_t>::min()},
        {"4294967295", 4294967295u, 0},
        {"4294967296", 0, 0},
        {"99999999999999999999999", 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ReadUnsigned(c.text), c.asUnsigned) << c.text;
        EXPECT_EQ(ReadInteger(c.text), c.asInteger) << c.text;
    }
}

TEST(Numbers, DoublesReadDecimalTextOnly) {
    const struct {
        const char* text;
        double value;
    } cases[] = {
        {"1234.5", 1234.5}, {" -0.25x", -0.25}, {"+.5", 0.5},  {"5.", 5},   {"1e3", 1000}, {"1e", 1},
        {"1,5", 1},         {"0x10", 0},        {"inf", 0},    {"-nan", 0}, {"", 0},       {".", 0},
        {"--1", 0},         {"1e999", 0},       {"1e-999", 0}, {"abc", 0},  {"-", 0},      {"1.5e+2", 150},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ReadDouble(c.text), c.value) << c.text;
}

TEST(Numbers, DoublesAsText) {
    NumberBuffer buffer;
    const struct {
        double value;
        const char* shortest;
        const char* fixed;
    } cases[] = {
        {0, "0", "0.000000"},
        {1234.5, "1234.5", "1234.500000"},
        {100000, "100000", "100000.000000"},
        {24000, "24000", "24000.000000"},
        {0.05, "0.05", "0.050000"},
        {-0.1, "-0.1", "-0.100000"},
        {0.0000005, "0.0000005", "0.000000"},
        {1e18, "1e+18", "1000000000000000000.000000"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ShortestText(c.value, buffer), c.shortest);
        EXPECT_EQ(SixDecimals(c.value, buffer), c.fixed);
    }
    EXPECT_EQ(SixDecimals(-std::numeric_limits<double>::max(), buffer).size(), 1u + 309u + 7u);
}

// The short way for prices gives the digits of the long one.
TEST(Numbers, SixDecimalsAreThoseOfTheWholeDouble) {
    std::mt19937_64 random(9);
    NumberBuffer buffer;
    char whole[400];
    const auto check = [&](double value) {
        const auto end = std::to_chars(whole, whole + sizeof whole, value, std::chars_format::fixed, 6);
        ASSERT_EQ(SixDecimals(value, buffer),
                  std::string_view(whole, static_cast<std::size_t>(end.ptr - whole)));
    };
    for (int i = 0; i < 100000; ++i) {
        const std::uint64_t bits = random();
        const auto price = static_cast<double>(bits % 100000000000u);
        check(price / 100);
        check(price / 1000000);
        check((price + 0.5) / 1000000);  // on or beside the half
        check(std::ldexp(static_cast<double>(bits >> 11), -static_cast<int>(bits % 60)));
        check(-price / 100);
    }
    for (const double value : {-0.0, 0.9999995, 0.9999994999, 999999999.9999999, 1e9, 0.5e-6, 1.5e-6})
        check(value);
}

TEST(Numbers, ShortestReadsBackTheSameBits) {
    std::mt19937_64 random(7);
    NumberBuffer buffer;
    for (int i = 0; i < 100000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof(value));
        if (!std::isfinite(value)) continue;
        ASSERT_EQ(ReadDouble(ShortestText(value, buffer)), value);
    }
}

// Beside each text what is made of it: nothing, the text without its groups, or "part" and the value.
TEST(Numbers, HowMuchOfATextIsTaken) {
    const struct {
        const char* text;
        const char* asUnsigned;
        const char* asDouble;
    } cases[] = {
        {"", "", ""},
        {"0", "", ""},
        {"+7", "", ""},
        {"4294967295", "", ""},
        {"4294967296", "part 0", ""},
        {"-7", "part 0", ""},
        {"12.5", "part 12", ""},
        {".5", "part 0", ""},
        {"1e3", "part 1", ""},
        {"1,000", "1000", "1000"},
        {"1,00,000", "100000", "100000"},
        {"12,34,56,789", "123456789", "123456789"},
        {"123,456,789", "123456789", "123456789"},
        {"4,294,967,296", "part 4", "4294967296"},
        {"-1,000", "part 0", "-1000"},
        {"21,145.25", "part 21", "21145.25"},
        {"2,450.50", "part 2", "2450.50"},
        {"1,000.", "part 1", "1000."},
        {"12,5", "part 12", "part 12"},
        {"0,125", "part 0", "part 0"},
        {"00,125", "part 0", "part 0"},
        {"0,76672417", "part 0", "part 0"},
        {"1234,567", "part 1234", "part 1234"},
        {"123,45,678", "part 123", "part 123"},
        {"1,23,456,789", "part 1", "part 1"},
        {"1,2,345", "part 1", "part 1"},
        {"1,,000", "part 1", "part 1"},
        {",000", "part 0", "part 0"},
        {"1,000,", "part 1", "part 1"},
        {"1,000.5,000", "part 1", "part 1"},
        {"1,000e3", "part 1", "part 1"},
        {"1.000,50", "part 1", "part 1"},
        {"1 000", "part 1", "part 1"},
        {"1.5k", "part 1", "part 1.5"},
        {"12 ", "part 12", "part 12"},
        {"abc", "part 0", "part 0"},
        {"0x10", "part 0", "part 0"},
        {"inf", "part 0", "part 0"},
        {"1e999", "part 1", "part 0"},
        {"-", "part 0", "part 0"},
    };
    const auto made = [](NumberKind kind, std::string_view text) {
        std::string read;
        return (ReadingOf(kind, text, read) == TextReading::Part ? "part " : "") + read;
    };
    for (const auto& c : cases) {
        EXPECT_EQ(made(NumberKind::Unsigned, c.text), c.asUnsigned) << c.text;
        EXPECT_EQ(made(NumberKind::Double, c.text), c.asDouble) << c.text;
    }
}

}  // namespace
}  // namespace Dravel
