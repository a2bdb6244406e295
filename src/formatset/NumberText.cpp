// Numbers to text and back, over std::to_chars and std::from_chars, which know no locale.
#include "formatset/NumberText.h"

#include <charconv>
#include <cmath>
#include <utility>

namespace Dravel {
namespace {

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr std::size_t kShortNumber = 9;  // characters: any so many digits are a 32-bit number

// Digits, and with `point` at most one point among them, few enough for any number to hold: nearly every
// number of a file, told without reading it.
bool IsShortNumber(std::string_view text, bool point) {
    if (text.empty() || text.size() > kShortNumber || !IsDigit(text.front())) return false;
    for (const char c : text) {
        if (!IsDigit(c) && (c != '.' || !std::exchange(point, false))) return false;
    }
    return true;
}

std::string_view SkipBlanks(std::string_view text) {
    std::size_t first = 0;
    while (first < text.size() && (text[first] == ' ' || (text[first] >= '\t' && text[first] <= '\r')))
        ++first;
    return text.substr(first);
}

// Takes one sign off the front; true: it was a minus.
bool TakeSign(std::string_view& text) {
    if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
    const bool minus = text.front() == '-';
    text.remove_prefix(1);
    return minus;
}

// Digits only: from_chars would take a second sign.
bool ReadDigits(std::string_view text, std::uint64_t& value) {
    if (text.empty() || !IsDigit(text.front())) return false;
    return std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc();
}

template <class... Arguments>
std::string_view ToText(NumberBuffer& buffer, Arguments... arguments) {
    const auto end = std::to_chars(buffer.text, buffer.text + sizeof(buffer.text), arguments...);
    return {buffer.text, static_cast<std::size_t>(end.ptr - buffer.text)};
}

}  // namespace

std::uint32_t ReadUnsigned(std::string_view text) {
    text = SkipBlanks(text);
    const bool minus = TakeSign(text);
    std::uint64_t value = 0;
    if (!ReadDigits(text, value) || minus || value > UINT32_MAX) return 0;
    return static_cast<std::uint32_t>(value);
}

std::int32_t ReadInteger(std::string_view text) {
    text = SkipBlanks(text);
    const bool minus = TakeSign(text);
    std::uint64_t value = 0;
    if (!ReadDigits(text, value) || value > std::uint64_t{INT32_MAX} + (minus ? 1 : 0)) return 0;
    const auto magnitude = static_cast<std::int64_t>(value);
    return static_cast<std::int32_t>(minus ? -magnitude : magnitude);
}

double ReadDouble(std::string_view text) {
    text = SkipBlanks(text);
    const bool minus = TakeSign(text);
    // from_chars would take "inf" and "nan".
    if (text.empty() || (!IsDigit(text.front()) && text.front() != '.')) return 0;
    double value = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc()) return 0;
    return minus ? -value : value;
}

bool IsUnsigned(std::string_view text) {
    if (IsShortNumber(text, false)) return true;
    text = SkipBlanks(text);
    if (TakeSign(text) || text.empty() || !IsDigit(text.front())) return false;
    std::uint32_t value = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, value);
    return read.ec == std::errc() && read.ptr == end;
}

bool IsDouble(std::string_view text) {
    if (IsShortNumber(text, true)) return true;
    text = SkipBlanks(text);
    TakeSign(text);
    if (text.empty() || (!IsDigit(text.front()) && text.front() != '.')) return false;
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, value);
    return read.ec == std::errc() && read.ptr == end;
}

std::string_view ShortestText(double value, NumberBuffer& buffer) {
    const double size = std::fabs(value);
    if (size == 0 || (size >= 1e-7 && size < 1e17)) return ToText(buffer, value, std::chars_format::fixed);
    return ToText(buffer, value);
}

// Prices and strikes are whole millionths but for the last bits of the double. Multiplied they are off by an
// eighth at most, so what comes within a quarter of a whole number rounds to that one, and its digits are
// made many times faster than those of a double.
static bool AsMillionths(double value, std::uint64_t& millionths) {
    if (!(value >= 0 && value < 1e9) || std::signbit(value)) return false;
    const double product = value * 1e6;
    millionths = static_cast<std::uint64_t>(product + 0.5);
    return std::fabs(product - static_cast<double>(millionths)) <= 0.25;
}

char* WriteSixDecimals(double value, char* at) {
    std::uint64_t millionths = 0;
    if (!AsMillionths(value, millionths))
        return std::to_chars(at, at + sizeof(NumberBuffer), value, std::chars_format::fixed, 6).ptr;
    at = std::to_chars(at, at + sizeof(NumberBuffer), millionths / 1000000).ptr;
    // A leading 1 keeps the zeros behind the point; the point is written over it.
    std::to_chars(at, at + 7, 1000000 + millionths % 1000000);
    *at = '.';
    return at + 7;
}

std::string_view SixDecimals(double value, NumberBuffer& buffer) {
    return {buffer.text, static_cast<std::size_t>(WriteSixDecimals(value, buffer.text) - buffer.text)};
}

std::string_view UnsignedText(std::uint64_t value, NumberBuffer& buffer) {
    return ToText(buffer, value);
}

std::string_view IntegerText(std::int64_t value, NumberBuffer& buffer) {
    return ToText(buffer, value);
}

std::string GroupedText(std::uint64_t value) {
    NumberBuffer buffer;
    const std::string_view digits = UnsignedText(value, buffer);
    std::string text;
    for (std::size_t at = 0; at < digits.size(); ++at) {
        if (at != 0 && (digits.size() - at) % 3 == 0) text += ',';
        text += digits[at];
    }
    return text;
}

}  // namespace Dravel
