#include "formatset/NumberReading.h"

#include <algorithm>

#include "formatset/NumberText.h"

namespace Dravel {

namespace {

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool AllDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), IsDigit);
}

bool IsWhole(NumberKind kind, std::string_view text) {
    return kind == NumberKind::Unsigned ? IsUnsigned(text) : IsDouble(text);
}

// Whether all groups between the first comma and the last one have `size` digits, and the last one three.
bool GroupsOf(std::size_t size, std::string_view groups) {
    while (groups.size() > 4) {
        if (groups[0] != ',' || !AllDigits(groups.substr(1, size))) return false;
        groups.remove_prefix(size + 1);
    }
    return groups.size() == 4 && groups[0] == ',' && AllDigits(groups.substr(1));
}

// "1,234" and "12,34,567", without sign and fraction.
bool IsGrouped(std::string_view text) {
    const std::size_t first = std::min(text.find(','), text.size());
    if (first == 0 || first > 3 || text[0] == '0' || !AllDigits(text.substr(0, first))) return false;
    const std::string_view groups = text.substr(first);
    return GroupsOf(3, groups) || (first <= 2 && GroupsOf(2, groups));
}

bool HasGroups(std::string_view text) {
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::string_view fraction = text.substr(std::min(point + 1, text.size()));
    return IsGrouped(text.substr(0, point)) && AllDigits(fraction);
}

}  // namespace

TextReading ReadingOf(NumberKind kind, std::string_view text, std::string& read) {
    if (text.empty() || IsWhole(kind, text)) return TextReading::Whole;
    if (HasGroups(text)) {
        std::string plain(text);
        std::erase(plain, ',');
        if (IsWhole(kind, plain)) {
            read = std::move(plain);
            return TextReading::Grouped;
        }
    }
    read.clear();
    if (kind == NumberKind::Unsigned) {
        AppendUnsigned(read, ReadUnsigned(text));
    } else {
        AppendShortest(read, ReadDouble(text));
    }
    return TextReading::Part;
}

}  // namespace Dravel
