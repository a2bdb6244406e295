// Time values to text and back under the display patterns that users see ("ddMMMyyyy", "dd/MM/yyyy HH:mm:ss",
// ...).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Clock.h"

namespace Dravel {

// Times are seconds since 1970-01-01 00:00:00 UTC. Patterns are compared byte for byte over their whole
// length. Month names and AM/PM are English in every locale. No operation fails aloud.

// Largest time that becomes text or is made: 3000-12-31 23:59:59.
inline constexpr std::int64_t kLatestTime = 32535215999;

// The time in the clock's zone under `pattern`; a pattern that is not in the table is "dd/MM/yyyy". Empty for
// a time below 0 or above kLatestTime.
std::string FormatDate(std::int64_t time, std::string_view pattern, const IClock& clock = SystemClock());

// Reads the text at the fixed positions of its pattern, as UTC. 0: the text is shorter than the pattern, or
// the pattern is not one that parses; all bits set (-1): the date is before 1970 or after 3000. Separators
// are never compared.
//
// Parsing is UTC and formatting is local, and the patterns that parse are others than those that format: both
// are deliberate, files written by the one side are read by the other as they always were.
std::uint64_t ParseDate(std::string_view text, std::string_view pattern);

// A 3-letter English month name, letter case aside, becomes its number ("1" to "12") in place; any other text
// is left upper-cased.
void MonthNameToNumber(std::string& text);

// Fields out of range are carried over (month 0 is December of the year before). Years below 100 mean 2000
// and later. -1 for what the run-time's conversion refuses: before 1970, after 3000, or a year that is out of
// range by itself.
std::int64_t MakeTime(std::int32_t year, std::int32_t month, std::int32_t day, std::int32_t hour,
                      std::int32_t minute, std::int32_t second);

// The local time as "yyyyMMdd-HH:mm:ss.mmm" with its closing zero.
void LocalTimeStamp(char (&buffer)[22], const IClock& clock = SystemClock());

// Days since 1970-01-01 of a date of the Gregorian calendar, and back. Month 1 to 12; any day.
std::int64_t DaysFromCivil(std::int64_t year, std::int64_t month, std::int64_t day);
CivilTime CivilFromTime(std::int64_t localSeconds);

}  // namespace Dravel
