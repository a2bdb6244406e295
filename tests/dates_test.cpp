// Dates under display patterns: the tables, their gaps, and the calendar against the system's own.
#include <gtest/gtest.h>

#include <ctime>
#include <random>

#include "formatset/DateFormat.h"

namespace Dravel {
namespace {

class ZoneClock : public IClock {
 public:
    explicit ZoneClock(std::int32_t offset = 0) : offset_(offset) {}
    std::int64_t Now() const override { return 0; }
    CivilTime LocalNow() const override { return {2024, 3, 15, 14, 5, 9, 42}; }
    std::int32_t ZoneOffset(std::int64_t) const override { return offset_; }
    std::uint64_t Ticks() const override { return 0; }
    void Sleep(std::uint32_t) const override {}

 private:
    std::int32_t offset_;
};

constexpr auto kFailed = ~std::uint64_t{0};
constexpr std::int64_t kJune5 = 1591315200;  // 2020-06-05 00:00:00 UTC

TEST(Dates, ParseAtFixedPositions) {
    const struct {
        const char* text;
        const char* pattern;
        std::uint64_t time;
    } cases[] = {
        {"05Jun2020", "ddMMMyyyy", kJune5},
        {"05jun2020", "ddMMMyyyy", kJune5},
        {"05 Jun 2020", "dd MMM yyyy", kJune5},
        {"05-JUN-2020", "dd-MMM-yyyy", kJune5},
        {"05-Jun-20", "dd-MMM-yy", kJune5},
        {"05-Jun-99", "dd-MMM-yy", 4084300800},
        {"05.06.2020", "dd/MM/yyyy", kJune5},
        {"05/06/2020 extra", "dd/MM/yyyy", kJune5},
        {"05-06-2020", "dd-MM-yyyy", kJune5},
        {"2020/06/05", "yyyy/MM/dd", kJune5},
        {"2020-06-05", "yyyy-MM-dd", kJune5},
        {"06/05/2020", "MM/dd/yyyy", kJune5},
        {"06-05-2020", "MM-dd-yyyy", kJune5},
        {"20200605", "yyyyMMdd", kJune5},
        {" 5/ 6/2020", "dd/MM/yyyy", kJune5},
        {"-5/06/2020", "dd/MM/yyyy", kJune5 - 5 * 86400},  // no digit at its start: day 0
        {"05/06/2020 13:14:15", "dd/MM/yyyy HH:mm:ss", kJune5 + 47655},
        {"20200605-13:14:15", "yyyyMMdd-HH:mm:ss", kJune5 + 47655},
        // Mismatches are carried over, not noticed.
        {"05 June 2020", "dd MMMM yyyy", 1575504000},  // 2019-12-05
        {"05 March 2020", "dd MMMM yyyy", kFailed},    // year 202
        {"2020-06-05", "dd/MM/yyyy", 1135036800},      // 2005-12-20
        {"05Xxx2020", "ddMMMyyyy", 1575504000},
        {"31/12/1969", "dd/MM/yyyy", kFailed},
        {"01/01/1970", "dd/MM/yyyy", 0},
        {"31/12/3000 23:59:59", "dd/MM/yyyy HH:mm:ss", kLatestTime},
        {"01/01/3001", "dd/MM/yyyy", kFailed},
        // What does not parse at all.
        {"5/6/2020", "dd/MM/yyyy", 0},
        {"", "", 0},
        {"05/06/2020", "", 0},
        {"05Jun20", "ddMMMyy", 0},
        {"050620", "ddMMyy", 0},
        {"05/06/2020 ", "dd/MM/yyyy ", 0},
        {"06/05/2020 01:02:03 PM", "MM/dd/yyyy hh:mm:ss tt", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ParseDate(c.text, c.pattern), c.time) << c.text << " under " << c.pattern;
}

TEST(Dates, FormatUnderEveryPattern) {
    const ZoneClock utc;
    const struct {
        const char* pattern;
        const char* text;
    } cases[] = {
        {"ddMMMyyyy", "05Jun2020"},
        {"dd MMM yyyy", "05 Jun 2020"},
        {"dd-MMM-yy", "05-Jun-20"},
        {"dd MMMM yyyy", "05 June 2020"},
        {"dd/MM/yyyy", "05/06/2020"},
        {"ddMMyy", "050620"},
        {"dd-MM-yyyy", "05-06-2020"},
        {"yyyy/MM/dd", "2020/06/05"},
        {"yyyy-MM-dd", "2020-06-05"},
        {"MM/dd/yyyy", "06/05/2020"},
        {"MM-dd-yyyy", "06-05-2020"},
        {"yyyyMMdd", "20200605"},
        {"dd/MM/yyyy HH:mm:ss", "05/06/2020 13:14:15"},
        {"MM/dd/yyyy hh:mm:ss tt", "06/05/2020 01:14:15 PM"},
        {"yyyyMMdd-HH:mm:ss", "20200605-13:14:15"},
        {"HH:mm:ss", "13:14:15"},
        {"yyyyMMdd_HHmm", "20200605_1314"},
        {"yyyyMM", "202006"},
        {"dd", "05"},
        {"MMMyy", "Jun20"},
        // Not in the table, among them two that parse or are offered.
        {"dd-MMM-yyyy", "05/06/2020"},
        {"ddMMMyy", "05/06/2020"},
        {"dd ", "05/06/2020"},
        {"", "05/06/2020"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(FormatDate(kJune5 + 47655, c.pattern, utc), c.text) << c.pattern;
    EXPECT_EQ(FormatDate(kJune5, "MM/dd/yyyy hh:mm:ss tt", utc), "06/05/2020 12:00:00 AM");
    EXPECT_EQ(FormatDate(kJune5 + 43200, "MM/dd/yyyy hh:mm:ss tt", utc), "06/05/2020 12:00:00 PM");
}

TEST(Dates, FormatInTheZoneAndWithinRange) {
    const ZoneClock utc, east(19800), west(-18000);
    EXPECT_EQ(FormatDate(kJune5, "dd/MM/yyyy HH:mm:ss", east), "05/06/2020 05:30:00");
    EXPECT_EQ(FormatDate(kJune5, "dd/MM/yyyy HH:mm:ss", west), "04/06/2020 19:00:00");
    EXPECT_EQ(FormatDate(0, "dd/MM/yyyy HH:mm:ss", west), "31/12/1969 19:00:00");
    EXPECT_EQ(FormatDate(kLatestTime, "dd/MM/yyyy HH:mm:ss", utc), "31/12/3000 23:59:59");
    EXPECT_EQ(FormatDate(-1, "dd", utc), "");
    EXPECT_EQ(FormatDate(kLatestTime + 1, "dd", utc), "");
    EXPECT_EQ(FormatDate(INT64_MAX, "dd", utc), "");
}

TEST(Dates, MakeTimeCarriesOver) {
    EXPECT_EQ(MakeTime(2020, 6, 5, 0, 0, 0), kJune5);
    EXPECT_EQ(MakeTime(20, 6, 5, 0, 0, 0), kJune5);
    EXPECT_EQ(MakeTime(-5, 1, 1, 0, 0, 0), 788918400);  // 1995
    EXPECT_EQ(MakeTime(2020, 0, 5, 0, 0, 0), 1575504000);
    EXPECT_EQ(MakeTime(2021, -6, 5, 0, 0, 0), kJune5);
    EXPECT_EQ(MakeTime(2020, 3, 0, 0, 0, 0), 1582934400);  // 29 February
    EXPECT_EQ(MakeTime(2020, 6, 5, -1, 61, -60), kJune5 - 3600 + 3600);
    EXPECT_EQ(MakeTime(1969, 13, 1, 0, 0, 0), 0);
    for (const std::int32_t year : {INT32_MIN, 100, 1968, 3002, INT32_MAX}) {
        EXPECT_EQ(MakeTime(year, 30, 1, 0, 0, 0), -1) << year;
    }
    EXPECT_EQ(MakeTime(2020, INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX), -1);
    EXPECT_EQ(MakeTime(2020, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN), -1);
}

TEST(Dates, MonthNamesInPlace) {
    for (const auto& [before, after] :
         {std::pair{"jan", "1"}, {"DEC", "12"}, {"June", "JUNE"}, {"\xE4pr", "\xE4PR"}, {"", ""}}) {
        std::string text = before;
        MonthNameToNumber(text);
        EXPECT_EQ(text, after);
    }
}

TEST(Dates, StampFillsItsBuffer) {
    char buffer[22];
    LocalTimeStamp(buffer, ZoneClock());
    EXPECT_STREQ(buffer, "20240315-14:05:09.042");
}

#ifndef _WIN32
TEST(Dates, AgreeWithTheSystemsCalendar) {
    const ZoneClock utc;
    std::mt19937_64 random(20240315);
    for (int i = 0; i < 10000; ++i) {
        const auto time = static_cast<std::time_t>(random() % (kLatestTime + 1));
        std::tm parts{};
        gmtime_r(&time, &parts);
        char expected[80];
        std::strftime(expected, sizeof(expected), "%d/%m/%Y %H:%M:%S", &parts);
        ASSERT_EQ(FormatDate(time, "dd/MM/yyyy HH:mm:ss", utc), expected) << time;
        ASSERT_EQ(ParseDate(expected, "dd/MM/yyyy HH:mm:ss"), static_cast<std::uint64_t>(time)) << expected;
        std::strftime(expected, sizeof(expected), "%m/%d/%Y %I:%M:%S %p", &parts);
        ASSERT_EQ(FormatDate(time, "MM/dd/yyyy hh:mm:ss tt", utc), expected) << time;
    }
}
#endif

}  // namespace
}  // namespace Dravel
