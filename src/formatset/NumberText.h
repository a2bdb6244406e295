// Numbers to text and back, the same in every locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Dravel {

// The plain decimal conversions read the leading characters: blanks and one sign are stepped over, reading
// stops at the first character that is no part of the number, and a text that does not start with a number is
// 0.

// A number below 0 or above 4,294,967,295 is 0.
std::uint32_t ReadUnsigned(std::string_view text);
// A number that 32 bits with a sign cannot hold is 0.
std::int32_t ReadInteger(std::string_view text);
// Decimal notation, also with an exponent; never hexadecimal, infinite or "not a number". What a double
// cannot hold is 0.
double ReadDouble(std::string_view text);

// Whether the whole text is a number that its reader above takes, but for blanks in front.
bool IsUnsigned(std::string_view text);
bool IsDouble(std::string_view text);

// Room for the text of any number.
struct NumberBuffer {
    char text[352];
};

// The shortest decimal text that reads back as the same double. Without an exponent for the magnitudes that
// prices and strikes have (0, and 1e-7 to 1e17).
std::string_view ShortestText(double value, NumberBuffer& buffer);
// Six decimals, as exported files have them.
std::string_view SixDecimals(double value, NumberBuffer& buffer);
// The same at `at`, where there is room for a NumberBuffer; returns the end.
char* WriteSixDecimals(double value, char* at);
std::string_view UnsignedText(std::uint64_t value, NumberBuffer& buffer);
std::string_view IntegerText(std::int64_t value, NumberBuffer& buffer);

// With a comma at each thousand, in every locale.
std::string GroupedText(std::uint64_t value);

inline void AppendShortest(std::string& text, double value) {
    NumberBuffer buffer;
    text += ShortestText(value, buffer);
}
inline void AppendUnsigned(std::string& text, std::uint64_t value) {
    NumberBuffer buffer;
    text += UnsignedText(value, buffer);
}

}  // namespace Dravel
