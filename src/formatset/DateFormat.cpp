// Date conversion with calendar arithmetic of its own: the run-time's depends on locale and system, and
// refuses times that are needed here.
#include "formatset/DateFormat.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "formatset/NumberText.h"

namespace Dravel {
namespace {

constexpr std::int64_t kDay = 86400;
constexpr std::string_view kMonthNames[] = {"January",   "February", "March",    "April",
                                            "May",       "June",     "July",     "August",
                                            "September", "October",  "November", "December"};

struct DisplayFormat {
    std::string_view pattern;
    std::string_view fields;  // in the notation of strftime
};
constexpr DisplayFormat kFormats[] = {
    {"ddMMMyyyy", "%d%b%Y"},
    {"dd MMM yyyy", "%d %b %Y"},
    {"dd-MMM-yy", "%d-%b-%y"},
    {"dd MMMM yyyy", "%d %B %Y"},
    {"dd/MM/yyyy", "%d/%m/%Y"},
    {"ddMMyy", "%d%m%y"},
    {"dd-MM-yyyy", "%d-%m-%Y"},
    {"yyyy/MM/dd", "%Y/%m/%d"},
    {"yyyy-MM-dd", "%Y-%m-%d"},
    {"MM/dd/yyyy", "%m/%d/%Y"},
    {"MM-dd-yyyy", "%m-%d-%Y"},
    {"yyyyMMdd", "%Y%m%d"},
    {"dd/MM/yyyy HH:mm:ss", "%d/%m/%Y %H:%M:%S"},
    {"MM/dd/yyyy hh:mm:ss tt", "%m/%d/%Y %I:%M:%S %p"},
    {"yyyyMMdd-HH:mm:ss", "%Y%m%d-%H:%M:%S"},
    {"HH:mm:ss", "%H:%M:%S"},
    {"yyyyMMdd_HHmm", "%Y%m%d_%H%M"},
    {"yyyyMM", "%Y%m"},
    {"dd", "%d"},
    {"MMMyy", "%b%y"},
};
constexpr std::string_view kDefaultFields = "%d/%m/%Y";

// Where a field stands in a text; length 0: the pattern has none.
struct Piece {
    std::uint8_t position = 0, length = 0;
};
struct ParseFormat {
    std::string_view pattern;
    Piece day, month, year, hour, minute, second;
    bool monthName = false;
};
constexpr ParseFormat kParseFormats[] = {
    {"ddMMMyyyy", {0, 2}, {2, 3}, {5, 4}, {}, {}, {}, true},
    {"dd MMM yyyy", {0, 2}, {3, 3}, {7, 4}, {}, {}, {}, true},
    {"dd-MMM-yyyy", {0, 2}, {3, 3}, {7, 4}, {}, {}, {}, true},
    {"dd-MMM-yy", {0, 2}, {3, 3}, {7, 2}, {}, {}, {}, true},
    // The full month name is read as a number, which gives month 0: deliberate.
    {"dd MMMM yyyy", {0, 2}, {3, 4}, {8, 4}, {}, {}, {}},
    {"dd/MM/yyyy", {0, 2}, {3, 2}, {6, 4}, {}, {}, {}},
    {"dd-MM-yyyy", {0, 2}, {3, 2}, {6, 4}, {}, {}, {}},
    {"yyyy/MM/dd", {8, 2}, {5, 2}, {0, 4}, {}, {}, {}},
    {"yyyy-MM-dd", {8, 2}, {5, 2}, {0, 4}, {}, {}, {}},
    {"MM/dd/yyyy", {3, 2}, {0, 2}, {6, 4}, {}, {}, {}},
    {"MM-dd-yyyy", {3, 2}, {0, 2}, {6, 4}, {}, {}, {}},
    {"yyyyMMdd", {6, 2}, {4, 2}, {0, 4}, {}, {}, {}},
    {"dd/MM/yyyy HH:mm:ss", {0, 2}, {3, 2}, {6, 4}, {11, 2}, {14, 2}, {17, 2}},
    {"yyyyMMdd-HH:mm:ss", {6, 2}, {4, 2}, {0, 4}, {9, 2}, {12, 2}, {15, 2}},
};

// Writes exactly `digits` digits, leading zeros included.
char* PutDigits(char* at, std::int32_t value, int digits) {
    for (int i = digits - 1; i >= 0; --i, value /= 10)
        at[i] = static_cast<char>('0' + value % 10);
    return at + digits;
}

void AppendDigits(std::string& text, std::int32_t value, int digits) {
    char buffer[4];
    text.append(buffer, PutDigits(buffer, value, digits));
}

void AppendField(std::string& text, char field, const CivilTime& time) {
    const std::string_view month = kMonthNames[time.month - 1];
    switch (field) {
        case 'd':
            return AppendDigits(text, time.day, 2);
        case 'm':
            return AppendDigits(text, time.month, 2);
        case 'b':
            text += month.substr(0, 3);
            return;
        case 'B':
            text += month;
            return;
        case 'y':
            return AppendDigits(text, time.year % 100, 2);
        case 'Y':
            return AppendDigits(text, time.year, 4);
        case 'H':
            return AppendDigits(text, time.hour, 2);
        case 'I':
            return AppendDigits(text, (time.hour + 11) % 12 + 1, 2);
        case 'M':
            return AppendDigits(text, time.minute, 2);
        case 'S':
            return AppendDigits(text, time.second, 2);
        case 'p':
            text += time.hour < 12 ? "AM" : "PM";
            return;
    }
}

std::string_view FieldsOf(std::string_view pattern) {
    const auto* found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                     [&](const DisplayFormat& format) { return format.pattern == pattern; });
    return found == std::end(kFormats) ? kDefaultFields : found->fields;
}

// The number that the piece starts with, blanks in front of it aside; else 0.
std::int32_t ReadPiece(std::string_view text, Piece piece) {
    if (piece.length == 0 || piece.position >= text.size()) return 0;
    const std::string_view cut = text.substr(piece.position, piece.length);
    const std::size_t first = cut.find_first_not_of(" \t\n\v\f\r");
    if (first == std::string_view::npos || cut[first] < '0' || cut[first] > '9') return 0;
    return ReadInteger(cut.substr(first));
}

std::int32_t ReadMonth(std::string_view text, const ParseFormat& format) {
    if (!format.monthName) return ReadPiece(text, format.month);
    std::string name(
        text.substr(std::min<std::size_t>(format.month.position, text.size()), format.month.length));
    MonthNameToNumber(name);
    return ReadPiece(name, {0, 3});
}

}  // namespace

std::int64_t DaysFromCivil(std::int64_t year, std::int64_t month, std::int64_t day) {
    // Years start in March, so that the leap day is the last one; 400 years are 146,097 days.
    year -= month <= 2;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

CivilTime CivilFromTime(std::int64_t localSeconds) {
    std::int64_t days = localSeconds / kDay;
    std::int64_t rest = localSeconds % kDay;
    if (rest < 0) {
        rest += kDay;
        --days;
    }
    days += 719468;
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t march = (5 * dayOfYear + 2) / 153;  // months since March
    CivilTime time;
    time.day = static_cast<std::int32_t>(dayOfYear - (153 * march + 2) / 5 + 1);
    time.month = static_cast<std::int32_t>(march < 10 ? march + 3 : march - 9);
    time.year = static_cast<std::int32_t>(yearOfEra + era * 400 + (time.month <= 2));
    time.hour = static_cast<std::int32_t>(rest / 3600);
    time.minute = static_cast<std::int32_t>(rest / 60 % 60);
    time.second = static_cast<std::int32_t>(rest % 60);
    return time;
}

std::string FormatDate(std::int64_t time, std::string_view pattern, const IClock& clock) {
    std::string text;
    if (time < 0 || time > kLatestTime) return text;
    const CivilTime local = CivilFromTime(time + clock.ZoneOffset(time));
    const std::string_view fields = FieldsOf(pattern);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i] == '%') {
            AppendField(text, fields[++i], local);
        } else {
            text += fields[i];
        }
    }
    return text;
}

std::uint64_t ParseDate(std::string_view text, std::string_view pattern) {
    if (text.size() < pattern.size()) return 0;
    const auto* format =
        std::find_if(std::begin(kParseFormats), std::end(kParseFormats),
                     [&](const ParseFormat& candidate) { return candidate.pattern == pattern; });
    if (format == std::end(kParseFormats)) return 0;
    return static_cast<std::uint64_t>(MakeTime(
        ReadPiece(text, format->year), ReadMonth(text, *format), ReadPiece(text, format->day),
        ReadPiece(text, format->hour), ReadPiece(text, format->minute), ReadPiece(text, format->second)));
}

void MonthNameToNumber(std::string& text) {
    for (char& c : text) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    constexpr std::string_view kNames[] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                           "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
    const auto* found = std::find(std::begin(kNames), std::end(kNames), text);
    if (found == std::end(kNames)) return;
    text.clear();
    AppendUnsigned(text, static_cast<std::uint64_t>(found - kNames) + 1);
}

std::int64_t MakeTime(std::int32_t year, std::int32_t month, std::int32_t day, std::int32_t hour,
                      std::int32_t minute, std::int32_t second) {
    // The run-time looks at the year twice, before and after the months are carried over, with a year to
    // spare.
    constexpr auto kPossible = [](std::int64_t candidate) { return candidate >= 1969 && candidate <= 3001; };
    std::int64_t fullYear = std::int64_t{year} + (year < 100 ? 2000 : 0);
    if (!kPossible(fullYear)) return -1;
    std::int64_t month0 = std::int64_t{month} - 1;
    fullYear += month0 / 12;
    month0 %= 12;
    if (month0 < 0) {
        month0 += 12;
        --fullYear;
    }
    if (!kPossible(fullYear)) return -1;
    const std::int64_t days = DaysFromCivil(fullYear, month0 + 1, 1) + day - 1;
    const std::int64_t time = days * kDay + std::int64_t{hour} * 3600 + std::int64_t{minute} * 60 + second;
    return time < 0 || time > kLatestTime ? -1 : time;
}

void LocalTimeStamp(char (&buffer)[22], const IClock& clock) {
    const CivilTime now = clock.LocalNow();
    char* at = PutDigits(buffer, now.year, 4);
    at = PutDigits(at, now.month, 2);
    at = PutDigits(at, now.day, 2);
    *at++ = '-';
    at = PutDigits(at, now.hour, 2);
    *at++ = ':';
    at = PutDigits(at, now.minute, 2);
    *at++ = ':';
    at = PutDigits(at, now.second, 2);
    *at++ = '.';
    at = PutDigits(at, now.millisecond, 3);
    *at = '\0';
}

}  // namespace Dravel
