// How much of a number's text its reader takes, so that nobody is told 12 who wrote "12,5".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Dravel {

enum class TextReading : std::uint8_t {
    Whole,    // every character counts
    Grouped,  // a whole number once its groups of digits are taken out
    Part,     // the reader stops before the end, or finds nothing that it knows
};

enum class NumberKind : std::uint8_t { Unsigned, Double };

// What ReadUnsigned or ReadDouble would make of `text`, which has no blanks at its ends. `read` is left alone
// for Whole; for Grouped it becomes the text without its groups, for Part the text of the value that is read.
// An empty text is Whole.
//
// Groups are three digits each ("12,345,678"), or two each before the last three ("1,23,45,678"), with a
// comma between them, behind one to three digits, the first of which is no zero ("0,125" is no thousand). A
// fraction may follow a point.
TextReading ReadingOf(NumberKind kind, std::string_view text, std::string& read);

}  // namespace Dravel
